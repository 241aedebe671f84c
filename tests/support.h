#ifndef QUOR_TESTS_SUPPORT_H
#define QUOR_TESTS_SUPPORT_H

#include <quor/log.h>
#include <quor/process.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

/// Tests and their helpers. What must be seen in a stack is not in an unnamed namespace.
namespace quor_test {

using namespace quor;

std::string ReadFile(const std::string& name);
std::ptrdiff_t OpenDescriptors();
/// Thread ids, dates, times, process ids and addresses become "#". What is not laid out to the
/// digit stays as it is, and so differs from the text that a test expects.
std::string Masked(std::string text);
/// The masked blocks around a trace; `event` is "started" or "appended".
std::string TraceOpening(const std::string& event);
std::string TraceClosing();
std::string LogOpening();
/// Stops the trace, and gives its settings their first values.
void ResetTrace();
/// Sleeps until `file` holds `text`. After 10 s, a hang, it throws and names the text.
void WaitForText(const std::string& file, const std::string& text);

/// Runs `action`, which must have no cancellation point, on a thread that has been cancelled.
void RunCancelled(const std::function<void()>& action);

/// What support.cpp puts itself in front of: operator new, malloc and functions of the C library.
enum class Call {
    eMemory,
    eOpen,
    eWrite,  // only with something to write
    eSeek,
    eClose,
    eSync,
    eMode,
    eStat,
    eMap,
    eClock,
    eThread,
    eSignal,
    eRemove,
    eDaemon,
    eWait,  // for a semaphore; is only ever interrupted
    eMask,  // cannot fail
    eCount
};

/// What comes to a call: failure, once or from then on; for writes, half a write; the failure of an
/// interrupted call; the end of the process.
enum class Harm { eOnce, eFromThenOn, eShort, eInterrupted, eKilled };

/// What support.cpp puts in front of the C library, for this program and the library under test.
struct Hooks {
    std::atomic<bool> fakeClock{false};
    std::atomic<time_t> seconds{0};
    std::atomic<time_t> step{0};
    std::atomic<int> counts[static_cast<int>(Call::eCount)]{};  // by Call
    std::atomic<bool> diskFull{false};                          // for descriptors above 2
    static thread_local int allocations;  // that operator new still grants; negative: all

    std::atomic<unsigned> harmed{0};  // by Plan()
    std::atomic<int> left{0};         // calls until harm is done
    std::atomic<Harm> harm{Harm::eOnce};
    std::atomic<bool>* met = nullptr;  // set when harm is done, unless null

    static constexpr unsigned Bit(Call call) { return 1U << static_cast<unsigned>(call); }
    /// Harms the call of that number, from 1, among those of `calls`, a Bit() each; 0 for none.
    void Plan(unsigned calls = 0, int number = 0, Harm kind = Harm::eOnce);
    /// Counts the call. Returns whether it is to fail, with errno set.
    bool Fails(Call call);
    int Calls(Call call) const { return counts[static_cast<int>(call)]; }
};
extern Hooks g_hooks;

/// Guards put back what they borrow from the process.
struct Guard {
    Guard() = default;
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
};

/// Another value of a variable, which ends with its earlier one.
template <typename T, typename Value>
struct ScopedValue : Guard {
    ScopedValue(T& borrowed, Value value) : variable(borrowed), saved(borrowed) {
        variable = value;
    }
    ~ScopedValue() { variable = saved; }
    T& variable;
    Value saved;
};

/// A real-time clock that stands still, or moves on by `step` seconds at every reading, in place of
/// the system's, which is back at the end.
struct FakeClock : Guard {
    explicit FakeClock(time_t seconds, time_t step = 0) {
        g_hooks.seconds = seconds;
        g_hooks.step = step;
        g_hooks.fakeClock = true;
    }
    ~FakeClock() { g_hooks.fakeClock = false; }
    void Advance(time_t seconds) { g_hooks.seconds += seconds; }
};

/// The time zone TZ; the end sets the one from before.
struct ScopedZone : Guard {
    explicit ScopedZone(const std::string& zone);
    ~ScopedZone() { Set(saved); }
    static void Set(const std::string& zone);
    std::string saved;
};

/// A new, empty working directory; the end removes it and returns to the one before.
struct Folder : Guard {
    Folder();
    ~Folder();
    std::string previous;
    std::string path;
};

/// A standard descriptor that goes to `file`, or is closed when that is empty; the end puts it
/// back.
struct Redirected : Guard {
    Redirected(int descriptor, const std::string& file);
    ~Redirected();
    int fd;
    int saved;
};

/// A trace into "trace.log" of a folder of its own; the end resets the trace.
struct TraceTap : Guard {
    explicit TraceTap(TraceLevel_e level = Low);
    ~TraceTap();
    void WaitFor(const std::string& text) const { WaitForText("trace.log", text); }
    /// The masked text written since the opening block or the last call.
    std::string News();
    const Folder folder;
    std::size_t seen;
};

/// One end of the connection between a test and its child process.
struct Pipe : Guard {
    explicit Pipe(int socket) : fd(socket) {}
    ~Pipe() { HangUp(); }
    template <typename T>
    void Send(const T& value) {
        Check(send(fd, &value, sizeof(value), MSG_NOSIGNAL) == sizeof(value));
    }
    template <typename T>
    T Receive() {
        T value{};
        Check(recv(fd, &value, sizeof(value), MSG_WAITALL) == sizeof(value));
        return value;
    }
    void AwaitHangUp() const {
        for (char byte; recv(fd, &byte, 1, 0) > 0;) {
        }
    }
    void HangUp() { close(std::exchange(fd, -1)); }
    static void Check(bool success);
    int fd;
};

/// A forked process that runs `body` and leaves by _exit: 0, or 1 when the body threw.
struct Child : Pipe {
    explicit Child(const std::function<void(Pipe&)>& body);
    ~Child();
    /// Waits for the end: the exit code, or the negative number of the signal.
    int Exit();
    pid_t pid;
};

}  // namespace quor_test

#endif
