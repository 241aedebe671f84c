#ifndef QUOR_THREAD_CONTROLLER_H
#define QUOR_THREAD_CONTROLLER_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

/// Polling period of the waits of a thread controller, in milliseconds; 100 at first. Each
/// controller takes it when it is constructed.
extern std::uint32_t cStopSleepPeriodMs;

/// The most waits that ThreadController::WaitOnStateEnter() makes; 100 at first, read at every use.
extern std::uint32_t cRetryCounter;

namespace quor {

/// One pass of a host's loop.
using LoopFnc = std::function<void()>;
/// Makes the pass that is under way return or throw.
using CancelLoopFnc = std::function<void()>;

/// Calls a host's loop function over and over on a thread of its own, under a state machine.
///
/// While a stop waits for the loop to end, the cancel function is called at once and then once per
/// polling period, each time as a copy on a thread of its own, so calls may overlap each other and
/// the loop; both functions must bear that, and a copy may outlive the controller for a moment. No
/// lock is held while either runs.
///
/// All operations may be called from any thread, but Stop() and Restart() not from the loop, which
/// would wait for itself; the asynchronous forms may. An exception that leaves the loop function
/// ends the loop, one that leaves a cancel function or an asynchronous operation ends only its
/// thread; each is traced as a warning. Throws std::system_error when a thread cannot be created:
/// a start then leaves the controller stopped, a stop leaves the loop terminating.
class ThreadController {
public:
    /// Where the loop stands.
    enum State_e {
        eStopped = 0,     ///< no loop thread
        eStarting = 1,    ///< the loop thread has not yet taken over
        eRunning = 2,     ///< the loop function is being called
        eTerminating = 3  ///< the loop thread has not yet left its loop
    };

    /// Starts nothing. Throws Exception when a function is missing.
    ThreadController(std::string name, LoopFnc loopFnc, CancelLoopFnc cancelLoopFnc);
    ThreadController(const ThreadController&) = delete;
    ThreadController& operator=(const ThreadController&) = delete;
    /// Stops the loop, and waits until no thread that an asynchronous operation started needs the
    /// controller any more. Not to be called from the loop.
    ~ThreadController();  // NOLINT(bugprone-exception-escape): see its definition

    /// Completes a stop in progress, then starts a stopped controller and returns when its loop
    /// thread has taken over. Returns true.
    bool Start();
    /// Completes a start in progress, then stops a running controller and returns when its loop has
    /// ended. Returns at once when another thread is stopping it. Returns true.
    bool Stop();
    /// Stops a running controller, then starts it again; starts a stopped one. Does nothing when
    /// another thread is stopping it.
    void Restart();

    /// The same on a thread of their own; they return at once.
    /// @{
    void AsyncStart();
    void AsyncStop();
    void AsyncRestart();
    /// @}

    /// The state, which may have changed by the time it is looked at.
    State_e GetState() const;

protected:
    /// The loop thread's body.
    void Run();

    /// Changes the state and wakes all waiters. The caller holds m_mutex.
    ///
    /// wanted \ current   eStopped   eStarting   eRunning   eTerminating
    /// eStarting          moves      throws      false      throws
    /// eRunning           throws     moves       throws     throws
    /// eTerminating       false      throws      moves      throws
    /// eStopped           throws     throws      throws     moves
    ///
    /// "false" is also traced at level High; what is thrown is Exception.
    bool SetState(State_e state);

    /// Returns once the state differs from `state`; calls the cancel function as long as the
    /// controller is terminating. `lock` holds m_mutex and is let go while waiting.
    void WaitOnStateExit(const State_e& state, std::unique_lock<std::mutex>& lock);
    /// The same until the state is `state`; false, and a trace at level Low, when that did not come
    /// within cRetryCounter waits.
    bool WaitOnStateEnter(const State_e& state, std::unique_lock<std::mutex>& lock);

    std::string m_name;                   ///< for messages alone
    State_e m_state;                      ///< guarded by m_mutex
    std::condition_variable m_condition;  ///< notified at each change of m_state
    mutable std::mutex m_mutex;           ///< not held while a function of the host runs
    LoopFnc m_loopFnc;                    ///< never empty
    CancelLoopFnc m_cancelLoopFnc;        ///< never empty; copied for each call
    std::uint32_t m_stopSleepPeriodMs;    ///< cStopSleepPeriodMs at the time of construction

private:
    void StartLoop(std::unique_lock<std::mutex>& lock);
    void StopLoop(std::unique_lock<std::mutex>& lock);
    void EndLoop(std::unique_lock<std::mutex>& lock);
    void CallLoop(std::unique_lock<std::mutex>& lock);
    void StartCancel();
    void RunAside(void (*operation)(ThreadController&));
    void LeaveAside();
    void AwaitAside();

    std::mutex m_asideMutex;
    unsigned int m_asideThreads;  // of asynchronous operations; guarded by m_asideMutex
    std::condition_variable m_asideDone;
};

}  // namespace quor

#endif
