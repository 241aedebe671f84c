#ifndef QUOR_SIGNAL_HANDLER_H
#define QUOR_SIGNAL_HANDLER_H

#include <semaphore.h>

#include <map>
#include <thread>

/// Posted once per caught signal. Set to 0 by each new SignalHandlerThread, and never destroyed.
extern sem_t g_semSignal;

namespace quor {

/// Reacts to signals on an ordinary thread. Derive from it.
class SignalHandler {
public:
    SignalHandler() = default;
    SignalHandler(const SignalHandler&) = default;
    SignalHandler& operator=(const SignalHandler&) = default;
    virtual ~SignalHandler();

    /// Called on the signal thread with the number of the signal that arrived. It may lock,
    /// allocate, log and trace, but not stop the signal thread. An exception that leaves it is
    /// traced as a warning and ends that thread.
    virtual void HandleSignal(int number) = 0;
};

/// Hands the signals of the process to a SignalHandler, on one thread.
///
///     SignalHandlerThread* signals = SignalHandlerThread::InstallHandler(handler, nullptr);
///     ...
///     signals->Stop();
///     delete signals;
///
/// The caller must ensure that
///   - one thread alone installs, stops and deletes, after Daemon::Start();
///   - `handler` outlives the signal thread, and Stop() has returned before the object is deleted;
///   - a delivery is taken as a hint to look, not as a count: signals that arrive close together
///     share one slot, and the handler then gets the later number twice.
/// The signal thread guarantees that
///   - the handler is called once per signal, everything written before InstallHandler() is visible
///     to it, and everything it wrote is visible after Stop();
///   - the function that handled the signal before is called first, if it takes only the number:
///     one installed with SA_SIGINFO is not called. One that a failed InstallHandler() has replaced
///     is called, too; one that a stopped signal thread has called is not called by the next.
///
/// Dispositions are never restored. The steps are traced at level Medium.
class SignalHandlerThread {
public:
    SignalHandlerThread(const SignalHandlerThread&) = delete;
    SignalHandlerThread& operator=(const SignalHandlerThread&) = delete;
    /// Call Stop() first. Does not delete the handler, which the caller owns.
    virtual ~SignalHandlerThread();

    /// Makes and starts the one instance, which the caller owns; or returns the one there is and
    /// ignores the arguments. `signals` is an array of numbers that ends in 0; null means SIGHUP,
    /// SIGINT, SIGTERM and SIGQUIT. A later list must contain the earlier ones: a number that is
    /// caught but no longer listed ends the thread ("map::at").
    ///
    /// Throws Exception for a number that cannot be caught, and std::system_error if the thread
    /// cannot be created. The numbers before it stay caught but are not delivered.
    static SignalHandlerThread* InstallHandler(SignalHandler& handler, const int* signals);

    /// Ends the thread and waits for that; signals caught before are delivered first. Throws
    /// std::system_error if called a second time, or by a handler; another thread must then still
    /// call it.
    void Stop();

    /// The body of the thread; not to be called by your program.
    void operator()();

private:
    using Disposition = void (*)(int);

    SignalHandlerThread(SignalHandler& handler, const int* signals);

    void HandleSignals();
    void Deliver();

    SignalHandler& m_handler;
    std::thread m_thread;
    std::map<int, Disposition>
        m_prevHandlers;  // by signal number; not changed once the thread runs
};

}  // namespace quor

#endif
