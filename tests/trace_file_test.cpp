#include "support.h"

#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

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

TEST(TraceFile, SetLevelOpensMarksAndClosesTheTrace) {
    TraceTap trace(Off);
    EXPECT_TRUE(File().SetDumpStack(true));
    for (const TraceLevel_e level : {High, High, Detail, Off, Low}) {
        EXPECT_TRUE(File().SetLevel(level));
        EXPECT_EQ(File().IsActive(), level != Off);
        EXPECT_EQ(DumpsStack(), level == Detail || level == Off);
    }
    EXPECT_EQ(trace.News(), TraceOpening("started") + c_changed + "3\n" + c_changed + "4\n" +
                                c_changed + "0\n" + TraceClosing() + TraceOpening("appended") +
                                c_changed + "1\n");
}

TEST(TraceFile, StartDoesNothingAtOffOrWhileAFileIsOpen) {
    TraceTap trace(Off);
    EXPECT_FALSE(File().IsActive() || std::filesystem::exists("trace.log"));
    File().Start(Detail);
    File().Start(Low);
    File().Pause();
    File().Start(Low);
    EXPECT_FALSE(DumpsStack() || File().IsActive());
    File().Stop();
    File().SetLevel(Detail);  // still the level
    EXPECT_EQ(Level(), Detail);
    EXPECT_EQ(trace.News(),
              TraceOpening("started") + "[#: #] *** Tracing paused. ***\n" + TraceClosing());
}

TEST(TraceFile, WritesWhatIsAtMostItsLevelAndNeverAtOff) {
    TraceTap trace(Medium);
    for (const TraceLevel_e level : {Off, Low, Medium, High, Detail}) {
        Line(level, std::to_string(level));
        EXPECT_EQ(TraceGateOpen(level), level <= Medium);
    }
    EXPECT_EQ(trace.News(), "[#: #]   76: 1\n[#: #]   76: 2\n");
}

TEST(TraceFile, PausedKeepsItsFileAndClosesTheGateAlone) {
    TraceTap trace(Medium);
    File().Pause();
    EXPECT_FALSE(File().IsActive() || TraceGateOpen(Low));
    Line(Medium, "past the gate");
    File().SetLevel(Detail);
    EXPECT_FALSE(File().IsActive());
    File().DumpStack();
    File().Continue();
    EXPECT_TRUE(File().IsActive() && TraceGateOpen(Detail));
    EXPECT_EQ(trace.News(),
              "[#: #] *** Tracing paused. ***\n[#: #]   76: past the gate\n" +
                  (c_changed + std::string("4\n[#: #] *** Tracing continued. ***\n")));
    File().Stop();
    trace.News();
    File().Pause();
    EXPECT_FALSE(File().IsActive());
    File().Continue();  // without a file
    EXPECT_TRUE(File().IsActive() && TraceGateOpen(Detail));
    Line(Low, "dropped");
    EXPECT_EQ(trace.News(), "");
}

TEST(TraceFile, PrefixesTextsAsTheFlagsSayAndEndsThemAtTheirNul) {
    TraceTap trace;
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
    EXPECT_EQ(trace.News(),
              "[#: #] file  76: a\n\nb\n[#: #] file12345: c\n"
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
    const std::string head =
        "\n[" +
        (std::string(5, '0') + std::to_string(GetTid())).substr(std::to_string(GetTid()).size()) +
        ": ";
    EXPECT_THAT(ReadFile("trace.log"), testing::HasSubstr(head + "05:25:45.000000000]   76: x" +
                                                          head + "06:25:45.000000000]   76: y" +
                                                          head + "06:25:46.000000000]   76: z\n"));
}

TEST(TraceFileProcess, StampsLinesOfAForkedOrClonedChildWithItsOwnThread) {
    TraceTap trace;
    Line(Low, "parent");
    for (const bool raw : {false, true}) {
        const pid_t child =
            raw ? static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)) : fork();
        if (child == 0) {
            Line(Low, "of " + std::to_string(syscall(SYS_getpid)));
            _exit(0);
        }
        EXPECT_EQ(waitpid(child, nullptr, 0), child);
        const std::string id = std::to_string(child);
        EXPECT_THAT(ReadFile("trace.log"),
                    testing::ContainsRegex("\n\\[0*" + id + ": [^\n]*of " + id + "\n"));
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
    File().SetDumpStack(true);
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

TEST(TraceFile, ReopensTheFileThatIsOpenAndNothingElse) {
    TraceTap trace(Off);
    File().Reopen();
    EXPECT_FALSE(std::filesystem::exists("trace.log"));
    {
        const Redirected output(STDOUT_FILENO, "output");
        TraceFile::Init("-", "");
        File().Start(Low);
        TraceFile::Init("trace.log", "");
        File().Reopen();
        EXPECT_TRUE(File().IsActive());
        File().Stop();
    }
    EXPECT_EQ(Masked(ReadFile("output")), TraceOpening("started") + TraceClosing());
    File().Start(Low);
    TraceFile::Init("-", "");
    File().Pause();
    std::filesystem::rename("trace.log", "paused");
    File().Reopen();
    EXPECT_FALSE(TraceGateOpen(Low));
    File().Continue();
    std::filesystem::rename("trace.log", "running");
    File().Reopen();
    EXPECT_TRUE(TraceGateOpen(Low));
    {
        const Redirected errors(STDERR_FILENO, "errors");
        const ScopedValue full(g_hooks.diskFull, true);
        Line(Low, "lost");
    }
    File().Reopen();
    Line(Low, "revived");
    EXPECT_EQ(Masked(ReadFile("running")),
              TraceOpening("started") + "[#: #] *** Tracing continued. ***\n" + TraceClosing());
    EXPECT_EQ(trace.News(),
              TraceOpening("started") + TraceOpening("appended") + "[#: #]   76: revived\n");
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

TEST(TraceFile, AFailureStopsItUntilTheNextStart) {
    TraceTap trace(Off);
    const Redirected errors(STDERR_FILENO, "errors");
    for (const char* name : {"missing/trace.log", "/dev/full"}) {
        TraceFile::Init(name, "");
        File().Start(High);
        TraceFile::Init("trace.log", "");
        File().SetLevel(High);  // kept
        EXPECT_FALSE(File().IsActive() || TraceGateOpen(Low)) << name;
    }
    std::filesystem::create_directory("folder");
    TraceFile::Init("trace.log", "folder");
    File().Start(High);
    std::filesystem::rename("folder", "moved");
    File().Reopen();
    EXPECT_FALSE(File().IsActive() || TraceGateOpen(Low));
    TraceFile::Init("trace.log", "");
    File().Start(Medium);
    {
        const ScopedValue full(g_hooks.diskFull, true);
        Line(Low, "lost");
    }
    Line(Low, "dropped");
    File().SetLevel(High);
    EXPECT_TRUE(File().IsActive());
    File().Stop();
    File().Start(Low);
    EXPECT_EQ(Level(), Low);
    EXPECT_EQ(trace.News(), TraceOpening("started") + TraceOpening("appended"));
    EXPECT_EQ(ReadFile("errors"),
              "Unable to write to log file: /dev/full\nUnable to write to log file: trace.log\n");
}

}  // namespace quor_test
