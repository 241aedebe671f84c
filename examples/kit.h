#ifndef KIT_H
#define KIT_H

#include <fcntl.h>
#include <pthread.h>
#include <quor/log.h>
#include <quor/signal_handler.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>
#include <vector>

/// What a daemon needs around the library to fail cleanly, and to stop when it is told.
/// Copy this header into your program and change it: it is an example, not a part of the library.
namespace kit {

/// Opens /dev/null for each standard descriptor that is closed. Call it first: the next file that
/// is opened would become standard error, and messages would be written into it.
inline void OpenStandardStreams() {
    int fd = 0;
    do {
        fd = open("/dev/null", O_RDWR);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    if (fd >= 0) {
        close(fd);
    }
}

/// Asks the program to end, because an operator wants it or because something failed. Any thread.
class StopRequest {
public:
    StopRequest() = default;
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    void Request() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requested = true;
        m_condition.notify_all();
    }
    /// Also logs the failure as critical.
    void Fail(const std::string& failure) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_failure = m_failure.empty() ? failure : m_failure;
        }
        Request();
        quor::Log::GetInstance().Critical(failure);
    }
    /// The same for an exception. A refused thread is thrown as std::system_error, whose text alone
    /// does not tell what was refused.
    void Fail(const std::exception& error) {
        const bool isThread = typeid(error) == typeid(std::system_error);
        Fail((isThread ? "Cannot create a thread: " : "") + std::string(error.what()));
    }

    bool IsRequested() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_requested;
    }
    /// Sleeps until the program is asked to end.
    void Await() const {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return m_requested; });
    }
    /// The same, but no longer than `limit`, by a clock that nobody sets.
    void AwaitFor(std::chrono::milliseconds limit) const {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_condition.wait_for(lock, limit, [this] { return m_requested; });
    }
    /// The first failure; empty when there was none.
    std::string Failure() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_failure;
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_condition;
    bool m_requested = false;  // guarded by m_mutex
    std::string m_failure;     // guarded by m_mutex
};

/// What a loop sleeps on. A ring that comes before the sleep is kept. Any thread.
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
    bool m_rung = false;  // guarded by m_mutex
};

/// Runs a thread's work under a name that `ps -T` and gdb show, at most 15 bytes of it. An
/// exception that leaves the work is logged and ends the program, not only the thread.
template <typename Work>
void Guard(const std::string& name, StopRequest& stop, const Work& work) {
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
    try {
        work();
    } catch (const std::exception& error) {
        stop.Fail(name + ": " + error.what());
        throw;  // the library traces it
    }
}

/// Keeps signals pending until a SignalThread can handle them. Call it before Daemon::Start(): once
/// the PID file names the process a signal may come, whose default would end it and leave the file.
inline void HoldSignals(const std::vector<int>& numbers, int how = SIG_BLOCK) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(how, &signals, nullptr);
}

/// Calls a function on the library's signal thread, once for each signal that was caught.
///
/// The library keeps only the number of the signal that came last. This class counts each kind by a
/// handler of its own in front of the library's, so no kind hides another. It stops and deletes the
/// signal thread at its end, also when start-up fails.
///
/// One at a time. Construct it before threads that do not hold the signals back.
class SignalThread {
public:
    /// Signals that are pending together are handled in the order of `numbers`: put those first
    /// that end the program. What `handle` throws is logged, and the thread goes on.
    SignalThread(std::vector<int> numbers, std::function<void(int number)> handle)
        : m_handler(std::move(numbers), std::move(handle)) {
        const std::vector<int>& caught = m_handler.m_numbers;
        HoldSignals(caught);
        std::vector<int> listed(caught);
        listed.push_back(0);
        m_thread.reset(quor::SignalHandlerThread::InstallHandler(m_handler, listed.data()));
        for (const int number : caught) {
            struct sigaction action {};
            sigaction(number, nullptr, &action);
            s_behind[number] = action.sa_handler;
            s_caught[number] = 0;
            action.sa_handler = Count;
            sigaction(number, &action, nullptr);
        }
        HoldSignals(caught, SIG_UNBLOCK);
    }
    SignalThread(const SignalThread&) = delete;
    SignalThread& operator=(const SignalThread&) = delete;
    ~SignalThread() { Stop(); }

    /// Handles what was caught and ends the thread. From now on signals are caught and ignored.
    void Stop() {
        if (m_thread == nullptr) {
            return;
        }
        m_thread->Stop();
        m_thread.reset();
        for (const int number : m_handler.m_numbers) {  // the next one must not find Count()
            std::signal(number, s_behind[number]);
        }
    }

private:
    class Handler : public quor::SignalHandler {
    public:
        Handler(std::vector<int> numbers, std::function<void(int)> handle)
            : m_numbers(std::move(numbers)), m_handle(std::move(handle)) {}
        void HandleSignal(int /* may be of another signal than the one that woke us */) override {
            for (const int number : m_numbers) {
                for (unsigned int left = s_caught[number].exchange(0); left > 0; --left) {
                    Handle(number);
                }
            }
        }
        const std::vector<int> m_numbers;

    private:
        void Handle(int number) {
            try {
                m_handle(number);
            } catch (const std::exception& error) {
                quor::Log::GetInstance().Error(std::string("Signal: ") + error.what());
            }
        }
        const std::function<void(int)> m_handle;
    };

    // Signal context, on any thread: only lock-free operations.
    static_assert(std::atomic<unsigned int>::is_always_lock_free);
    static void Count(int number) {
        s_caught[number].fetch_add(1);
        s_behind[number](number);
    }
    static inline std::atomic<unsigned int> s_caught[NSIG] = {};
    static inline void (*s_behind[NSIG])(int) = {};

    Handler m_handler;
    std::unique_ptr<quor::SignalHandlerThread> m_thread;
};

/// A pool that ends its workers before anything that they use is destroyed, also when start-up
/// fails. All of them are asked to stop before the first is joined, so they end side by side.
class Pool final : public quor::WorkerPool {
public:
    using Make = std::function<quor::WorkerThread*(const std::string& name)>;

    /// `make` returns a new worker of that name. `wake` wakes workers that sleep on something other
    /// than TimedWait(), once they have been asked to stop.
    explicit Pool(
        Make make, std::function<void()> wake = [] {})
        : m_make(std::move(make)), m_wake(std::move(wake)) {}
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    ~Pool() override { End(); }

    void End() {
        for (const std::string& name : m_names) {
            GetWorker(name)->Stop();
        }
        m_names.clear();
        m_wake();
        TerminateAll();
    }

private:
    quor::WorkerThread* CreateWorker(const std::string& name) override {
        std::unique_ptr<quor::WorkerThread> worker(m_make(name));
        if (worker != nullptr) {
            m_names.insert(name);
        }
        return worker.release();
    }

    const Make m_make;
    const std::function<void()> m_wake;
    std::set<std::string> m_names;  // guarded by the pool's mutex while there are workers to make
};

}  // namespace kit

#endif
