#include "support.h"

#include <dlfcn.h>
#include <poll.h>
#include <regex.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <new>

namespace quor_test {

Hooks g_hooks;
thread_local int Hooks::allocations = -1;

void Hooks::Plan(unsigned calls, int number, Harm kind) {
    left = number;
    harm = kind;
    harmed = calls;
}

bool Hooks::Fails(Call call) {
    const auto index = static_cast<unsigned>(call);
    ++counts[index];
    if ((harmed >> index & 1U) == 0) {
        return false;
    }
    const int before = left--;
    if (before > 1 || (before < 1 && harm != Harm::eFromThenOn)) {
        return false;
    }
    if (met != nullptr) {
        *met = true;
    }
    if (harm == Harm::eKilled) {
        kill(getpid(), SIGKILL);
    }
    // What the calls most likely fail with, in the order of Call.
    constexpr int c_errors[] = {ENOMEM, EMFILE, ENOSPC, ESPIPE, EIO,    EIO,    EPERM, EIO,
                                ENOMEM, EINVAL, EAGAIN, EINVAL, EACCES, EAGAIN, EINTR, EINVAL};
    errno = harm == Harm::eInterrupted ? EINTR : c_errors[index];
    return true;
}

}  // namespace quor_test

using quor_test::Call;
using quor_test::g_hooks;
using quor_test::Harm;

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (clock == CLOCK_REALTIME && g_hooks.fakeClock) {
        *now = {g_hooks.seconds.fetch_add(g_hooks.step), 0};
        return 0;
    }
    if (g_hooks.Fails(Call::eClock)) {
        *now = {};  // the C++ library does not look at the result
        return -1;
    }
    return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
}

ssize_t write(int fd, const void* data, size_t size) {
    pthread_testcancel();
    if (size > 0 && g_hooks.Fails(Call::eWrite)) {
        return g_hooks.harm == Harm::eShort ? syscall(SYS_write, fd, data, size / 2) : -1;
    }
    if (g_hooks.diskFull && fd > STDERR_FILENO) {
        errno = ENOSPC;
        return -1;
    }
    return syscall(SYS_write, fd, data, size);
}

// Defines a function of the C library that fails when asked to: with `failure`, before `outcome`,
// in which `real` is the library's own. The headers' declarations differ in noexcept and dots.
#define QUOR_HOOK(type, name, parameters, call, failure, outcome)                \
    type Hooked_##name parameters __asm__(#name);                                \
    type Hooked_##name parameters {                                              \
        static const auto real =                                                 \
            reinterpret_cast<decltype(&Hooked_##name)>(dlsym(RTLD_NEXT, #name)); \
        return g_hooks.Fails(call) ? (failure) : (outcome);                      \
    }

QUOR_HOOK(int, open, (const char* name, int flags, mode_t mode), Call::eOpen, -1,
          real(name, flags, mode))
QUOR_HOOK(int, open64, (const char* name, int flags, mode_t mode), Call::eOpen, -1,
          real(name, flags, mode))
QUOR_HOOK(FILE*, fopen64, (const char* name, const char* mode), Call::eOpen, nullptr,
          real(name, mode))
QUOR_HOOK(long long, lseek64, (int fd, long long offset, int whence), Call::eSeek, -1,
          real(fd, offset, whence))
QUOR_HOOK(int, close, (int fd), Call::eClose, (real(fd), -1), real(fd))
QUOR_HOOK(int, fsync, (int fd), Call::eSync, -1, real(fd))
QUOR_HOOK(int, fchmod, (int fd, mode_t mode), Call::eMode, -1, real(fd, mode))
// NOLINTNEXTLINE(bugprone-branch-clone): it is counted, and never fails
QUOR_HOOK(mode_t, umask, (mode_t mask), Call::eMask, real(mask), real(mask))
QUOR_HOOK(int, fstat64, (int fd, void* status), Call::eStat, -1, real(fd, status))
QUOR_HOOK(void*, mmap64, (void* at, size_t size, int access, int flags, int fd, long long offset),
          Call::eMap, MAP_FAILED, real(at, size, access, flags, fd, offset))
QUOR_HOOK(int, sem_wait, (sem_t * semaphore), Call::eWait, -1, real(semaphore))
QUOR_HOOK(sighandler_t, signal, (int number, sighandler_t handler), Call::eSignal, SIG_ERR,
          real(number, handler))
QUOR_HOOK(int, remove, (const char* name), Call::eRemove, -1, real(name))
QUOR_HOOK(int, daemon, (int keepFolder, int keepStreams), Call::eDaemon, -1,
          real(keepFolder, keepStreams))
QUOR_HOOK(int, pthread_create,
          (pthread_t * thread, const pthread_attr_t* attributes, void* (*body)(void*),
           void* argument),
          Call::eThread, EAGAIN, real(thread, attributes, body, argument))
// The last steps of an assertion, which nobody waits for, are said on standard error.
void sync() noexcept {
    dprintf(STDERR_FILENO, "synced\n");
}

int nanosleep(const timespec* pause, timespec* /*left*/) {
    return dprintf(STDERR_FILENO, "paused %ld ns\n",
                   pause->tv_sec * 1'000'000'000 + pause->tv_nsec) *
           0;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizers' own adds a frame of theirs to every stack.
int backtrace(void** frames, int size) {
    void* all[130];
    static const auto real =
        reinterpret_cast<int (*)(void**, int)>(dlsym(dlopen("libc.so.6", RTLD_LAZY), "backtrace"));
    const int count = size > 0 ? real(all, std::min(size + 1, 130)) - 1 : 0;
    std::copy_n(all + 1, count, frames);
    return count;
}
#endif

}  // extern "C"

// The sanitizers need malloc for themselves.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QUOR_MALLOC std::malloc
#else
#define QUOR_MALLOC __libc_malloc
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* HookedMalloc(std::size_t size) __asm__("malloc");
void* HookedMalloc(std::size_t size) {
    return g_hooks.Fails(Call::eMemory) ? nullptr : QUOR_MALLOC(size);
}
#endif

// Not inlined: GCC would see malloc met by delete.
__attribute__((noinline)) void* operator new(std::size_t size) {
    int& allocations = quor_test::Hooks::allocations;
    void* const memory =
        allocations == 0 || g_hooks.Fails(Call::eMemory) ? nullptr : QUOR_MALLOC(size | 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocations -= allocations > 0 ? 1 : 0;
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace quor_test {

namespace fs = std::filesystem;

// One folder for the whole run, which a guard removes, along with the daemons in it, if nothing
// else does. Death tests start this program again, within the run.
static const int c_guarded = [] {
    if (std::getenv("QUOR_GUARDED") != nullptr) {
        return 0;
    }
    std::string folder = fs::temp_directory_path() / "quor.XXXXXX";
    setenv("TMPDIR", mkdtemp(folder.data()), 1);
    setenv("QUOR_GUARDED", "yes", 1);
    const std::string guard = "setsid " QUOR_TEST_GUARD " " + std::to_string(getpid());
    return std::system((guard + " " + folder + " >/dev/null 2>&1 &").c_str());
}();

// What the file held when it was opened: a writer may be faster than any reader.
std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary | std::ios::ate);
    std::string text(static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0)), '\0');
    file.seekg(0).read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

std::ptrdiff_t OpenDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

std::string Masked(std::string text) {
    const std::pair<const char*, std::string> masks[] = {
        {"[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}(\\.[0-9]{9})?", "#"},
        {"\\[[0-9]{5,}: [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{9}\\]", "[#: #]"},
        {"Process id    : [0-9]+", "Process id    : #"},
        {"0x[0-9a-f]+", "#"}};
    for (const auto& [pattern, mask] : masks) {
        regex_t regex;
        Pipe::Check(regcomp(&regex, pattern, REG_EXTENDED) == 0);
        regmatch_t match;
        for (std::size_t at = 0; regexec(&regex, text.data() + at, 1, &match, 0) == 0;
             at += mask.size()) {
            at += static_cast<std::size_t>(match.rm_so);
            text.replace(at, static_cast<std::size_t>(match.rm_eo - match.rm_so), mask);
        }
        regfree(&regex);
    }
    return text;
}

static std::string Opening(const std::string& title, const std::string& more) {
    const std::string rule(79, '-');
    return rule + "\n* *****" + title + " *****\n\n* Version       : " + VerInfo::VersionString() +
           "\n* Start time    : #\n* Process name  : " + program_invocation_short_name + "\n" +
           more + rule + "\n\n";
}

std::string TraceOpening(const std::string& event) {
    return Opening(" Trace " + event, "* Process id    : #\n");
}

std::string LogOpening() {
    return Opening("Logging started", "");
}

std::string TraceClosing() {
    const std::string rule(79, '-');
    return "\n" + rule + "\n* ***** Trace stopped *****\n\n* End time      : #\n" + rule + "\n";
}

void ResetTrace() {
    TraceFile& trace = TraceFile::GetInstance();
    trace.Stop();
    trace.SetLevel(Off);
    trace.SetPrintFile(false);
    trace.SetPrintLine(true);
    trace.SetDumpStack(false);
}

void WaitForText(const std::string& file, const std::string& text) {
    pollfd changes{inotify_init1(IN_NONBLOCK), POLLIN, 0};
    inotify_add_watch(changes.fd, file.c_str(), IN_MODIFY);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    char events[4096];
    while (ReadFile(file).find(text) == std::string::npos) {
        if (poll(&changes, 1, 10'000) == 0 || std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("no \"" + text + "\" in " + file + ":\n" + ReadFile(file));
        }
        Pipe::Check(read(changes.fd, events, sizeof(events)) > 0);
    }
    close(changes.fd);
}

void RunCancelled(const std::function<void()>& action) {
    std::thread([&action] {
        pthread_cancel(pthread_self());
        action();
        pthread_testcancel();
        ADD_FAILURE() << "can no longer be cancelled";
    }).join();
}

ScopedZone::ScopedZone(const std::string& zone) {
    const char* const current = std::getenv("TZ");
    saved = current != nullptr ? current : ":/etc/localtime";
    Set(zone);
}

void ScopedZone::Set(const std::string& zone) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
}

Folder::Folder() : previous(fs::current_path()), path(fs::temp_directory_path() / "quor.XXXXXX") {
    fs::current_path(mkdtemp(path.data()));
}

Folder::~Folder() {
    fs::current_path(previous);
    fs::remove_all(path);
}

Redirected::Redirected(int descriptor, const std::string& file) : fd(descriptor), saved(dup(fd)) {
    std::cout.flush();
    close(fd);
    Pipe::Check(file.empty() || open(file.c_str(), O_RDWR | O_CREAT | O_APPEND, 0600) == fd);
}

Redirected::~Redirected() {
    std::cout.flush();
    std::cout.clear();
    dup2(saved, fd);
    close(saved);
}

TraceTap::TraceTap(TraceLevel_e level) : seen(0) {
    TraceFile::Init("trace.log", "");
    TraceFile::GetInstance().Start(level);
    News();
}

TraceTap::~TraceTap() {
    ResetTrace();
}

std::string TraceTap::News() {
    const std::string text = ReadFile("trace.log");
    return Masked(text.substr(std::exchange(seen, text.size())));
}

void Pipe::Check(bool success) {
    if (!success) {
        throw std::runtime_error("a test's helper failed: " + std::to_string(errno));
    }
}

Child::Child(const std::function<void(Pipe&)>& body) : Pipe(-1) {
    int ends[2];
    Check(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0 && (pid = fork()) != -1);
    fd = ends[pid == 0 ? 1 : 0];
    close(ends[pid == 0 ? 0 : 1]);
    if (pid == 0) {
        try {
            body(*this);
            _exit(0);
        } catch (const std::exception& error) {
            std::cerr << "child: " << error.what() << std::endl;
            _exit(1);
        }
    }
}

Child::~Child() {
    if (pid != -1) {
        kill(pid, SIGKILL);
        Exit();
    }
}

int Child::Exit() {
    int status = 0;
    waitpid(std::exchange(pid, -1), &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace quor_test
