// late_reports TRACE LOG: reports from destructors of static objects, some built before the trace
// and some after it, and from detached threads, while main returns.
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace_file.h>

#include <atomic>
#include <thread>

namespace {

std::atomic<int> g_reports{0};

void Report() {
    QUOR_TRACE_FNC();
    QUOR_TRACE(quor::Low, "report " << ++g_reports);
    const quor::Exception reported("report", true);
    quor::LogCritical("report");
    quor::TraceFile::GetInstance().SetLevel(g_reports % 2 == 0 ? quor::High : quor::Detail);
}

struct Late {
    ~Late() {
        Report();
        quor::TraceFile::GetInstance().Start(quor::High);
        Report();
    }
};
Late g_builtBeforeTheTrace;

// What it logs at its end is traced, too: the trace is built along with the log.
struct LogUser {
    LogUser() { quor::Log::GetInstance(); }
    ~LogUser() { quor::Log::GetInstance().Info("the last"); }
};
LogUser g_builtBeforeMain;

}  // namespace

int main(int /*count*/, char** arguments) {
    quor::TraceFile::Init(arguments[1], "");
    quor::TraceFile::GetInstance().Start(quor::High);
    quor::Log::Init(arguments[2]);
    static const Late builtAfterTheTrace;
    for (int thread = 0; thread < 3; ++thread) {
        std::thread([] {
            for (;;) Report();
        }).detach();
    }
    std::thread([] {
        for (;;) quor::TraceWrite(quor::Low, "function", "late_reports", 1, "past the gate");
    }).detach();
    while (g_reports < 10) {
        std::this_thread::yield();
    }
    return 0;
}
