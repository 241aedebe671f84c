#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace_file.h>

#include <thread>

void Drain(int files) try {
    QUOR_TRACE(quor::Low, "files waiting: " << files);
    if (files == 0) throw quor::Exception("the spool is empty", true);
    quor::Log::GetInstance().Info("Drained");
} catch (const quor::Exception&) {  // swallowed, and traced all the same
}

int main() {
    quor::Log::Init("first.log");
    quor::TraceFile::Init("first.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    for (int files : {2, 0}) std::thread(Drain, files).join();
}
