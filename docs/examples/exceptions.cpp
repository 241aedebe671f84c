#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <map>
#include <mutex>
#include <string>

std::map<std::string, int> g_files{{"a", 1}};
std::mutex g_filesMutex;
std::mutex g_totalsMutex;

void Drain(const std::string& file) {
    const quor::Lock both(g_filesMutex, g_totalsMutex);  // in one order, whoever asks
    if (g_files.count(file) == 0) {
        throw quor::Exception("No such file: " + file, true);
    }
}

int main() {
    quor::TraceFile::Init("exceptions.trace", ".");
    quor::TraceFile::GetInstance().SetPrintFile(true);
    quor::TraceFile::GetInstance().Start(quor::Low);
    try {
        Drain("b");
    } catch (const std::exception&) {  // swallowed, and yet it left its mark
    }
}
