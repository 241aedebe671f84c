#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

void Drain(int files) {
    QUOR_TRACE(quor::Low, "files waiting: " << files);
    if (files == 0) throw quor::Exception("the spool is empty", true);
}

int main() try {
    quor::TraceFile::Init("first.log", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    for (int files : {2, 0}) Drain(files);
} catch (const quor::Exception&) {
}
