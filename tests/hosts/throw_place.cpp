// Throws from functions that the optimiser would like to move, and traces to standard output.
#include <quor/any.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <sstream>

__attribute__((noinline)) void FromText(int number) {
    if (number > 0) throw quor::Exception("text", true);
}
__attribute__((noinline)) int FromString(int number) {
    if (number > 0) throw quor::Exception(std::string("string"), true);
    return number + 1;
}
__attribute__((noinline)) void FromStream(int number) {
    std::ostringstream stream;
    stream << number;
    throw quor::Exception(stream, true);
}
__attribute__((noinline)) void Swallowed(int number) {
    const quor::Exception unused("unused", number > 0);
}

int main(int count, char** /*arguments*/) {
    quor::TraceFile::GetInstance().Start(quor::Low);
    Swallowed(count);
    for (int kind = 0; kind < 4; ++kind) {
        try {
            if (kind == 0) FromText(count);
            if (kind == 1) FromString(count);
            if (kind == 2) FromStream(count);
            quor::Any(count).Get<std::vector<bool>>();
        } catch (const quor::Exception&) {
        }
    }
}
