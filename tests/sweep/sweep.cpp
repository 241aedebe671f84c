// Runs every public operation of the library that allocates or calls the system, in one process for
// each point at which something can fail: the n-th allocation, the n-th system call. Once or from
// then on, by half, interrupted, or as the end of the process, for every n until a run meets no
// fault. `sweep [ACT]...` runs these acts, or all; it prints each broken promise with its n.

#include "../threads.h"

#include <quor/assert.h>
#include <quor/daemon.h>
#include <quor/exception.h>
#include <quor/signal_handler.h>
#include <quor/synchronizer.h>
#include <quor/thread_controller.h>

#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

namespace quor_test {
namespace {

namespace fs = std::filesystem;

constexpr unsigned c_memory = Hooks::Bit(Call::eMemory);
constexpr unsigned c_threads = Hooks::Bit(Call::eThread);
constexpr unsigned c_own = Hooks::Bit(Call::eSignal);  // an Exception
constexpr unsigned c_system = (Hooks::Bit(Call::eCount) - 1) & ~c_memory;

constexpr unsigned c_hang = 20;  // seconds
constexpr int c_enough = 3;      // broken promises, for each of two processes

// What all processes of a point see.
struct Shared {
    std::atomic<bool> met;
    std::atomic<int> points;
    std::atomic<int> broken;
    char verdict[2000];
};
Shared* g_shared = nullptr;
int g_pass = 0;
bool g_faulty = false;  // whether this pass may fail

// Puts the fault off.
struct Calm : ScopedValue<std::atomic<unsigned>, unsigned> {
    Calm() : ScopedValue(g_hooks.harmed, 0U) {}
};

void Require(bool condition, const char* promise, const char* detail = "") {
    if (!condition) {
        const Calm calm;
        throw std::logic_error(promise + std::string(detail) + " in pass " +
                               std::to_string(g_pass));
    }
}

// Runs one operation, which may throw what its header names for these faults. Returns whether it
// threw nothing.
template <typename Operation>
bool Try(unsigned faults, const Operation& operation) {
    try {
        operation();
        return true;
    } catch (const std::bad_alloc&) {
        Require(g_faulty && (faults & c_memory) != 0, "throws bad_alloc");
    } catch (const std::system_error&) {
        Require(g_faulty && (faults & c_threads) != 0, "throws system_error");
    } catch (const Exception& error) {
        Require(g_faulty && (faults & c_own) != 0, "throws ", error.what());
    }
    return false;
}

// A text of this pass that shows where it is cut.
std::string Text(const std::string& name, std::size_t length = 0) {
    return "|" + name + std::to_string(g_pass) + std::string(length, '.') + "|";
}

void RequireIn(const char* file, const std::string& text) {
    const Calm calm;
    Require(ReadFile(file).find(text) != std::string::npos, "nothing in ", file);
}

void InitLog(const char* file) {
    if (!Try(c_memory, [&] { Log::Init(file); })) {
        const Calm calm;
        Log::Init(file);
    }
}

// Logs one message. Without an exception it is there, unless calls fail.
void Say(void (Log::*severity)(const std::string&), const char* file, const char* name,
         std::size_t length = 0) {
    std::unique_ptr<const std::string> text;
    {
        const Calm calm;
        text = std::make_unique<std::string>(Text(name, length));
    }
    if (Try(c_memory, [&] { (Log::GetInstance().*severity)(*text); }) &&
        (!g_faulty || g_hooks.harmed == c_memory)) {
        const Calm calm;
        std::cout.flush();
        RequireIn(file, *text);
    }
}

void LogAct() {
    InitLog("app.log");
    Say(&Log::Info, "app.log", "info");
    Say(&Log::Warning, "app.log", "long", 3000);
    InitLog("missing/app.log");
    Say(&Log::Critical, "out", "unopened");
    InitLog("");
    Say(&Log::Error, "out", "nameless");
    InitLog("app.log");
    Try(c_memory, [] {
        TraceFile::Init("trace.log", "");
        TraceFile::GetInstance().Start(Low);
    });
    Say(&Log::Error, "app.log", "traced");
    Try(c_memory, [] { LogCritical(Text("critical")); });
    if (!g_faulty) {
        RequireIn("trace.log", Text("traced"));
        RequireIn("trace.log", ": Critical: " + Text("critical"));
    }
}

TraceFile& Tracing() {
    const Calm calm;
    return TraceFile::GetInstance();
}

// The name of a source file for which a line has no room.
const std::string g_longFile(1000, 'f');

// Traces at sites, which throw nothing.
void Sites(TraceFile& trace) {
    QUOR_TRACE_FNC();
    QUOR_TRACE(Low, "|site" << g_pass << "|");
    QUOR_TRACE(Low, "|long site" << g_pass << std::setw(2000) << "|");
    Try(c_memory, [&] { trace.Trace(Low, "", "site", 1, Text("function", 1000)); });
    const TraceFnc fnc("f()", g_longFile.c_str(), 1);
    detail::TraceMessage message;
    message.Stream() << "|long file" << g_pass << "|";
    message.Write(Low, "", g_longFile.c_str(), 1);
    const Exception fits(std::string("|short|"), true);
    const Exception exceeds("as long as does not fit into the text itself", true);
}

void TraceAct() {
    TraceFile& trace = Tracing();
    Try(c_memory, [] { TraceFile::Init("trace.log", "."); });
    Try(c_memory, [&] { trace.Start(High); });
    Sites(trace);
    Try(c_memory, [&] { trace.SetLevel(Detail); });
    trace.SetPrintFile(true);
    Sites(trace);
    Try(c_memory, [&] { trace.DumpStack(); });
    Try(c_memory, [&] { trace.Pause(); });
    Try(c_memory, [&] { trace.Reopen(); });
    Try(c_memory, [&] { trace.Continue(); });
    {
        const Calm calm;
        rename("trace.log", "rotated.log");
    }
    Try(c_memory, [&] { trace.Reopen(); });
    Try(c_memory, [&] { trace.GeneratedTraceFileName(); });
    Sites(trace);
    if (!g_faulty) {
        RequireIn("rotated.log", Text("site"));
        RequireIn("trace.log", Text("function", 1000));
        RequireIn("trace.log", g_longFile + "   1: " + Text("long file"));
    }
}

void ConsoleAct() {
    TraceFile& trace = Tracing();
    Try(c_memory, [] { TraceFile::Init("-", ""); });
    Try(c_memory, [&] { trace.Start(Detail); });
    Sites(trace);
    Try(c_memory, [&] { trace.SetLevel(Off); });
    if (!g_faulty) {
        RequireIn("out", Text("function", 1000));
    }
}

struct Notes : LogFile {
    ~Notes() override {
        const Calm calm;  // a destructor may not throw
        Close();
    }
    using LogFile::Close;
    using LogFile::Open;
    using LogFile::Write;
    std::string FileHeader() const override { return "[#] head\n"; }
    std::string AppendBanner() const override { return "[#] more of a banner than fits into it\n"; }
    std::string FileTrailer() const override { return "[#] trailer as long as does not fit\n"; }
    std::string LineHeader() const override { return "[#] "; }
};

void FileAct() {
    Notes notes;
    for (int round = 0; round < 2; ++round) {
        bool opened = false;
        Try(c_memory, [&] { opened = notes.Open("notes.log", true); });
        Try(c_memory, [&] { notes.Write(Text("note").c_str(), 0); });
        Try(c_memory, [&] { notes.Write(Text("long note", 2000).c_str(), 0); });
        Try(c_memory, [&] { notes.Close(); });
        Require(opened || g_faulty, "cannot be opened again");
    }
    if (!g_faulty) {
        RequireIn("notes.log", Text("long note", 2000) + "\n[#] trailer");
    }
}

void StartTrace() {
    Try(c_memory, [] { TraceFile::Init("trace.log", ""); });
    Try(c_memory, [] { TraceFile::GetInstance().Start(Detail); });
}

void WorkersAct() {
    StartTrace();
    std::atomic<int> runs{0};
    std::mutex first;
    std::mutex second;
    const auto work = [&runs](Worker& worker) {
        ++runs;
        worker.TimedWait(0, 1);
        throw Exception("thrown by the worker as its end", true);
    };
    std::optional<Calm> calm(std::in_place);
    Pool pool{Worker::Work(work)};
    calm.reset();
    for (const char* const name : {"a worker with a long name", "b", "c"}) {
        Try(c_memory | c_threads, [&] { pool.GetWorker(name)->Start(); });
    }
    Try(c_memory | c_threads, [&] { pool.GetWorker("b")->Stop(); });
    Try(c_memory, [&] { pool.Terminate("b"); });
    Try(c_memory, [&] {
        const Lock both(first, second);
        Synchronizer ready(1, 1, 1);
        ready.Increment();
        ready.Decrement();
        ready.Decrement();
        Require(ready.Wait(), "a barrier at 0 does not open");
    });
    Require(first.try_lock() && second.try_lock(), "a Lock leaves a mutex locked");
    first.unlock();
    second.unlock();
    Try(c_memory, [&] { pool.TerminateAll(); });
    calm.emplace();
    pool.TerminateAll();
    Require(g_faulty || runs == 3, "a worker does not run");
}

void ControllerAct() {
    StartTrace();
    std::optional<Calm> calm(std::in_place);
    auto passes = std::make_shared<std::atomic<int>>(0);
    const LoopFnc pass = [passes] { ++*passes, std::this_thread::yield(); };
    const CancelLoopFnc cancel = [passes] {
        throw Exception("thrown by the cancel function", true);
    };
    calm.reset();
    std::optional<ThreadController> loop;
    if (!Try(c_memory, [&] { loop.emplace("a controller with a long name", pass, cancel); })) {
        return;
    }
    Try(c_memory | c_threads, [&] { loop->Start(); });
    Try(c_memory | c_threads, [&] { loop->Restart(); });
    Try(c_memory, [&] { loop->Stop(); });
    Require(loop->GetState() == ThreadController::eStopped, "not stopped");
    for (const auto operation : {&ThreadController::AsyncStart, &ThreadController::AsyncRestart,
                                 &ThreadController::AsyncStop}) {
        Try(c_memory | c_threads, [&] { (*loop.*operation)(); });
    }
    Try(c_memory, [&] { loop->Stop(); });
    loop.reset();
    Require(g_faulty || *passes > 0, "the loop does not run");
}

void SignalsAct() {
    StartTrace();
    struct Counter : SignalHandler {
        void HandleSignal(int number) override {
            calls += number == SIGUSR1 ? 1 : 0;
            throw Exception("thrown by the handler as the end of its thread", true);
        }
        int calls = 0;
    } counter;
    const int signals[] = {SIGUSR1, 0};
    SignalHandlerThread* thread = nullptr;
    Try(c_memory | c_threads | c_own,
        [&] { thread = SignalHandlerThread::InstallHandler(counter, signals); });
    if (thread != nullptr) {
        raise(SIGUSR1);
        Try(c_memory, [&] { thread->Stop(); });
        delete thread;
        Require(counter.calls == 1, "a signal is lost");
    }
    Require(g_faulty || thread != nullptr, "no handler can be installed again");
}

void DaemonAct() {
    Daemon& daemon = Daemon::Instance();
    int started = -1;
    Try(c_memory, [&] { started = daemon.Start("daemon.pid"); });
    alarm(c_hang);  // the daemon's own
    Try(c_memory, [&] { daemon.Start("daemon.pid"); });
    if (!g_faulty) {
        Require(started == 0 && ReadFile("daemon.pid") == std::to_string(getpid()) + "\n",
                "no PID file");
    }
    Try(c_memory, [&] { daemon.Stop(); });
    const Calm calm;
    daemon.Stop();
    Require(g_faulty || !fs::exists("daemon.pid"), "the PID file stays");
}

// The end of the process with trace and log in use.
void ExitAct() {
    StartTrace();
    InitLog("app.log");
    Say(&Log::Info, "app.log", "last");
    std::exit(0);
}

void AssertAct() {
    StartTrace();
    InitLog("app.log");
    LoggedAssert("sweep.cpp", 1, "void f()", "planted");
}

void AssertToFileAct() {
    {
        const Calm calm;
        fs::create_directory("reports");
    }
    AssertAct();
}

struct Act {
    const char* name;
    void (*run)();
    int end;  // as Child::Exit() returns it
};
constexpr Act c_acts[] = {{"log", LogAct, 0},
                          {"trace", TraceAct, 0},
                          {"console", ConsoleAct, 0},
                          {"file", FileAct, 0},
                          {"workers", WorkersAct, 0},
                          {"controller", ControllerAct, 0},
                          {"signals", SignalsAct, 0},
                          {"daemon", DaemonAct, 0},
                          {"exit", ExitAct, 0},
                          {"assert", AssertAct, -SIGABRT},
                          {"assert_to_file", AssertToFileAct, -SIGABRT}};

struct Kind {
    std::string name;
    unsigned calls;
    Harm harm;
};

std::vector<Kind> Kinds() {
    std::vector<Kind> kinds = {
        {"memory once", c_memory, Harm::eOnce},
        {"memory from then on", c_memory, Harm::eFromThenOn},
        {"call once", c_system, Harm::eOnce},
        {"call interrupted", c_system & ~c_threads & ~c_own, Harm::eInterrupted},
        {"half a write", Hooks::Bit(Call::eWrite), Harm::eShort},
        {"killed at a call", c_system, Harm::eKilled}};
    for (auto call = static_cast<int>(Call::eOpen); call < static_cast<int>(Call::eCount); ++call) {
        if (call != static_cast<int>(Call::eWait)) {  // which is only ever interrupted
            kinds.push_back({"call " + std::to_string(call) + " from then on",
                             Hooks::Bit(Call(call)), Harm::eFromThenOn});
        }
    }
    return kinds;
}

void AwaitOtherThreads() {
    while (std::distance(fs::directory_iterator("/proc/self/task"), {}) > 1) {
        std::this_thread::yield();
    }
}

void RunPass(const Act& act, int pass, const Kind& kind, int number) {
    alarm(c_hang);
    const std::ptrdiff_t before = OpenDescriptors();
    g_pass = pass;
    g_faulty = number > 0;
    {
        const Redirected output(STDOUT_FILENO, "out");
        const Redirected errors(STDERR_FILENO, "errors");
        g_hooks.Plan(g_faulty ? kind.calls : 0, number, kind.harm);
        act.run();
        g_hooks.Plan(0, 0, Harm::eOnce);
        TraceFile& trace = TraceFile::GetInstance();
        trace.Stop();
        trace.SetLevel(Off);
        trace.SetPrintFile(false);
        trace.SetDumpStack(false);
        AwaitOtherThreads();
    }
    Require(OpenDescriptors() == before, "a descriptor stays open");
}

// The exit code of a process that runs the act: with the fault and then without it, or without.
int RunProcess(const Act& act, const Kind& kind, int number) {
    std::strcpy(g_shared->verdict, "ends early");
    Child host([&](Pipe& /*parent*/) {
        std::string verdict;
        try {
            if (number > 0) {
                RunPass(act, 1, kind, number);
            }
            RunPass(act, 2, kind, 0);
        } catch (const std::exception& error) {
            g_hooks.Plan(0, 0, Harm::eOnce);
            verdict = error.what();
        }
        verdict.copy(g_shared->verdict, sizeof(g_shared->verdict) - 1);
        g_shared->verdict[std::min(verdict.size(), sizeof(g_shared->verdict) - 1)] = '\0';
    });
    host.AwaitHangUp();
    return host.Exit();
}

std::string Without(std::string text, const std::string& part) {
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos;) {
        text.erase(at, part.size());
    }
    return text;
}

// Whether it may be a line of log or trace, of a stack, or of an assertion's report.
bool IsWhole(const std::string& line) {
    const std::size_t digits = line.find_first_not_of("0123456789");
    const bool isEntry = digits > 0 && digits < line.size() && line.compare(digits, 2, ". ") == 0;
    const bool isStamped =
        (line.rfind("[#: #] ", 0) == 0 && line.find("[#: ", 1) == std::string::npos) ||
        line.rfind("[#] ", 0) == 0;
    return isEntry || line.rfind("***", 0) == 0 ||
           (isStamped && (line.find('|') == std::string::npos || line.back() == '|'));
}

// How many places of the file are neither lines nor blocks.
int TornPlaces(const char* file) {
    const std::string traceOpening = TraceOpening("started");
    std::string logOpening = Without(traceOpening, "* Process id    : #\n");
    logOpening.replace(logOpening.find(" Trace started"), 14, "Logging started");
    std::string text = Masked(ReadFile(file));
    for (const std::string& block :
         {traceOpening, TraceOpening("appended"), logOpening, TraceClosing()}) {
        text = Without(text, block);
    }
    std::istringstream lines(text);
    int places = 0;
    bool whole = true;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            const bool torn = !IsWhole(line) || lines.eof();
            places += torn && whole ? 1 : 0;
            whole = !torn;
        }
    }
    return places;
}

// What the process has broken, by its end and its files.
std::string Broken(const Act& act, const Kind& kind, int end) {
    const bool killed = g_shared->met && kind.harm == Harm::eKilled;
    if (!killed && end != act.end) {
        return "ends with " + std::to_string(end) + ", " + ReadFile("errors");
    }
    if (!killed && act.run != ExitAct && act.end == 0 && *g_shared->verdict != '\0') {
        return g_shared->verdict;
    }
    for (const char* const file : {"app.log", "trace.log", "rotated.log", "notes.log"}) {
        if (TornPlaces(file) > (kind.harm == Harm::eShort ? 1 : 0)) {
            return std::string("torn: ") + file + "\n" + ReadFile(file);
        }
    }
    return "";
}

std::string SweepPoint(const Act& act, const Kind& kind, int number) {
    const Folder folder;
    g_shared->met = false;
    std::string broken = Broken(act, kind, RunProcess(act, kind, number));
    if (broken.empty() && act.end == -SIGABRT && kind.harm < Harm::eShort) {
        std::string said = ReadFile("errors");
        std::error_code none;
        for (const fs::directory_entry& report : fs::directory_iterator("reports", none)) {
            said += ReadFile(report.path());
        }
        broken = said.find("FAILURE: sweep.cpp:1") != std::string::npos &&
                         said.find("REASON: planted") != std::string::npos
                     ? ""
                     : "no report";
    }
    if (broken.empty() && kind.harm == Harm::eKilled && g_shared->met) {
        broken = Broken(act, {"", 0, Harm::eOnce}, RunProcess(act, kind, 0));
    }
    return broken;
}

// Every other point for each of two processes.
void Sweep(const Act& act, const Kind& kind, int first, int step) {
    bool met = true;
    for (int number = first; met && g_shared->broken < c_enough; number += step) {
        const std::string broken = SweepPoint(act, kind, number);
        met = g_shared->met;
        ++g_shared->points;
        if (!broken.empty()) {
            ++g_shared->broken;
            std::cerr << act.name + (", " + kind.name) + ", n = " + std::to_string(number) + ": " +
                             broken + "\n";
        }
    }
}

}  // namespace
}  // namespace quor_test

int main(int count, char** arguments) {
    using namespace quor_test;
    cStopSleepPeriodMs = 1;
    constexpr int c_processes = 2;
    const std::vector<std::string> wanted(arguments + 1, arguments + count);
    auto* const shared =
        static_cast<Shared*>(mmap(nullptr, c_processes * sizeof(Shared), PROT_READ | PROT_WRITE,
                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    {
        std::vector<std::unique_ptr<Child>> sweepers;
        for (int sweeper = 0; sweeper < c_processes; ++sweeper) {
            sweepers.push_back(std::make_unique<Child>([=](Pipe& /*parent*/) {
                g_shared = shared + sweeper;
                g_hooks.met = &g_shared->met;
                for (const Act& act : c_acts) {
                    for (const Kind& kind : Kinds()) {
                        if (wanted.empty() ||
                            std::count(wanted.begin(), wanted.end(), act.name) > 0) {
                            Sweep(act, kind, sweeper + 1, c_processes);
                        }
                    }
                }
            }));
        }
        for (const auto& sweeper : sweepers) {
            sweeper->AwaitHangUp();
            shared->broken += sweeper->Exit() == 0 ? 0 : 1;
        }
    }
    shared->points += shared[1].points;
    shared->broken += shared[1].broken;
    std::cout << shared->points << " points, " << shared->broken << " broken promises" << std::endl;
    return shared->broken == 0 && shared->points > 0 ? 0 : 1;
}
