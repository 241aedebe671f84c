#include <quor/trace.h>
#include <quor/trace_file.h>

void Examine(int file) {
    QUOR_TRACE_FNC();  // High
    QUOR_TRACE(quor::Low, "taken: file " << file);
    QUOR_TRACE(quor::Medium, "opened, read, closed");
    QUOR_TRACE(quor::Detail, "first byte: 0x7f");
}

int main() {
    quor::TraceFile& trace = quor::TraceFile::GetInstance();
    quor::TraceFile::Init("levels.trace", ".");
    int file = 1;
    for (const auto level : {quor::Low, quor::Medium, quor::High, quor::Detail, quor::Off}) {
        trace.SetLevel(level);
        Examine(file++);
    }
}
