#include <quor/signal_handler.h>

#include <quor/detail/errno_keeper.h>
#include <quor/exception.h>
#include <quor/internal/guarded_call.h>
#include <quor/internal/joined.h>
#include <quor/trace.h>

#include <signal.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

sem_t g_semSignal;

namespace quor {
namespace {

constexpr const char* c_file = "signal_handler";
constexpr int cStopSignal = 4077;  // outside the range of signal numbers
constexpr int c_none = 0;
constexpr int c_defaultSignals[] = {SIGHUP, SIGINT, SIGTERM, SIGQUIT, c_none};

// The signal that arrived last and has not been taken yet. The wish to stop has a slot of its own,
// so that neither can overwrite the other.
std::atomic<int> g_signalNumber{c_none};
std::atomic<int> g_stopNumber{c_none};
std::mutex g_stopMutex;  // held while the wish is stored and posted
std::atomic<SignalHandlerThread*> g_signalThread{nullptr};

// The signal that a signal thread took last. It outlives the thread: a C-level handler that was
// held up behind its store posts late, to the next thread.
int g_takenNumber = c_none;

// Signal context: only a lock-free store and sem_post; nothing here may allocate, lock or trace.
static_assert(std::atomic<int>::is_always_lock_free);
extern "C" void SignalHandlerFnc(int number) {
    const detail::ErrnoKeeper keeper;
    (number == cStopSignal ? g_stopNumber : g_signalNumber).store(number);
    sem_post(&g_semSignal);
}

// The functions of the host that failed installations have replaced, by signal number: nothing is
// undone then, and the next one finds only the library's own.
sighandler_t g_replaced[NSIG] = {};

// Catches a signal. Returns what was in force before, or the default for a function that cannot be
// called with a number alone.
sighandler_t Install(int number) {
    struct sigaction found {};
    const bool takesMore =
        sigaction(number, nullptr, &found) == 0 && (found.sa_flags & SA_SIGINFO) != 0;
    const sighandler_t previous = signal(number, SignalHandlerFnc);
    if (previous == SIG_ERR) {
        throw Exception(internal::Joined({"Can't install handler for ", number}), true);
    }
    const sighandler_t replaced = std::exchange(g_replaced[number], SIG_DFL);
    if (previous == SignalHandlerFnc && replaced != SIG_DFL) {
        return replaced;
    }
    return takesMore ? SIG_DFL : previous;
}

void AwaitPost() {
    while (sem_wait(&g_semSignal) == -1 && errno == EINTR) {
    }
}

// The wish to stop may be seen before its post, which counts too: it must be there by now.
int PostsLeft() {
    const std::lock_guard<std::mutex> lock(g_stopMutex);
    int posts = 0;
    sem_getvalue(&g_semSignal, &posts);
    return posts;
}

bool TakeNumber() {
    const int number = g_signalNumber.exchange(c_none);
    if (number == c_none) {
        return false;
    }
    g_takenNumber = number;
    return true;
}

// The slot may have changed since a number was taken from it.
int LatestNumber() {
    const int latest = g_signalNumber.load();
    return latest != c_none ? latest : g_takenNumber;
}

void Forget(SignalHandlerThread* thread) {
    g_signalThread.compare_exchange_strong(thread, nullptr);
}

}  // namespace

SignalHandler::~SignalHandler() {
    const TraceFnc fnc("virtual quor::SignalHandler::~SignalHandler()", c_file, __LINE__);
}

SignalHandlerThread::SignalHandlerThread(SignalHandler& handler, const int* signals)
    : m_handler(handler) {
    const TraceFnc fnc(
        "quor::SignalHandlerThread::SignalHandlerThread(quor::SignalHandler&, const int*)", c_file,
        __LINE__);
    g_stopNumber.store(c_none);
    sem_init(&g_semSignal, 0, 0);
    try {
        for (const int* number = signals != nullptr ? signals : c_defaultSignals; *number != c_none;
             ++number) {
            Disposition& previous = m_prevHandlers[*number];
            previous = Install(*number);
        }
        m_thread = std::thread(std::ref(*this));
    } catch (...) {
        for (const auto& [number, previous] : m_prevHandlers) {
            if (previous != SIG_DFL && previous != SignalHandlerFnc) {
                g_replaced[number] = previous;
            }
        }
        throw;
    }
}

SignalHandlerThread::~SignalHandlerThread() {
    Forget(this);  // its thread may have ended by an exception, which leaves the pointer
}

SignalHandlerThread* SignalHandlerThread::InstallHandler(SignalHandler& handler,
                                                         const int* signals) {
    const TraceFnc fnc(
        "static quor::SignalHandlerThread* "
        "quor::SignalHandlerThread::InstallHandler(quor::SignalHandler&, const int*)",
        c_file, __LINE__);
    if (g_signalThread.load() == nullptr) {
        g_signalThread.store(new SignalHandlerThread(handler, signals));
        QUOR_TRACE(High, "Posix signal handling thread started.");
    }
    return g_signalThread.load();
}

void SignalHandlerThread::Stop() {
    const TraceFnc fnc("void quor::SignalHandlerThread::Stop()", c_file, __LINE__);
    {
        const std::lock_guard<std::mutex> lock(g_stopMutex);
        SignalHandlerFnc(cStopSignal);
    }
    m_thread.join();
}

void SignalHandlerThread::operator()() {
    const TraceFnc fnc("void quor::SignalHandlerThread::operator()()", c_file, __LINE__);
    internal::CallGuarded(
        [this] { HandleSignals(); },
        [](const char* error) {
            QUOR_TRACE(Low, "WARNING: Ignored "
                                << (error != nullptr ? "std::exception: " : "unknown exception.")
                                << (error != nullptr ? error : ""));
        });
}

void SignalHandlerThread::HandleSignals() {
    TakeNumber();  // one from before the semaphore was set to 0
    bool stopping = false;
    int postsLeft = 0;
    for (;;) {
        QUOR_TRACE(Medium, "Waiting for semaphore from handler function.");
        AwaitPost();
        QUOR_TRACE(Medium, "Semaphore triggered.");
        if (!stopping && g_stopNumber.load() == cStopSignal) {
            // Signals that arrived before the wish are still handed over, but no endless stream.
            stopping = true;
            postsLeft = PostsLeft() + 1;
        }
        const bool taken = TakeNumber();
        const bool last = stopping && --postsLeft == 0;
        if (taken || !last) {
            Deliver();
        }
        if (last) {
            QUOR_TRACE(Medium, "Got signal to stop signal thread.");
            Forget(this);
            return;
        }
    }
}

void SignalHandlerThread::Deliver() {
    const Disposition previous = m_prevHandlers.at(g_takenNumber);
    if (previous != SIG_DFL && previous != SIG_IGN && previous != SignalHandlerFnc) {
        QUOR_TRACE(Medium, "Calling previous signal handler.");
        previous(LatestNumber());
    }
    m_handler.HandleSignal(LatestNumber());
}

}  // namespace quor
