#include <quor/thread_controller.h>

#include <quor/exception.h>
#include <quor/internal/at_scope_end.h>
#include <quor/internal/cancellation_off.h>
#include <quor/internal/controller_rules.h>
#include <quor/internal/guarded_call.h>
#include <quor/internal/joined.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/wall_clock_wait.h>
#include <quor/internal/worker_warning.h>
#include <quor/trace.h>

#include <chrono>
#include <functional>
#include <thread>
#include <utility>

std::uint32_t cStopSleepPeriodMs = 100;
std::uint32_t cRetryCounter = 100;

namespace quor {
namespace {

constexpr const char* c_file = "thread_controller";

// Of one type of thread: each would bring a vtable and its relocations.
void Detach(std::function<void()> body) {
    std::thread(std::move(body)).detach();
}

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
        throw Exception(internal::Joined({m_name, " has no loop function or no cancel function."}),
                        true);
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
        Detach([this] { Run(); });
    } catch (...) {
        // No thread will ever take over. Nobody has seen eStarting: the lock was held all the time.
        m_state = eStopped;
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
    Detach([this, operation] {
        const internal::AtScopeEnd leave([this] {
            const std::lock_guard<std::mutex> asideLock(m_asideMutex);
            --m_asideThreads;
            m_asideDone.notify_all();
        });
        RunGuarded(m_name, [this, operation] { operation(*this); });
    });
    // Counted in time: the thread cannot leave before the mutex is free.
    ++m_asideThreads;
}

void ThreadController::AwaitAside() {
    std::unique_lock<std::mutex> lock(m_asideMutex);
    m_asideDone.wait(lock, [this] { return m_asideThreads == 0; });
}

// Nothing of the object is touched after the last unlock: its owner may delete it at once.
void ThreadController::Run() {
    const TraceFnc fnc("void quor::ThreadController::Run()", c_file, __LINE__);
    std::unique_lock<std::mutex> lock(m_mutex);
    SetState(eRunning);
    try {
        RunGuarded(m_name, [this, &lock] {
            while (m_state == eRunning) {
                lock.unlock();
                m_loopFnc();
                lock.lock();
            }
        });
    } catch (...) {
        EndLoop(lock);
        throw;
    }
    EndLoop(lock);
}

void ThreadController::EndLoop(std::unique_lock<std::mutex>& lock) {
    if (!lock.owns_lock()) {
        lock.lock();
    }
    if (m_state == eRunning) {
        SetState(eTerminating);  // nobody asked for the end: the loop failed
    }
    SetState(eStopped);
}

// A wait must not end here, or nobody would end the loop: after a period it tries again.
void ThreadController::StartCancel() {
    RunGuarded(m_name, [this] {
        Detach([name = m_name, cancel = m_cancelLoopFnc] { RunGuarded(name, cancel); });
    });
}

ThreadController::State_e ThreadController::GetState() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_state;
}

bool ThreadController::SetState(State_e state) {
    const internal::ControllerRule& rule = internal::RuleFor(state);
    if (m_state != rule.from) {
        if (m_state == rule.settled) {
            QUOR_TRACE(High, m_name << rule.settledText);
            return false;
        }
        const std::string found = rule.tellsState ? std::to_string(m_state) : std::string();
        throw Exception(internal::Joined({m_name, rule.refusal, found}), true);
    }
    m_state = state;
    m_condition.notify_all();
    return true;
}

// One wait of either kind; the texts go into the trace.
void ThreadController::WaitAPeriod(const char* wait, const char* purpose, State_e state,
                                   std::unique_lock<std::mutex>& lock) {
    const State_e seen = m_state;
    if (!internal::WaitOnce(m_condition, lock, std::chrono::milliseconds(m_stopSleepPeriodMs))) {
        QUOR_TRACE(High, wait << " state changed from  " << seen << " into " << m_state
                              << " while waiting " << purpose << state);
    }
}

void ThreadController::WaitOnStateExit(const State_e& state, std::unique_lock<std::mutex>& lock) {
    const State_e left = state;  // may refer to m_state itself
    while (m_state == left) {
        if (left == eTerminating) {
            StartCancel();
        }
        WaitAPeriod("WaitOnStateExit", "to exit from ", left, lock);
    }
}

bool ThreadController::WaitOnStateEnter(const State_e& state, std::unique_lock<std::mutex>& lock) {
    const State_e entered = state;  // may refer to m_state itself
    bool isEntered = false;
    for (std::uint32_t waits = 0; waits < cRetryCounter && !isEntered; ++waits) {
        if (m_state == eTerminating) {
            StartCancel();
        }
        if (m_state != entered) {
            WaitAPeriod("WaitOnStateEnter", "for entering into ", entered, lock);
        }
        isEntered = m_state == entered;
    }
    if (!isEntered) {
        QUOR_TRACE(Low,
                   m_name << " didn't come into " << entered << " state in a reasonable time.");
    }
    return isEntered;
}

}  // namespace quor
