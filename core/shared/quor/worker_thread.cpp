#include <quor/worker_thread.h>

#include <quor/exception.h>
#include <quor/internal/cancellation_off.h>
#include <quor/internal/guarded_call.h>
#include <quor/internal/joined.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/wall_clock_wait.h>
#include <quor/internal/worker_warning.h>
#include <quor/trace.h>
#include <quor/worker_pool.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <limits>

namespace quor {
namespace {

using internal::WallClock;

constexpr const char* c_file = "worker_thread";

// The last moment that both the clock and the kernel's interface can express.
WallClock::time_point LastMoment() {
    using Seconds = std::chrono::duration<std::int64_t>;
    constexpr Seconds c_lastOfClock =
        std::chrono::duration_cast<Seconds>(WallClock::duration::max()) - Seconds(1);
    constexpr Seconds c_lastOfKernel(std::numeric_limits<std::time_t>::max());
    return WallClock::time_point(std::min(c_lastOfClock, c_lastOfKernel));
}

// Longer waits than can be expressed last as long as can be.
WallClock::time_point Deadline(std::uint64_t seconds, std::uint64_t nanoseconds) {
    constexpr std::uint64_t c_nanosecondsPerSecond = 1'000'000'000;
    const WallClock::time_point now = WallClock::now();
    const auto longest = std::chrono::nanoseconds(LastMoment() - now).count();
    const std::uint64_t limit = longest > 0 ? static_cast<std::uint64_t>(longest) : 0;
    if (seconds > limit / c_nanosecondsPerSecond ||
        nanoseconds > limit - seconds * c_nanosecondsPerSecond) {
        return LastMoment();
    }
    return now + std::chrono::duration_cast<WallClock::duration>(
                     std::chrono::nanoseconds(seconds * c_nanosecondsPerSecond + nanoseconds));
}

}  // namespace

WorkerThread::WorkerThread(const std::string& name)
    : m_name(name), m_stopRequested(false), m_pool(nullptr) {
    const TraceFnc fnc("quor::WorkerThread::WorkerThread(const std::string&)", c_file, __LINE__);
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": CREATED");
}

WorkerThread::~WorkerThread() {
    const internal::CancellationOff cancellationOff;
    const TraceFnc fnc("virtual quor::WorkerThread::~WorkerThread()", c_file, __LINE__);
    if (IsJoinable()) {
        QUOR_TRACE(Low, "WARNING: Worker thread: " << m_name
                                                   << ": destroyed before its thread was joined");
        Stop();
        if (m_thread.get_id() == std::this_thread::get_id()) {
            m_thread.detach();
        } else {
            m_thread.join();
        }
    }
    QUOR_TRACE(Low, "Worker thread: " << m_name << ": DESTROYED");
    if (m_pool != nullptr) {
        m_pool->Remove(this);
    }
}

// A Start() that has created the thread holds the mutex until it has stored it.
bool WorkerThread::IsJoinable() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_thread.joinable();
}

void WorkerThread::Start() {
    const TraceFnc fnc("void quor::WorkerThread::Start()", c_file, __LINE__);
    const internal::LateReports reports;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_thread.joinable()) {
        throw Exception(internal::Joined({"Worker thread: ", m_name, ": already started"}), true);
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
    const WallClock::time_point deadline = Deadline(seconds, nanoseconds);
    return internal::WaitOnce(m_condition, lock, deadline);
}

void WorkerThread::operator()() {
    const TraceFnc fnc("void quor::WorkerThread::operator()()", c_file, __LINE__);
    const bool ended =
        internal::CallGuarded([this] { Main(); },
                              [this](const char* error) {
                                  QUOR_TRACE(Low, (internal::WorkerWarning{m_name, error}));
                              });
    if (!ended) {
        QUOR_TRACE(Low, "Worker thread: " << m_name << ": STOPPED");
    }
}

void WorkerThread::Main() {}

}  // namespace quor
