// Runs every public operation of the library that allocates or calls the system, in one process for
// each point at which something can fail: the n-th allocation, the n-th system call. Once or from
// then on, by half, interrupted, or as the end of the process, for every n until a run meets no
// fault. `sweep [ACT]...` runs these acts, or all; it prints each broken promise with its n.

#include "../threads.h"

#include <quor/any.h>
#include <quor/assert.h>
#include <quor/daemon.h>
#include <quor/exception.h>
#include <quor/signal_handler.h>
#include <quor/synchronizer.h>
#include <quor/thread_controller.h>

#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
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
constexpr int c_enough = 3;      // broken promises

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
bool Try(const Operation& operation, unsigned faults = c_memory) {
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
std::string Text(const char* name, std::size_t length = 0) {
    const Calm calm;
    return "|" + std::string(name) + std::to_string(g_pass) + std::string(length, '.') + "|";
}

// Promised is what a pass without a fault leaves behind, and now and then more.
void RequireIn(const char* file, const std::string& text, bool promised = !g_faulty) {
    const Calm calm;
    std::cout.flush();
    Require(!promised || ReadFile(file).find(text) != std::string::npos, "nothing in ", file);
}

void InitLog(const char* file) {
    if (!Try([&] { Log::Init(file); })) {
        const Calm calm;
        Log::Init(file);
    }
}

// Logs one message. Without an exception it is there, unless calls fail.
void Say(void (Log::*severity)(const std::string&), const char* file, const std::string& text) {
    const bool returned = Try([&] { (Log::GetInstance().*severity)(text); });
    RequireIn(file, text, returned && (!g_faulty || g_hooks.harmed == c_memory));
}

TraceFile& StartTrace(TraceLevel_e level = Detail) {
    Try([] { TraceFile::Init("trace.log", "."); });
    Try([level] { TraceFile::GetInstance().Start(level); });
    const Calm calm;
    return TraceFile::GetInstance();
}

void LogAct() {
    InitLog("app.log");
    Say(&Log::Info, "app.log", Text("info"));
    Say(&Log::Warning, "app.log", Text("long", 3000));
    InitLog("");
    Say(&Log::Error, "out", Text("nameless"));
    InitLog("missing/app.log");
    Say(&Log::Critical, "out", Text("unopened"));
    InitLog("app.log");
    StartTrace();
    Say(&Log::Error, "app.log", Text("traced"));
    Try([] { LogCritical(Text("critical")); });
    const Calm calm;
    RequireIn("trace.log", Text("traced"));
    RequireIn("trace.log", ": Critical: " + Text("critical"));
}

// The name of a source file for which a line has no room.
const std::string g_longFile(1000, 'f');

// Traces at sites, which throw nothing.
void Sites(TraceFile& trace) {
    QUOR_TRACE_FNC();
    QUOR_TRACE(Low, "|site" << g_pass << "|");
    QUOR_TRACE(Low, "|long site" << g_pass << std::setw(2000) << "|");
    Try([&] { trace.Trace(Low, "", "site", 1, Text("function", 1000)); });
    const TraceFnc fnc("f()", g_longFile.c_str(), 1);
    detail::TraceMessage message;
    message.Stream() << "|long file" << g_pass << "|";
    message.Write(Low, "", g_longFile.c_str(), 1);
    const Exception fits(std::string("|short|"), true);
    const Exception exceeds("as long as does not fit into the text itself", true);
}

void TraceAct() {
    TraceFile& trace = StartTrace(High);
    Sites(trace);
    Try([&] { trace.SetLevel(Detail); });
    trace.SetPrintFile(true);
    Sites(trace);
    Try([&] { trace.DumpStack(); });
    Try([&] { trace.Pause(); });
    Try([&] { trace.Reopen(); });
    Try([&] { trace.Continue(); });
    rename("trace.log", "rotated.log");
    Try([&] { trace.Reopen(); });
    Try([&] { trace.GeneratedTraceFileName(); });
    Sites(trace);
    Try([&] { trace.SetLevel(Off); });
    trace.SetDumpStack(false);
    Try([] { TraceFile::Init("-", ""); });
    Try([&] { trace.Start(Detail); });
    Sites(trace);
    const Calm calm;
    RequireIn("rotated.log", Text("site"));
    RequireIn("trace.log", Text("function", 1000));
    RequireIn("trace.log", g_longFile + "   1: " + Text("long file"));
    RequireIn("out", Text("function", 1000));
}

struct Notes : LogFile {
    ~Notes() override {
        const Calm calm;  // a destructor may not throw
        Close();
    }
    using LogFile::Close, LogFile::Open, LogFile::Write;
    std::string FileHeader() const override { return "[#] head\n"; }
    std::string AppendBanner() const override { return "[#] more of a banner than fits into it\n"; }
    std::string FileTrailer() const override { return "[#] trailer as long as does not fit\n"; }
    std::string LineHeader() const override { return "[#] "; }
};

void FileAct() {
    Notes notes;
    for (int round = 0; round < 2; ++round) {
        bool opened = false;
        Try([&] { opened = notes.Open("notes.log", true); });
        Try([&] { notes.Write(Text("note").c_str(), 0); });
        Try([&] { notes.Write(Text("long note", 2000).c_str(), 0); });
        Try([&] { notes.Close(); });
        Require(opened || g_faulty, "cannot be opened again");
    }
    const Calm calm;
    RequireIn("notes.log", Text("long note", 2000) + "\n[#] trailer");
}

void ValuesAct() {
    const std::string text = Text("value", 200);
    const bool told =
        Try([&] { VerInfo::Init(1, 2, 3, 4, text.c_str(), "", "", "", text.c_str()); });
    Require((VerInfo::Label() == text) == told && (VerInfo::BuildUser() == text) == told,
            "half a record");
    Try([&] { TraceFile::Init(text, text); });
    const Exception exception(text.c_str(), true);
    Require(text.rfind(exception.what(), 0) == 0 && *exception.what() != '\0',
            "neither the text nor its beginning");
    const auto copied = [&] { return Any(Any(text)).Get<std::string>(); };
    Try([&] { Require(copied() == text, "another value"); }, c_memory | c_own);
    Try([] { Time::Now(Time::eDate).ToText(); }, 0);
}

void WorkersAct() {
    StartTrace();
    static std::atomic<int> runs;
    runs = 0;
    constexpr auto work = [](Worker& worker) {
        ++runs;
        worker.TimedWait(0, 1);
        throw Exception("thrown by the worker as its end", true);
    };
    Pool pool([work](const std::string& name) { return new Worker(name, work); });
    for (const char* const name : {"a worker with a long name", "b", "c"}) {
        Try([&] { pool.GetWorker(name)->Start(); }, c_memory | c_threads);
    }
    Try([&] { pool.GetWorker("b")->Stop(); });
    Try([&] { pool.Terminate("b"); });
    Try([&] {
        Synchronizer ready(1, 1, 1);
        ready.Increment();
        ready.Decrement();
        ready.Decrement();
        Require(ready.Wait(), "a barrier at 0 does not open");
    });
    Try([&] { pool.TerminateAll(); });
    const Calm calm;
    pool.TerminateAll();
    Require(g_faulty || runs == 3, "a worker does not run");
}

void ControllerAct() {
    StartTrace();
    static std::atomic<int> passes;
    passes = 0;
    const auto pass = [] { ++passes, std::this_thread::yield(); };
    const auto cancel = [] { throw Exception("thrown by the cancel function", true); };
    std::optional<ThreadController> loop;
    if (!Try([&] { loop.emplace("a controller with a long name", pass, cancel); })) {
        return;
    }
    Try([&] { loop->Start(); }, c_memory | c_threads);
    Try([&] { loop->Restart(); }, c_memory | c_threads);
    Try([&] { loop->Stop(); });
    Require(loop->GetState() == ThreadController::eStopped, "not stopped");
    for (const auto operation : {&ThreadController::AsyncStart, &ThreadController::AsyncRestart,
                                 &ThreadController::AsyncStop}) {
        Try([&] { (*loop.*operation)(); }, c_memory | c_threads);
    }
    Try([&] { loop->Stop(); });
    loop.reset();
    Require(g_faulty || passes > 0, "the loop does not run");
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
    Try([&] { thread = SignalHandlerThread::InstallHandler(counter, signals); },
        c_memory | c_threads | c_own);
    if (thread != nullptr) {
        raise(SIGUSR1);
        Try([&] { thread->Stop(); });
        delete thread;
        Require(counter.calls == 1, "a signal is lost");
    }
    Require(g_faulty || thread != nullptr, "no handler can be installed again");
}

void DaemonAct() {
    Daemon& daemon = Daemon::Instance();
    int started = -1;
    Try([&] { started = daemon.Start("daemon.pid"); });
    alarm(c_hang);  // the daemon's own
    Try([&] { daemon.Start("daemon.pid"); });
    Require(g_faulty || started == 0, "no daemon");
    RequireIn("daemon.pid", std::to_string(getpid()));
    Try([&] { daemon.Stop(); });
    const Calm calm;
    daemon.Stop();
    Require(g_faulty || !fs::exists("daemon.pid"), "the PID file stays");
}

constexpr int c_exitCode = 7;

void UseTraceAndLog() {
    StartTrace();
    InitLog("app.log");
    Say(&Log::Info, "app.log", Text("last"));
}

void AssertAct() {
    UseTraceAndLog();
    LoggedAssert("sweep.cpp", 1, "void f()", "planted");
}

struct Act {
    const char* name;
    void (*run)();
    int end;  // as Child::Exit() returns it: 0 by acts that return
};
constexpr Act c_acts[] = {
    {"log", LogAct, 0},
    {"trace", TraceAct, 0},
    {"file", FileAct, 0},
    {"values", ValuesAct, 0},
    {"workers", WorkersAct, 0},
    {"controller", ControllerAct, 0},
    {"signals", SignalsAct, 0},
    {"daemon", DaemonAct, 0},
    {"exit", [] { UseTraceAndLog(), std::exit(c_exitCode); }, c_exitCode},
    {"assert", AssertAct, -SIGABRT},
    {"assert_to_file", [] { mkdir("reports", 0700), AssertAct(); }, -SIGABRT}};

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
    for (auto call = static_cast<int>(Call::eOpen); call < static_cast<int>(Call::eWait); ++call) {
        kinds.push_back({"call " + std::to_string(call) + " from then on", Hooks::Bit(Call(call)),
                         Harm::eFromThenOn});
    }
    return kinds;
}

void RunPass(const Act& act, const Kind& kind, int number) {
    alarm(c_hang);
    const std::ptrdiff_t before = OpenDescriptors();
    g_faulty = number > 0;
    g_pass = g_faulty ? 1 : 2;
    {
        const Redirected output(STDOUT_FILENO, "out");
        const Redirected errors(STDERR_FILENO, "errors");
        g_hooks.Plan(g_faulty ? kind.calls : 0, number, kind.harm);
        act.run();
        g_hooks.Plan();
        ResetTrace();
        while (std::distance(fs::directory_iterator("/proc/self/task"), {}) > 1) {
            std::this_thread::yield();
        }
    }
    Require(OpenDescriptors() == before, "a descriptor stays open");
}

// Runs the act with the fault and then without it; for number 0 without it alone. What the act
// broke, or "nothing", goes into the file "verdict".
int RunProcess(const Act& act, const Kind& kind, int number) {
    Child host([&](Pipe& /*parent*/) {
        std::string verdict = "nothing";
        try {
            if (number > 0) {
                RunPass(act, kind, number);
            }
            RunPass(act, kind, 0);
        } catch (const std::exception& error) {
            g_hooks.Plan();
            verdict = error.what();
        }
        std::ofstream("verdict") << verdict;
    });
    host.AwaitHangUp();  // also of a daemon
    return host.Exit();
}

// Whether it may be a line of log or trace, of a stack, or of an assertion's report.
bool IsWhole(const std::string& line) {
    static const testing::Matcher<const std::string&> head =
        testing::ContainsRegex("^([0-9]+\\. |\\*\\*\\*|\\[#(: #)?\\] )");
    return head.Matches(line) && line.find("[#: ", 1) == std::string::npos &&
           (line.find('|') == std::string::npos || line.back() == '|');
}

// How many places of the file are neither lines nor blocks.
int TornPlaces(const char* file) {
    std::string text = Masked(ReadFile(file));
    for (const std::string& block :
         {TraceOpening("started"), TraceOpening("appended"), LogOpening(), TraceClosing()}) {
        for (std::size_t at = 0; (at = text.find(block, at)) != std::string::npos;) {
            text.erase(at, block.size());
        }
    }
    std::istringstream lines(text);
    int places = 0;
    bool wasTorn = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isTorn = !line.empty() && (!IsWhole(line) || lines.eof());
        places += isTorn && !wasTorn ? 1 : 0;
        wasTorn = isTorn || (line.empty() && wasTorn);
    }
    return places;
}

bool HasReport() {
    std::string said = ReadFile("errors");
    std::error_code none;
    for (const fs::directory_entry& report : fs::directory_iterator("reports", none)) {
        said += ReadFile(report.path());
    }
    return said.find("FAILURE: sweep.cpp:1") != std::string::npos &&
           said.find("REASON: planted") != std::string::npos;
}

// Runs the act once. Returns what it has broken, by its end and its files.
std::string Broken(const Act& act, const Kind& kind, int number) {
    *g_hooks.met = false;
    const int end = RunProcess(act, kind, number);
    const bool killed = *g_hooks.met && kind.harm == Harm::eKilled;
    if (!killed && end != act.end) {
        return "ends with " + std::to_string(end) + ", " + ReadFile("errors");
    }
    if (!killed && end == 0 && ReadFile("verdict") != "nothing") {
        return "verdict: " + ReadFile("verdict");
    }
    for (const char* const file : {"app.log", "trace.log", "rotated.log", "notes.log"}) {
        if (TornPlaces(file) > (kind.harm == Harm::eShort ? 1 : 0)) {
            return std::string("torn: ") + file + "\n" + ReadFile(file);
        }
    }
    if (end == -SIGABRT && kind.harm < Harm::eShort && !HasReport()) {
        return "no report";
    }
    return "";
}

// Lets every call of that kind come to harm in turn, until there are no more.
void Sweep(const Act& act, const Kind& kind, int& points, int& broken) {
    bool met = true;
    for (int number = 1; met && broken < c_enough; ++number) {
        const Folder folder;
        std::string promise = Broken(act, kind, number);
        met = *g_hooks.met;
        if (promise.empty() && met && kind.harm == Harm::eKilled) {
            promise = Broken(act, {}, 0);  // for the next process
        }
        ++points;
        if (!promise.empty()) {
            ++broken;
            std::cerr << act.name << ", " << kind.name << ", n = " << number << ": " << promise
                      << std::endl;
        }
    }
}

}  // namespace
}  // namespace quor_test

int main(int count, char** arguments) {
    using namespace quor_test;
    cStopSleepPeriodMs = 1;
    g_hooks.met = static_cast<std::atomic<bool>*>(mmap(
        nullptr, sizeof(*g_hooks.met), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    int points = 0;
    int broken = 0;
    for (const Act& act : c_acts) {
        for (const Kind& kind : Kinds()) {
            if (count == 1 || std::count(arguments, arguments + count, std::string(act.name)) > 0) {
                Sweep(act, kind, points, broken);
            }
        }
    }
    std::cout << points << " points, " << broken << " broken promises" << std::endl;
    return broken == 0 && points > 0 ? 0 : 1;
}
