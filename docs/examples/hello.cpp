#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

int main() {
    quor::VerInfo::Init(1, 4, 27, 903, "guide", "", "", "", "");
    quor::Log::Init("hello.log");
    quor::TraceFile::Init("hello.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);

    const int files = 3;
    QUOR_TRACE(quor::Low, "files waiting: " << files);
    quor::Log::GetInstance().Info("Started");
}
