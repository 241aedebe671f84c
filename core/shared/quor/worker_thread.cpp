#include <quor/worker_thread.h>

#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/worker_pool.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <exception>
#include <functional>
#include <limits>

namespace quor {
namespace {

using Clock = std::chrono::system_clock;

constexpr const char* c_file = "worker_thread";

// The last moment that both the clock and the kernel's interface can express.
Clock::time_point LastMoment() {
    using Seconds = std::chrono::duration<std::int64_t>;
    constexpr Seconds c_lastOfClock =
        std::chrono::duration_cast<Seconds>(Clock::duration::max()) - Seconds(1);
    constexpr Seconds c_lastOfKernel(std::numeric_limits<std::time_t>::max());
    return Clock::time_point(std::min(c_lastOfClock, c_lastOfKernel));
}

// Longer waits than can be expressed last as long as can be.
Clock::time_point Deadline(std::uint64_t seconds, std::uint64_t nanoseconds) {
    constexpr std::uint64_t c_nanosecondsPerSecond = 1'000'000'000;
    const Clock::time_point now = Clock::now();
    const auto longest = std::chrono::nanoseconds(LastMoment() - now).count();
    const std::uint64_t limit = longest > 0 ? static_cast<std::uint64_t>(longest) : 0;
    if (seconds > limit / c_nanosecondsPerSecond ||
        nanoseconds > limit - seconds * c_nanosecondsPerSecond) {
        return LastMoment();
    }
    return now + std::chrono::duration_cast<Clock::duration>(
                     std::chrono::nanoseconds(seconds * c_nanosecondsPerSecond + nanoseconds));
}

}  // namespace

WorkerThread::WorkerThread(const std::string& name)
    : m_name(name), m_stopRequested(false), m_pool(nullptr) {
    const TraceFnc fnc("quor::WorkerThread::WorkerThread(const std::string&)", c_file, __LINE__);
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": CREATED");
}

WorkerThread::~WorkerThread() {
    const TraceFnc fnc("virtual quor::WorkerThread::~WorkerThread()", c_file, __LINE__);
    if (m_thread.joinable()) {
        JoinLate();
    }
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": DESTROYED");
    if (m_pool != nullptr) {
        m_pool->Remove(this);
    }
}

void WorkerThread::JoinLate() {
    QUOR_TRACE(Low, "WARNING: Worker thread: " << m_name << ": destroyed while its thread runs");
    Stop();
    if (m_thread.get_id() == std::this_thread::get_id()) {
        m_thread.detach();
    } else {
        m_thread.join();
    }
}

void WorkerThread::Start() {
    const TraceFnc fnc("void quor::WorkerThread::Start()", c_file, __LINE__);
    if (m_thread.joinable()) {
        throw Exception("Worker thread: " + m_name + ": already started", true);
    }
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": START");
    m_thread = std::thread(std::ref(*this));
}

void WorkerThread::Stop() {
    const TraceFnc fnc("void quor::WorkerThread::Stop()", c_file, __LINE__);
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": REQUEST TO STOP");
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stopRequested = true;
    m_condition.notify_all();
}

bool WorkerThread::StopRequested() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stopRequested;
}

bool WorkerThread::TimedWait(unsigned long seconds, unsigned long nanoseconds) const {
    std::unique_lock<std::mutex> lock(m_mutex);
    const Clock::time_point deadline = Deadline(seconds, nanoseconds);
    m_condition.wait_until(lock, deadline);
    return Clock::now() >= deadline;
}

void WorkerThread::operator()() {
    const TraceFnc fnc("void quor::WorkerThread::operator()()", c_file, __LINE__);
    try {
        Main();
        return;
    } catch (const std::exception& e) {
        QUOR_TRACE(Low, "WARNING: WorkerThread " << m_name << ". Error: " << e.what());
    } catch (...) {
        if (std::current_exception() == nullptr) {
            throw;  // pthread_exit() or cancellation: ends this thread only if it gets through
        }
        QUOR_TRACE(Low, "WARNING: WorkerThread " << m_name << ". Unknown exception.");
    }
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": STOPPED");
}

void WorkerThread::Main() {}

}  // namespace quor
