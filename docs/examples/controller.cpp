#include <quor/thread_controller.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <condition_variable>
#include <memory>
#include <mutex>

// What the loop sleeps on. A wake that comes before the sleep is kept.
class Bell {
public:
    void Ring() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_rung = true;
        m_condition.notify_all();
    }
    void Await() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return m_rung; });
        m_rung = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_rung = false;
};

int main() {
    cStopSleepPeriodMs = 10'000;  // one ring must do: the next would come ten seconds later
    quor::TraceFile::Init("controller.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::High);
    const auto bell = std::make_shared<Bell>();  // copies of the cancel function share it
    quor::ThreadController scan(
        "scan", [bell] { bell->Await(); }, [bell] { bell->Ring(); });
    scan.Start();
    scan.Stop();
}
