#include <quor/exception.h>
#include <quor/signal_handler.h>

#include "threads.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <memory>
#include <system_error>
#include <thread>

static std::atomic<bool> g_holdPost{false};  // the next one, behind two signals

extern "C" int sem_post(sem_t* semaphore) noexcept {
    static const auto post = reinterpret_cast<decltype(&sem_post)>(dlsym(RTLD_NEXT, "sem_post"));
    if (g_holdPost.exchange(false)) {
        raise(SIGUSR1), raise(SIGUSR2);
        for (int turn = 0; turn < 1'000; ++turn) {
            std::this_thread::yield();
        }
    }
    return post(semaphore);
}

namespace quor_test {
namespace {

using quor::SignalHandlerThread;

class Handler : public quor::SignalHandler {
public:
    explicit Handler(std::function<void(int)> handle) : m_handle(std::move(handle)) {}

private:
    void HandleSignal(int number) override { m_handle(number); }
    const std::function<void(int)> m_handle;
};

// A disposition, and after the test the one that was there before.
class Disposition : Guard {
public:
    Disposition(int number, void (*function)(int), int flags = 0) : m_number(number) {
        struct sigaction action {};
        action.sa_handler = function;
        action.sa_flags = flags;
        sigaction(number, &action, &m_saved);
    }
    ~Disposition() { sigaction(m_number, &m_saved, nullptr); }

private:
    const int m_number;
    struct sigaction m_saved {};
};

void Previous(int number) {
    QUOR_TRACE(quor::Low, "previous " << number);
}

void RaiseAnother(int number) {
    if (number == SIGUSR1) {
        raise(SIGUSR2);
    }
}

const std::string c_waiting = "Waiting for semaphore from handler function.\n";
const std::string c_triggered = "Semaphore triggered.\n";

TEST(SignalHandlerThread, HandsSignalsToThePreviousFunctionAndTheHandler) {
    const Disposition dispositions[] = {{SIGUSR1, Previous},
                                        {SIGTERM, SIG_DFL},
                                        {SIGHUP, SIG_IGN},
                                        {SIGUSR2, Previous},
                                        {SIGALRM, Previous, SA_SIGINFO},  // takes three arguments
                                        {SIGWINCH, [](int) {}}};
    const int signals[] = {SIGUSR1, SIGTERM, SIGHUP, SIGUSR2, SIGUSR2, SIGALRM, 0};
    const ThreadTap trace(quor::High);
    Flag handled;
    pthread_t self{};
    auto handler = std::make_unique<Handler>([&](int number) {
        QUOR_TRACE(quor::Low, "handled " << number);
        self = pthread_self();
        handled.Raise();
    });
    SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(*handler, signals);
    EXPECT_EQ(SignalHandlerThread::InstallHandler(*handler, nullptr), thread);
    for (const int number : {SIGUSR1, SIGTERM, SIGHUP, SIGUSR2, SIGALRM}) {
        raise(number);
        handled.Await();
    }
    for (int interruption = 0; interruption < 100; ++interruption) {
        pthread_kill(self, SIGWINCH);  // no delivery
        std::this_thread::yield();
    }
    thread->Stop();
    EXPECT_THROW(thread->Stop(), std::system_error);
    delete thread;
    handler.reset();
    const std::string install =
        "static quor::SignalHandlerThread* "
        "quor::SignalHandlerThread::InstallHandler(quor::SignalHandler&, const int*)";
    const std::string stop = Scope("void quor::SignalHandlerThread::Stop()");
    const std::string ready = c_waiting + c_triggered;
    const std::string expected =
        Scope(install, Scope("quor::SignalHandlerThread::SignalHandlerThread(quor::SignalHandler&, "
                             "const int*)") +
                           "Posix signal handling thread started.\n") +
        Scope(install) + stop + stop + Scope("virtual quor::SignalHandler::~SignalHandler()") +
        "-\n" +
        Scope("void quor::SignalHandlerThread::operator()()",
              ready + "Calling previous signal handler.\nsignal_handler_test: previous 10\n" +
                  "signal_handler_test: handled 10\n" + ready +
                  "signal_handler_test: handled 15\n" + ready + "signal_handler_test: handled 1\n" +
                  ready + "signal_handler_test: handled 12\n" + ready +
                  "signal_handler_test: handled 14\n" + ready +
                  "Got signal to stop signal thread.\n");
    EXPECT_EQ(ThreadTap::ByThread("signal_handler", expected), expected);
}

TEST(SignalHandlerThread, ReadsTheSlotAgainAfterThePreviousFunctionAndIsReplacedOnceStopped) {
    const Disposition dispositions[] = {{SIGUSR1, RaiseAnother}, {SIGUSR2, SIG_DFL}};
    const int signals[] = {SIGUSR1, SIGUSR2, 0};
    std::vector<int> numbers;
    Handler handler([&](int number) { numbers.push_back(number); });
    SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signals);
    raise(SIGUSR1);
    thread->Stop();
    SignalHandlerThread* const next = SignalHandlerThread::InstallHandler(handler, signals);
    EXPECT_NE(next, thread);
    next->Stop();
    delete next;
    delete thread;
    EXPECT_EQ(numbers, (std::vector<int>{SIGUSR2, SIGUSR2}));
}

TEST(SignalHandlerThread, EndsAtAFailureAndIsHandedOutUntilItIsDeleted) {
    const Disposition dispositions[] = {{SIGUSR1, SIG_DFL}, {SIGUSR2, SIG_DFL}};
    const int signals[] = {SIGUSR1, SIGUSR2, 0};
    std::vector<WayOut> ways = c_waysOut;
    ways.push_back({[] {}, "", "std::exception: map::at\n"});  // a number not listed any more
    for (const WayOut& way : ways) {
        const bool listed = &way != &ways.back();
        const ThreadTap trace(quor::Medium);
        Handler handler([&way](int) {
            way.leave();
            pthread_testcancel();
        });
        SignalHandlerThread* const thread =
            SignalHandlerThread::InstallHandler(handler, listed ? signals : signals + 1);
        raise(SIGUSR1);
        const std::string end =
            "-\n" + c_waiting + c_triggered +
            (way.signalWarning.empty() ? "" : "WARNING: Ignored " + way.signalWarning);
        EXPECT_EQ(ThreadTap::ByThread("signal_handler", end), end);
        EXPECT_EQ(SignalHandlerThread::InstallHandler(handler, signals), thread);
        thread->Stop();
        delete thread;
    }
}

TEST(SignalHandlerThread, CanBeInstalledAfterARefusedSignalOrThread) {
    static int calls = 0;
    const Disposition disposition(SIGUSR1, [](int) { ++calls; });
    const int signals[] = {SIGUSR1, SIGKILL, 0};
    int deliveries = 0;
    Handler handler([&deliveries](int) { ++deliveries; });
    try {
        SignalHandlerThread::InstallHandler(handler, signals);
        ADD_FAILURE() << "SIGKILL installed";
    } catch (const quor::Exception& e) {
        EXPECT_STREQ(e.what(), "Can't install handler for 9");
    }
    const int signal[] = {SIGUSR1, 0};
    g_hooks.Plan(Hooks::Bit(Call::eThread), 1);
    EXPECT_THROW(SignalHandlerThread::InstallHandler(handler, signal), std::system_error);
    for (const auto& deliver : {+[] { raise(SIGUSR1); }, +[] { sem_post(&g_semSignal); }}) {
        SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signal);
        deliver();  // the second by a C-level handler that was held up since the first
        thread->Stop();
        delete thread;
    }
    EXPECT_EQ(deliveries, 2);
    EXPECT_EQ(calls, 1);  // in the first installation, though failed ones came before
}

TEST(SignalHandlerThread, CatchesFourSignalsByDefaultAndNoneFromAnEmptyList) {
    const Disposition dispositions[] = {{SIGHUP, SIG_DFL},
                                        {SIGINT, SIG_DFL},
                                        {SIGQUIT, SIG_DFL},
                                        {SIGTERM, SIG_DFL},
                                        {SIGUSR1, SIG_DFL}};
    const int none[] = {0};
    Handler handler([](int) {});
    for (const int* const signals : {none, static_cast<const int*>(nullptr)}) {
        SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signals);
        std::string caught;
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1}) {
            struct sigaction action {};
            sigaction(number, nullptr, &action);
            caught += action.sa_handler == SIG_DFL ? "" : std::to_string(number) + " ";
        }
        EXPECT_EQ(caught, signals == none ? "" : "1 2 3 15 ");
        thread->Stop();
        delete thread;
    }
}

TEST(SignalHandlerThread, StopReturnsWhileAnotherThreadSendsSignals) {
    const Disposition disposition(SIGUSR1, SIG_DFL);
    const int signals[] = {SIGUSR1, 0};
    Handler handler([](int number) { EXPECT_EQ(number, SIGUSR1); });
    std::atomic<bool> sending{false};
    std::thread sender;
    for (int round = 0; round < 1'000; ++round) {
        SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signals);
        if (!sending.exchange(true)) {
            sender = std::thread([&sending] {
                while (sending) {
                    raise(SIGUSR1);
                }
            });
        }
        thread->Stop();
        delete thread;
    }
    sending = false;
    sender.join();
}

TEST(SignalHandlerThread, DeliversAsManySignalsAsWereCaught) {
    const Disposition dispositions[] = {{SIGUSR1, SIG_DFL}, {SIGUSR2, SIG_DFL}};
    const int signals[] = {SIGUSR1, SIGUSR2, 0};
    int deliveries = 0;
    Handler handler([&deliveries](int) { ++deliveries; });
    SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signals);
    for (int round = 0; round < 50'000; ++round) {
        raise(SIGUSR1);
        raise(SIGUSR2);
    }
    g_holdPost = true;
    thread->Stop();
    delete thread;
    EXPECT_EQ(deliveries, 100'002);
}

}  // namespace
}  // namespace quor_test
