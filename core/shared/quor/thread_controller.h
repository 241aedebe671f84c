#ifndef QUOR_THREAD_CONTROLLER_H
#define QUOR_THREAD_CONTROLLER_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

/// Polling period of the waits of a thread controller, in milliseconds; 100 by default. A
/// controller reads it once, when it is constructed.
extern std::uint32_t cStopSleepPeriodMs;

/// The number of waits after which ThreadController::WaitOnStateEnter() gives up; 100 by default,
/// read at every use.
extern std::uint32_t cRetryCounter;

namespace quor {

/// One pass of the loop.
using LoopFnc = std::function<void()>;
/// Makes the pass in progress return or throw.
using CancelLoopFnc = std::function<void()>;

/// Calls a loop function over and over on a thread of its own, until it is stopped.
///
///     ThreadController scan("scan", [bell] { bell->Await(); }, [bell] { bell->Ring(); });
///     scan.Start();
///     scan.Stop();  // cancels the pass in progress and waits for it
///
/// The caller must ensure that
///   - the cancel function makes a pass in progress return or throw, also if it is called just
///     before the pass begins to wait;
///   - both functions tolerate overlapping calls: while a stop waits, a copy of the cancel function
///   is
///     called at once and then every polling period, each on a thread of its own;
///   - everything the cancel function uses outlives it: a copy may outlive the controller;
///   - the loop calls neither Stop() nor Restart(), which would wait for itself, nor Start(), which
///     would while another thread stops the controller. The asynchronous forms are allowed.
/// The controller guarantees that
///   - no lock is held while either function runs;
///   - everything written before a start is visible to the loop, and after a stop that found
///     the loop running no pass begins until the next start, and everything the last pass wrote is
///     visible;
///   - an exception ends the loop, the cancel call or the asynchronous operation that it leaves,
///     and is traced as a warning. A cancel thread that cannot be created is traced as well, and
///     tried again one polling period later.
///
/// Any thread may call any operation. Throws std::system_error if the thread of a start or of an
/// asynchronous operation cannot be created; a start then leaves the controller stopped.
class ThreadController {
public:
    /// Where the loop stands.
    enum State_e {
        eStopped = 0,     ///< no loop thread
        eStarting = 1,    ///< the loop thread has not yet taken over
        eRunning = 2,     ///< the loop function is being called
        eTerminating = 3  ///< the loop thread has not yet left its loop
    };

    /// Starts nothing. Throws Exception if a function is missing.
    ThreadController(std::string name, LoopFnc loopFnc, CancelLoopFnc cancelLoopFnc);
    ThreadController(const ThreadController&) = delete;
    ThreadController& operator=(const ThreadController&) = delete;
    /// Stops the loop, and waits until no asynchronous operation needs the controller any more. Is
    /// not a cancellation point. Not to be called from the loop.
    ~ThreadController();

    /// Waits for a stop in progress, then starts a stopped controller and waits until its loop
    /// thread has taken over. Always returns true; if there was a stop to wait for, another one may
    /// have begun by then.
    bool Start();
    /// Waits for a start in progress, then stops a running controller and waits until its loop has
    /// ended. Always returns true, and at once if another thread is stopping the controller.
    bool Stop();
    /// Stops a running controller, then starts it again; starts a stopped one. Does nothing if
    /// another thread is stopping it.
    void Restart();

    /// Do the same on a thread of their own, and return at once. Two calls may take effect in
    /// either order: after AsyncStart() and AsyncStop() the controller may be running.
    /// @{
    void AsyncStart();
    void AsyncStop();
    void AsyncRestart();
    /// @}

    /// Returns the state, which may have changed by the time you look at it.
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
    /// "false" is also traced at level High; "throws" is an Exception.
    bool SetState(State_e state);

    /// Returns once the state differs from `state`; calls the cancel function as long as the
    /// controller is terminating. `lock` holds m_mutex, and is released while waiting.
    void WaitOnStateExit(const State_e& state, std::unique_lock<std::mutex>& lock);
    /// The same until the state is `state`. Returns false, and traces that at level Low, if it did
    /// not become so within cRetryCounter waits.
    bool WaitOnStateEnter(const State_e& state, std::unique_lock<std::mutex>& lock);

    std::string m_name;                   ///< used only in messages
    State_e m_state;                      ///< guarded by m_mutex
    std::condition_variable m_condition;  ///< notified at each change of m_state
    mutable std::mutex m_mutex;           ///< not taken by the asynchronous operations
    LoopFnc m_loopFnc;                    ///< never empty
    CancelLoopFnc m_cancelLoopFnc;        ///< never empty; copied for each call
    std::uint32_t m_stopSleepPeriodMs;    ///< cStopSleepPeriodMs at the time of construction

private:
    void StartLoop(std::unique_lock<std::mutex>& lock);
    void StopLoop(std::unique_lock<std::mutex>& lock);
    void EndLoop(std::unique_lock<std::mutex>& lock);
    void StartCancel();
    void WaitAPeriod(const char* wait, const char* purpose, State_e state,
                     std::unique_lock<std::mutex>& lock);
    void RunAside(void (*operation)(ThreadController&));
    void AwaitAside();

    std::mutex m_asideMutex;
    unsigned int m_asideThreads;  // of asynchronous operations; guarded by m_asideMutex
    std::condition_variable m_asideDone;
};

}  // namespace quor

#endif
