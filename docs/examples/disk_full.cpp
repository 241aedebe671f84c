#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <sys/resource.h>

#include <csignal>

// Stands in for a disk: with no room, every write to a file fails.
void SetRoom(rlim_t bytes) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

int main() {
    std::signal(SIGXFSZ, SIG_IGN);
    quor::TraceFile& trace = quor::TraceFile::GetInstance();
    quor::Log& log = quor::Log::GetInstance();
    quor::Log::Init("disk_full.log");
    quor::TraceFile::Init("disk_full.trace", ".");
    trace.Start(quor::Low);
    log.Info("there is room");

    SetRoom(0);
    log.Info("the disk is full");  // reaches neither file; the trace closes
    SetRoom(RLIM_INFINITY);

    log.Info("room again");  // the log goes on, the trace is silent
    trace.Stop();
    trace.Start(quor::Low);
    log.Info("trace reopened");
}
