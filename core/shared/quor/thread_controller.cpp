#include <quor/thread_controller.h>

#include <quor/exception.h>
#include <quor/internal/cancellation_off.h>
#include <quor/internal/guarded_call.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/wall_clock_wait.h>
#include <quor/internal/worker_warning.h>
#include <quor/trace.h>

#include <chrono>
#include <thread>
#include <utility>

std::uint32_t cStopSleepPeriodMs = 100;
std::uint32_t cRetryCounter = 100;

namespace quor {
namespace {

constexpr const char* c_file = "thread_controller";

// What code of the host throws is traced and goes no further.
template <typename Function>
void RunGuarded(const std::string& name, const Function& function) {
    internal::CallGuarded(function, [&name](const char* error) {
        QUOR_TRACE(Low, (internal::WorkerWarning{name, error}));
    });
}

}  // namespace

ThreadController::ThreadController(std::string name, LoopFnc loopFnc, CancelLoopFnc cancelLoopFnc)
    : m_name(std::move(name)),
      m_state(eStopped),
      m_loopFnc(std::move(loopFnc)),
      m_cancelLoopFnc(std::move(cancelLoopFnc)),
      m_stopSleepPeriodMs(cStopSleepPeriodMs),
      m_asideThreads(0) {
    const TraceFnc fnc(
        "quor::ThreadController::ThreadController(std::string, LoopFnc, CancelLoopFnc)", c_file,
        __LINE__);
    if (!m_loopFnc || !m_cancelLoopFnc) {
        throw Exception(m_name + " has no loop function or no cancel function.", true);
    }
}

ThreadController::~ThreadController() {
    const internal::CancellationOff cancellationOff;
    const internal::LateReports reports;
    // An asynchronous start that is still under way may come after the stop.
    do {
        RunGuarded(m_name, [this] {
            std::unique_lock<std::mutex> lock(m_mutex);
            StopLoop(lock);
            WaitOnStateExit(eTerminating, lock);
        });
        AwaitAside();
    } while (GetState() != eStopped);
}

bool ThreadController::Start() {
    const internal::LateReports reports;
    std::unique_lock<std::mutex> lock(m_mutex);
    WaitOnStateExit(eTerminating, lock);
    if (m_state == eStopped) {
        StartLoop(lock);
    }
    return true;
}

bool ThreadController::Stop() {
    const internal::LateReports reports;
    std::unique_lock<std::mutex> lock(m_mutex);
    StopLoop(lock);
    return true;
}

void ThreadController::Restart() {
    const internal::LateReports reports;
    std::unique_lock<std::mutex> lock(m_mutex);
    StopLoop(lock);
    if (m_state == eStopped) {
        StartLoop(lock);
    }
}

void ThreadController::StartLoop(std::unique_lock<std::mutex>& lock) {
    SetState(eStarting);
    try {
        std::thread(&ThreadController::Run, this).detach();
    } catch (...) {
        // No thread will ever take over, so nobody may wait for it.
        m_state = eStopped;
        m_condition.notify_all();
        throw;
    }
    WaitOnStateExit(eStarting, lock);
}

void ThreadController::StopLoop(std::unique_lock<std::mutex>& lock) {
    WaitOnStateExit(eStarting, lock);
    if (m_state == eRunning && SetState(eTerminating)) {
        WaitOnStateExit(eTerminating, lock);
    }
}

void ThreadController::AsyncStart() {
    const TraceFnc fnc("void quor::ThreadController::AsyncStart()", c_file, __LINE__);
    RunAside([](ThreadController& controller) { controller.Start(); });
}

void ThreadController::AsyncStop() {
    const TraceFnc fnc("void quor::ThreadController::AsyncStop()", c_file, __LINE__);
    RunAside([](ThreadController& controller) { controller.Stop(); });
}

void ThreadController::AsyncRestart() {
    const TraceFnc fnc("void quor::ThreadController::AsyncRestart()", c_file, __LINE__);
    RunAside([](ThreadController& controller) { controller.Restart(); });
}

// Not counted under m_mutex, which a derived class may hold when it calls this.
void ThreadController::RunAside(void (*operation)(ThreadController&)) {
    const std::lock_guard<std::mutex> lock(m_asideMutex);
    std::thread([this, operation] {
        try {
            RunGuarded(m_name, [this, operation] { operation(*this); });
        } catch (...) {
            LeaveAside();
            throw;
        }
        LeaveAside();
    }).detach();
    // Counted in time: the thread cannot leave before the mutex is free.
    ++m_asideThreads;
}

void ThreadController::LeaveAside() {
    const std::lock_guard<std::mutex> lock(m_asideMutex);
    --m_asideThreads;
    m_asideDone.notify_all();
}

void ThreadController::AwaitAside() {
    std::unique_lock<std::mutex> lock(m_asideMutex);
    m_asideDone.wait(lock, [this] { return m_asideThreads == 0; });
}

ThreadController::State_e ThreadController::GetState() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_state;
}

// Nothing of the object is touched after the last unlock: its owner may delete it at once.
void ThreadController::Run() {
    const TraceFnc fnc("void quor::ThreadController::Run()", c_file, __LINE__);
    std::unique_lock<std::mutex> lock(m_mutex);
    SetState(eRunning);
    try {
        RunGuarded(m_name, [this, &lock] { CallLoop(lock); });
    } catch (...) {
        EndLoop(lock);
        throw;
    }
    EndLoop(lock);
}

void ThreadController::CallLoop(std::unique_lock<std::mutex>& lock) {
    while (m_state == eRunning) {
        lock.unlock();
        m_loopFnc();
        lock.lock();
    }
}

void ThreadController::EndLoop(std::unique_lock<std::mutex>& lock) {
    if (!lock.owns_lock()) {
        lock.lock();
    }
    if (m_state == eRunning) {
        SetState(eTerminating);  // nobody asked for the end: the loop failed
    }
    SetState(eStopped);
    lock.unlock();
}

bool ThreadController::SetState(State_e state) {
    const std::string current = std::to_string(m_state);
    switch (state) {
        case eStarting:
            if (m_state == eRunning) {
                QUOR_TRACE(High, m_name << " is already running.");
                return false;
            }
            if (m_state != eStopped) {
                throw Exception(m_name + " could not be started since it is not in eStopped state.",
                                true);
            }
            break;
        case eRunning:
            if (m_state != eStarting) {
                throw Exception(
                    m_name +
                        " could be started only from eStarting state. Current state: " + current,
                    true);
            }
            break;
        case eTerminating:
            if (m_state == eStopped) {
                QUOR_TRACE(High, m_name << " is already stopped.");
                return false;
            }
            if (m_state != eRunning) {
                throw Exception(m_name + " is not running, thus it could not be terminated.", true);
            }
            break;
        default:
            if (m_state != eTerminating) {
                throw Exception(
                    m_name + " could be stopped from eTerminating state. Current state: " + current,
                    true);
            }
            break;
    }
    m_state = state;
    m_condition.notify_all();
    return true;
}

// A wait must not end here, or nobody would end the loop: after a period it tries again.
void ThreadController::StartCancel() {
    RunGuarded(m_name, [this] {
        std::thread([name = m_name, cancel = m_cancelLoopFnc] {
            RunGuarded(name, cancel);
        }).detach();
    });
}

void ThreadController::WaitOnStateExit(const State_e& state, std::unique_lock<std::mutex>& lock) {
    const State_e left = state;  // may refer to m_state itself
    for (State_e seen = m_state; seen == left; seen = m_state) {
        if (seen == eTerminating) {
            StartCancel();
            seen = m_state;
        }
        if (!internal::WaitOnce(m_condition, lock,
                                std::chrono::milliseconds(m_stopSleepPeriodMs))) {
            QUOR_TRACE(High, "WaitOnStateExit state changed from  "
                                 << seen << " into " << m_state << " while waiting to exit from "
                                 << left);
        }
    }
}

bool ThreadController::WaitOnStateEnter(const State_e& state, std::unique_lock<std::mutex>& lock) {
    const State_e entered = state;  // may refer to m_state itself
    for (std::uint32_t waits = 0; waits < cRetryCounter; ++waits) {
        State_e seen = m_state;
        if (seen == eTerminating) {
            StartCancel();
            seen = m_state;
        }
        if (seen == entered) {
            return true;
        }
        if (!internal::WaitOnce(m_condition, lock,
                                std::chrono::milliseconds(m_stopSleepPeriodMs))) {
            QUOR_TRACE(High, "WaitOnStateEnter state changed from  "
                                 << seen << " into " << m_state
                                 << " while waiting for entering into " << entered);
        }
        if (m_state == entered) {
            return true;
        }
    }
    QUOR_TRACE(Low, m_name << " didn't come into " << entered << " state in a reasonable time.");
    return false;
}

}  // namespace quor
