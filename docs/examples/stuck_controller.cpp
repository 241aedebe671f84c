// Ends by KILL after "cancel 3" in stuck_controller.trace.
#include <quor/thread_controller.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <future>
#include <memory>
#include <mutex>

struct Shared {
    std::promise<void> m_atWork;
    std::promise<void> m_wake;
    std::mutex m_mutex;
    int m_cancels = 0;  // guarded by m_mutex
};

void ShutDown(quor::ThreadController& scan) {
    QUOR_TRACE_FNC();
    scan.Stop();
}

int main() {
    quor::TraceFile::Init("stuck_controller.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    const auto shared = std::make_shared<Shared>();
    const auto loop = [shared] {
        QUOR_TRACE(quor::Low, "scan: waiting for files");
        shared->m_atWork.set_value();
        shared->m_wake.get_future().wait();
    };
    const auto cancel = [shared] {  // the fault: does not set m_wake
        const std::lock_guard<std::mutex> lock(shared->m_mutex);
        QUOR_TRACE(quor::High, "scan: cancel " << ++shared->m_cancels);
    };
    quor::ThreadController scan("scan", loop, cancel);
    scan.Start();
    shared->m_atWork.get_future().wait();
    quor::TraceFile::GetInstance().SetLevel(quor::High);
    ShutDown(scan);
}
