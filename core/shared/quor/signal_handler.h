#ifndef QUOR_SIGNAL_HANDLER_H
#define QUOR_SIGNAL_HANDLER_H

#include <semaphore.h>

#include <map>
#include <thread>

/// Posted once per caught signal; set to 0 by each new SignalHandlerThread, never destroyed.
extern sem_t g_semSignal;

namespace quor {

/// What a host does about a signal, on an ordinary thread.
class SignalHandler {
public:
    SignalHandler() = default;
    SignalHandler(const SignalHandler&) = default;
    SignalHandler& operator=(const SignalHandler&) = default;
    virtual ~SignalHandler();

    /// Called on the signal thread with the number of the signal that arrived; it may lock,
    /// allocate, log and trace. An exception that leaves it is traced as a warning and ends the
    /// signal thread.
    virtual void HandleSignal(int number) = 0;
};

/// The one thread per process that hands signals to a SignalHandler.
///
/// The C-level handler stores the signal's number in one slot and posts a semaphore. The thread
/// wakes once per signal, calls the disposition that was in force before, if that was a function
/// other than the library's own, and then the host's handler. Signals that arrive close together
/// share the slot: the handler then gets the later number twice. Treat a delivery as "look".
///
/// For one controlling thread: InstallHandler() once, after Daemon::Start(); at shut-down Stop(),
/// then delete the object. Dispositions are never restored. The steps are traced at level Medium.
class SignalHandlerThread {
public:
    SignalHandlerThread(const SignalHandlerThread&) = delete;
    SignalHandlerThread& operator=(const SignalHandlerThread&) = delete;
    /// Only after Stop(). Does not take `handler` along, which is the host's.
    virtual ~SignalHandlerThread();

    /// Makes and starts the one instance, which the caller owns; or gives the one there is and
    /// ignores its arguments. `signals` is an array of numbers that ends in 0, null for SIGHUP,
    /// SIGINT, SIGTERM and SIGQUIT. A later list must contain the earlier ones: a number that is
    /// caught but not listed any more ends the thread ("map::at"). `handler` must outlive the
    /// thread.
    ///
    /// Throws Exception for a number that cannot be caught, std::system_error when the thread
    /// cannot be created; the numbers before stay caught, but go nowhere.
    static SignalHandlerThread* InstallHandler(SignalHandler& handler, const int* signals);

    /// Ends the thread and waits for that; signals caught before are handed over first. Once per
    /// object: a second call throws std::system_error.
    void Stop();

    /// The thread's body, not for the host to call.
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
