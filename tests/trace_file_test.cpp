#include "support.h"

#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <map>
#include <sstream>

// To advice: the kernel's own, or 0 as of an emulator, which follows none, or -1 as of an old
// kernel.
static std::atomic<int> g_adviceAnswer{1};

extern "C" int madvise(void* memory, size_t size, int advice) noexcept {
    return g_adviceAnswer == 1 ? static_cast<int>(syscall(SYS_madvise, memory, size, advice))
                               : g_adviceAnswer.load();
}

namespace quor_test {

constexpr const char* c_changed = "[#: #] *** Trace level changed to ";

TraceFile& File() {
    return TraceFile::GetInstance();
}

TraceLevel_e Level() {
    TraceLevel_e level = Off;
    EXPECT_TRUE(File().GetLevel(level));
    EXPECT_EQ(level, TraceActiveLevel());
    return level;
}

bool DumpsStack() {
    bool value = false;
    EXPECT_TRUE(File().GetDumpStack(value));
    return value;
}

void Line(TraceLevel_e level, const std::string& text, int line = 76) {
    TraceWrite(level, "function", "file", line, text);
}

TEST(TraceFile, OpensTheFileThatNameAndDirectoryChoose) {
    const std::string generated =
        std::string(GetProgName()) + "_" + std::to_string(getpid()) + ".log";
    const struct {
        const char* name;
        const char* directory;
        std::string file;
    } rows[] = {{"", "sub", "output"},       {"-", "sub", "output"},
                {"+", "", "./" + generated}, {"+", "sub", "sub/" + generated},
                {"t.log", "", "t.log"},      {"t.log", "sub", "sub/t.log"}};
    const TraceTap reset(Off);
    std::filesystem::create_directory("sub");
    for (const auto& row : rows) {
        TraceFile::Init(row.name, row.directory);
        std::filesystem::remove("output");
        EXPECT_EQ(ReadFile(row.file), "");
        const Redirected output(STDOUT_FILENO, "output");
        File().Start(Low);
        File().Stop();
        EXPECT_EQ(Masked(ReadFile(row.file)), TraceOpening("started") + TraceClosing());
    }
    EXPECT_EQ(File().GeneratedTraceFileName(), "sub/" + generated);
}

// Takes a step of the trace: a number is the level of "start", "level" and of a line, whose text it
// is. "move" renames the file, "full" loses a line. Returns the state behind it: the level, then a,
// if active, g, if the gate of Low is open, and d, if stacks are dumped.
std::string Take(const std::string& step) {
    const std::size_t digit = step.find_first_of("01234");
    const auto level = digit < step.size() ? static_cast<TraceLevel_e>(step[digit] - '0') : Off;
    const std::map<std::string, std::function<void()>> actions = {
        {"start", [level] { File().Start(level); }},
        {"level", [level] { EXPECT_TRUE(File().SetLevel(level)); }},
        {"line", [&] { Line(level, step.substr(4)); }},
        {"console", [] { TraceFile::Init("-", ""); }},
        {"missing", [] { TraceFile::Init("missing/trace.log", ""); }},
        {"full-device", [] { TraceFile::Init("/dev/full", ""); }},
        {"file", [] { TraceFile::Init("trace.log", ""); }},
        {"folder",
         [] { std::filesystem::create_directory("d"), TraceFile::Init("trace.log", "d"); }},
        {"remove", [] { std::filesystem::remove_all("d"); }},
        {"move", [] { std::filesystem::rename("trace.log", "moved"); }},
        {"dump", [] { File().SetDumpStack(true); }},
        {"stack", [] { File().DumpStack(); }},
        {"pause", [] { File().Pause(); }},
        {"continue", [] { File().Continue(); }},
        {"reopen", [] { File().Reopen(); }},
        {"stop", [] { File().Stop(); }}};
    if (step == "full") {
        const ScopedValue full(g_hooks.diskFull, true);
        Line(Low, "lost");
    } else {
        actions.at(step.substr(0, digit))();
    }
    return std::to_string(Level()) + (File().IsActive() ? "a" : "") +
           (TraceGateOpen(Low) ? "g" : "") + (DumpsStack() ? "d" : "");
}

TEST(TraceFile, OpensPausesReopensAndClosesAsItsTableSays) {
    const std::string started = TraceOpening("started");
    const std::string appended = TraceOpening("appended");
    const std::string paused = "[#: #] *** Tracing paused. ***\n";
    const std::string continued = "[#: #] *** Tracing continued. ***\n";
    const struct {
        const char* steps;
        const char* states;
        std::string trace;
        std::string moved = "";
        std::string errors = "";
    } rows[] = {
        {"dump level3 level3 level4 level0 level1", "0d 3ag 3ag 4agd 0d 1ag",
         started + c_changed + "3\n" + c_changed + "4\n" + c_changed + "0\n" + TraceClosing() +
             appended + c_changed + "1\n"},
        {"start0 start4 start1 pause start1 stop level4", "0 4ag 4ag 4 4 4 4",
         started + paused + TraceClosing()},
        {"start2 pause line2 level4 stack continue stop pause continue line1",
         "2ag 2 2 4d 4d 4agd 4d 4d 4agd 4agd",
         started + paused + "[#: #]   76: 2\n" + c_changed + "4\n" + continued + TraceClosing()},
        {"reopen start1 console pause move reopen continue", "0 1ag 1ag 1 1 1 1ag",
         started + continued, started + paused + TraceClosing()},
        {"start1 move reopen full reopen line1", "1ag 1ag 1ag 1ag 1ag 1ag",
         started + appended + "[#: #]   76: 1\n", started + TraceClosing(),
         "Unable to write to log file: trace.log\n"},
        {"console start1 file reopen stop", "0 1ag 1ag 1ag 1", ""},
        {"missing start3 file level3", "0 3 3 3", ""},
        {"folder start3 remove reopen", "0 3ag 3ag 3", ""},
        {"start1 level0 continue reopen", "1ag 0 0a 0a",
         started + c_changed + "0\n" + TraceClosing()},
        {"full-device start3 file level3", "0 3 3 3", "", "",
         "Unable to write to log file: /dev/full\n"},
        {"start2 full line1 level3 stop start1", "2ag 2ag 2ag 3ag 3 1ag", started + appended, "",
         "Unable to write to log file: trace.log\n"},
    };
    for (const auto& row : rows) {
        TraceTap trace(Off);
        std::istringstream steps(row.steps);
        std::string states;
        {
            const Redirected output(STDOUT_FILENO, "output");
            const Redirected errors(STDERR_FILENO, "errors");
            for (std::string step; steps >> step;) {
                states += (states.empty() ? "" : " ") + Take(step);
            }
        }
        EXPECT_EQ(states, row.states) << row.steps;
        EXPECT_EQ(trace.News(), row.trace) << row.steps;
        EXPECT_EQ(Masked(ReadFile("moved")), row.moved) << row.steps;
        EXPECT_EQ(ReadFile("errors"), row.errors) << row.steps;
        EXPECT_EQ(Masked(ReadFile("output")), row.steps[0] == 'c' ? started + TraceClosing() : "");
    }
}

TEST(TraceFile, FinishesWhatACancelledThreadBegins) {
    TraceTap trace;
    RunCancelled([] {
        File().Reopen();
        Line(Low, "text");
        File().SetLevel(Off);
    });
    EXPECT_EQ(trace.News(), TraceClosing() + TraceOpening("appended") + "[#: #]   76: text\n" +
                                c_changed + "0\n" + TraceClosing());
}

TEST(TraceFile, WritesTextsUpToItsLevelAndTheirNulPrefixedAsTheFlagsSay) {
    TraceTap trace;
    Line(Off, "never");
    Line(Medium, "above");
    const std::string filling(544, 'x');  // the room on the stack, but for the line feed
    Line(Low, filling);
    for (const auto& [file, line] :
         {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
        bool fileRead = !file;
        bool lineRead = !line;
        EXPECT_TRUE(File().SetPrintFile(file) && File().GetPrintFile(fileRead));
        EXPECT_TRUE(File().SetPrintLine(line) && File().GetPrintLine(lineRead));
        EXPECT_TRUE(fileRead == file && lineRead == line);
        const int writes = g_hooks.Calls(Call::eWrite);
        Line(Low, "a\n\nb");
        Line(Low, std::string("c\0d", 3), 12345);
        EXPECT_EQ(g_hooks.Calls(Call::eWrite) - writes, 2);
    }
    EXPECT_EQ(trace.News(), "[#: #]   76: " + filling +
                                "\n[#: #] file  76: a\n\nb\n[#: #] file12345: c\n"
                                "[#: #] file: a\n\nb\n[#: #] file: c\n"
                                "[#: #]   76: a\n\nb\n[#: #] 12345: c\n[#: #] a\n\nb\n[#: #] c\n");
}

TEST(TraceFile, StampsLinesWithThreadAndLocalTimeOfDay) {
    const ScopedZone zone("XYZ-2");
    const TraceTap trace;
    FakeClock clock(12'345);
    Line(Low, "x");
    ScopedZone::Set("XYZ-3");
    Line(Low, "y");
    clock.Advance(1);
    Line(Low, "z");
    char label[20];
    std::snprintf(label, sizeof(label), "\n[%05d: ", GetTid());
    const std::string head = label;
    EXPECT_THAT(ReadFile("trace.log"), testing::HasSubstr(head + "05:25:45.000000000]   76: x" +
                                                          head + "06:25:45.000000000]   76: y" +
                                                          head + "06:25:46.000000000]   76: z\n"));
}

TEST(TraceFileProcess, StampsLinesOfAForkedOrClonedChildWithItsOwnThreadUnderAnyKernel) {
    for (const int answer : {1, 0, -1}) {
        Child fresh([answer](Pipe& /*parent*/) {  // the kernel is asked once, at the first line
            g_adviceAnswer = answer;
            const TraceTap trace;
            Line(Low, "parent");
            for (const bool raw : {false, true}) {
                const pid_t child =
                    raw ? static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)) : fork();
                if (child == 0) {
                    Line(Low, "of " + std::to_string(syscall(SYS_getpid)));
                    _exit(0);
                }
                const std::string id = std::to_string(child);
                Pipe::Check(waitpid(child, nullptr, 0) == child);
                Pipe::Check(testing::Value(
                    ReadFile("trace.log"),
                    testing::ContainsRegex("\n\\[0*" + id + ": [^\n]*of " + id + "\n")));
            }
        });
        EXPECT_EQ(fresh.Exit(), 0) << answer;
    }
}

__attribute__((noinline)) void DumpAtDepth(int depth) {
    depth > 1 ? DumpAtDepth(depth - 1) : File().DumpStack();
    __asm__ volatile("");
}

TEST(TraceFile, DumpsTheStackAsOneEntryOfNumberedLinesAndAnEmptyOne) {
    TraceTap trace;
    DumpAtDepth(1);
    EXPECT_EQ(trace.News(), "");
    EXPECT_TRUE(File().SetDumpStack(true));
    const int writes = g_hooks.Calls(Call::eWrite);
    DumpAtDepth(2);
    EXPECT_EQ(g_hooks.Calls(Call::eWrite) - writes, 1);
    const std::string caller = "\\. [^ ]+\\(quor_test::DumpAtDepth\\(int\\)\\) \\[#]\n";
    EXPECT_THAT(
        trace.News(),
        testing::MatchesRegex("\\[#: #] 0\\. [^ ]+\\(quor::TraceFile::DumpStack\\(\\)\\) \\[#]\n1" +
                              caller + "2" + caller + "([0-9]+\\. [^\n]+\n)+\n"));
    DumpAtDepth(100);
    EXPECT_THAT(trace.News(), testing::ContainsRegex("\n62\\. [^\n]+\n63\\. [^\n]+\n\n$"));
}

// A thread that holds the trace's mutex may be gone in a child, and memory may have run out.
TEST(TraceFileProcess, NothingKeepsTheProcessFromItsEnd) {
    for (const bool blocked : {false, true}) {
        const Folder folder;
        int pipe[2];
        ASSERT_EQ(pipe2(pipe, 0), 0);
        fcntl(pipe[1], F_SETPIPE_SZ, 4096);
        std::fflush(stdout);
        Child child([&pipe, blocked](Pipe&) {
            dup2(pipe[1], STDOUT_FILENO);
            TraceFile::Init(blocked ? "-" : "trace.log", "");
            File().Start(Low);
            if (blocked) {
                const int writes = g_hooks.Calls(Call::eWrite);
                std::thread([] { Line(Low, std::string(4096, 'x')); }).detach();
                while (g_hooks.Calls(Call::eWrite) ==
                       writes) {  // the line does not fit into the pipe
                    std::this_thread::yield();
                }
            }
            Hooks::allocations = 0;
            pthread_cancel(pthread_self());
            exit(0);
        });
        close(pipe[1]);
        EXPECT_EQ(child.Exit(), 0);
        close(pipe[0]);
        EXPECT_EQ(Masked(ReadFile("trace.log")), blocked ? "" : TraceOpening("started"));
    }
}

TEST(TraceFile, AppendsPastTwoGigabytes) {
    const TraceTap trace(Off);
    constexpr std::uintmax_t c_size = (1ULL << 31) + 1;
    std::ofstream("trace.log").close();
    std::filesystem::resize_file("trace.log", c_size);  // sparse
    File().Start(Low);
    File().Stop();
    std::ifstream file("trace.log");
    file.seekg(static_cast<std::streamoff>(c_size));
    const std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(Masked(text), TraceOpening("appended") + TraceClosing());
}

}  // namespace quor_test
