#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <thread>

#include "support.h"

namespace quor_test {
namespace {

using Names = std::set<std::string>;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;

// Runs the example; it has the folders of a spool, and its standard error goes to the file "error".
class SpooldProcess : public testing::Test {
protected:
    SpooldProcess() {
        for (const char* room : {"spool/work", "spool/done", "spool/failed/folder"}) {
            std::filesystem::create_directories(room);
        }
        Write("trace", "");
    }

    static Child Start(const std::string& options, const std::string& limits = "") {
        const std::string command =
            limits + "exec '" QUOR_TEST_SPOOLD "' " + options + " 2>error >out";
        return Child([&](Pipe&) { execl("/bin/sh", "sh", "-c", command.c_str(), nullptr); });
    }
    static Child StartWaiting(const std::string& options = "", const std::string& limits = "") {
        return Start("--spool spool --log log --trace trace --foreground " + options, limits);
    }
    static void Drop(const std::string& name) {
        Write("spool/." + name, name);
        std::filesystem::rename("spool/." + name, "spool/" + name);
    }
    static int Drain() { return Start("--spool spool --log log --once").Exit(); }
    static void Write(const std::string& name, const std::string& text) {
        std::ofstream(name, std::ios::binary) << text;
    }
    static Names In(const std::string& folder) {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    const Folder m_folder;
};

TEST_F(SpooldProcess, ReportTellsSizeLinesWordsChecksumAndFirstBytes) {
    Write("spool/x\n\xff", std::string("The 1st line\n and\tmore \xff\0!", 26));
    Write("spool/long", std::string(100'000, 'x'));
    ASSERT_EQ(Drain(), 0);
    EXPECT_THAT(ReadFile("spool/done/long.report"), HasSubstr("CRC-32:  fe071171\n"));
    const std::regex times(" [-0-9]{10} [:0-9]{8}, in [0-9]+[.][0-9]{9} s");
    EXPECT_EQ(std::regex_replace(ReadFile("spool/done/x\n\xff.report"), times, " #"),
              "File:    'x\\x0a\\xff'\nSize:    26 bytes\nLines:   1\nWords:   6\n"
              "CRC-32:  6a4f89ac\nRead:    #\nFirst 26 bytes:\n"
              "00000: 54 68 65 20 31 73 74 20 6C 69 6E 65 0A 20 61 6E  The.1st.line..an\n"
              "00016: 64 09 6D 6F 72 65 20 FF 00 21                    d.more...!\n");
}

TEST_F(SpooldProcess, AnyNameEndsUnderANameOfItsOwn) {
    const std::pair<std::string, std::string> namesWhenDone[] = {
        {"line \n feed", "line \n feed"},
        {"\xff\\", "\xff\\"},
        {"a.report", "a.report.2"},
        {"there", "there.3"},
        {"folder", "folder.2"},
        {"alone", "alone.2"},
        {std::string(255, 'n'), std::string(200, 'n')}};
    Names expected{"there", "there.2", "alone.report"};
    for (const std::string& name : expected) {
        Write("spool/done/" + name, "old");
    }
    for (const auto& [name, done] : namesWhenDone) {
        Write("spool/" + name, name);
        expected.insert({done, done + ".report"});
    }
    ASSERT_EQ(Drain(), 0);
    EXPECT_EQ(In("spool/done"), expected);
    for (const auto& [name, done] : namesWhenDone) {
        EXPECT_EQ(ReadFile("spool/done/" + done), name);
    }
}

TEST_F(SpooldProcess, WhatCannotBeReadGoesToFailedAndTheLogSaysSo) {
    ASSERT_EQ(symlink("nowhere", "spool/link"), 0);
    ASSERT_EQ(symlink("/proc/self/mem", "spool/to\nmemory"), 0);
    std::filesystem::create_directories("spool/full/folder");
    ASSERT_EQ(Drain(), 0);
    EXPECT_EQ(In("spool/failed"), (Names{"folder", "full", "link", "to\nmemory"}));
    EXPECT_THAT(ReadFile("log"),
                HasSubstr("Error   : Not a regular file: 'spool/work/to\\x0amemory'"));
}

TEST_F(SpooldProcess, RestartFinishesEveryStepThatAKillInterrupted) {
    Write("spool/work/taken", "");
    Write("spool/work/half", "");
    Write("spool/work/.half.report", std::string(10'000, '?'));
    Write("spool/work/whole", "");
    Write("spool/done/whole.report", "the first report");
    Write("spool/whole", "");
    ASSERT_EQ(Drain(), 0);
    EXPECT_EQ(In("spool/work"), Names{".lock"});
    EXPECT_EQ(In("spool/done"), (Names{"half", "half.report", "taken", "taken.report", "whole",
                                       "whole.report", "whole.2", "whole.2.report"}));
    EXPECT_EQ(ReadFile("spool/done/whole.report"), "the first report");
    EXPECT_EQ(ReadFile("spool/done/half.report").find('?'), std::string::npos);
}

TEST_F(SpooldProcess, SignalThatComesBeforeItsHandlerIsHandled) {
    Child child([](Pipe&) {
        sigset_t terminate;
        sigemptyset(&terminate);
        sigaddset(&terminate, SIGTERM);
        sigprocmask(SIG_BLOCK, &terminate, nullptr);
        raise(SIGTERM);
        execl(QUOR_TEST_SPOOLD, "spoold", "--spool", "spool", "--log", "log", "--foreground",
              nullptr);
    });
    EXPECT_EQ(child.Exit(), 0);
    EXPECT_THAT(ReadFile("log"), AllOf(HasSubstr("Signal: Terminated"), HasSubstr("Stopped; ")));
}

// All of its threads, since any of them may take a signal.
bool IsStopped(pid_t process) {
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
    return std::all_of(begin(threads), end(threads), [](const auto& thread) {
        std::string state;
        std::ifstream stat(thread.path() / "stat");
        std::getline(stat, state);
        return state.find(") T ") != std::string::npos;
    });
}

TEST_F(SpooldProcess, DaemonReadsItsConfigurationAgainAndLosesNoSignalAtItsEnd) {
    const std::string settings = "spool = spool\nlog = log\ntrace = trace\n";
    Write("conf", settings + "level = Medium");
    Child spoold = Start("--config conf --pid-file pid --workers 3");
    WaitForText("trace", "Waiting");
    const pid_t daemon = std::stoi(ReadFile("pid"));
    EXPECT_NE(daemon, spoold.pid);
    EXPECT_EQ(spoold.Exit(), 0);
    const std::string refused = "conf:4: 'level = 5': expected Off, Low, Medium, High or Detail; ";
    for (const auto& [number, level, effect] :
         {std::tuple(SIGHUP, "Detail", std::string("Trace reopened at level 4")),
          {SIGHUP, "5", refused},
          {SIGUSR2, "5", "Trace level 3"}}) {
        Write("conf", settings + "level = " + level);
        Write("log", "");
        kill(daemon, number);
        WaitForText("log", effect);
    }
    kill(daemon, SIGSTOP);
    while (!IsStopped(daemon)) {
        std::this_thread::yield();
    }
    for (const int number : {SIGTERM, SIGHUP, SIGUSR1, SIGCONT}) {
        kill(daemon, number);  // it gets all of them at once, and loses none
    }
    spoold.AwaitHangUp();
    EXPECT_FALSE(std::filesystem::exists("pid"));
    EXPECT_EQ(ReadFile("out") + ReadFile("error"), "");
    EXPECT_THAT(ReadFile("log"), AllOf(HasSubstr("Signal: Terminated"), HasSubstr("Signal: Hangup"),
                                       HasSubstr("Signal: User defined signal 1")));
    EXPECT_THAT(ReadFile("trace"), AllOf(HasSubstr("worker-3: DESTROYED"), HasSubstr("stopped *")));
}

TEST_F(SpooldProcess, ConfigurationCountsUnlessTheCommandLineSaysOtherwise) {
    Write("conf",
          "# all of them\n\n spool=spool \nlog = log\r\ntrace = trace\ntrace_dir = .\n"
          "trace_files = true\nlevel = Detail\nmode = foreground\npid_file = pid\n"
          "not_before = 2001-01-01 00:00:00");
    Write("spool/x", "");
    const ScopedZone zone("ABC-5");  // durations do not follow it
    ASSERT_EQ(Start("--config conf --once --level medium").Exit(), 0);
    EXPECT_EQ(In("spool/done"), (Names{"x", "x.report"}));
    EXPECT_THAT(ReadFile("trace"), AllOf(HasSubstr("Trace level changed to 2\n"),
                                         ContainsRegex("] spooler +[0-9]+: Scan: 1 waiting")));
    const std::regex statistics(
        "Stopped; done: 1, failed: 0, passes: 2(, (shortest|longest|average): 00:00:0[0-9.]{11}){3}"
        ", could not be taken: 0\n");
    EXPECT_TRUE(std::regex_search(ReadFile("log"), statistics)) << ReadFile("log");
}

TEST_F(SpooldProcess, WrongConfigurationIsExplainedAndBeginsNothing) {
    const std::pair<std::string, std::string> rows[] = {
        {"level = high", ":1: 'level = high': expected Off, Low, Medium, High or Detail\n"},
        {"\n#\nmode = two", "conf:3: 'mode = two': expected daemon, foreground or once\n"},
        {"trace_files = yes", "expected 1, true, 0 or false\n"},
        {"not_before = soon", "expected a time such as 2026-01-31 08:00:00, in the years 1971"},
        {"not_before = 1970-12-31 23:59:59", "expected a time such as "},
        {"log", "'log': expected key = value\n"},
        {"log == a", "'log == a': expected key = value\n"},
        {std::string("log = a\0b", 9), "'log = a\\x00b': expected key = value\n"},
        {"colour = red", "expected one of spool, log, trace, trace_dir, trace_files, level, "},
        {"spool =\nmode = once", "--spool is no folder: ''\n"}};
    for (const auto& [text, error] : rows) {
        Write("conf", text);
        EXPECT_EQ(Start("--log log --config conf").Exit(), 1);
        EXPECT_THAT(ReadFile("error"), HasSubstr(error));
        EXPECT_FALSE(std::filesystem::exists("log"));
    }
}

TEST_F(SpooldProcess, HoldsTheWorkBackUntilItsTime) {
    Write("log", "");
    Child spoold = Start(
        "--spool spool --log log --foreground --not-before '2037-12-31 00:00:00' --level off "
        "--trace full --trace-dir /dev");
    WaitForText("log", "No work before 2037-12-31 00:00:00");
    Drop("late");
    kill(spoold.pid, SIGUSR1);
    WaitForText("log", "Error   : Cannot write the trace");
    kill(spoold.pid, SIGHUP);
    WaitForText("log", "done: 0, failed: 0, passes: 0, could not be taken: 0");
    kill(spoold.pid, SIGTERM);
    EXPECT_EQ(spoold.Exit(), 0);
    EXPECT_EQ(ReadFile("spool/late"), "late");
}

TEST_F(SpooldProcess, KeepsOthersOutAndEndsWithTheFileInHandWhenTheSpoolIsBroken) {
    Child spoold = StartWaiting();
    WaitForText("trace", "Waiting");
    EXPECT_EQ(Drain(), 1);
    EXPECT_EQ(ReadFile("error"), "spoold: Another spoold holds 'spool'\n");
    std::filesystem::rename("spool/done", "gone");
    Drop("late");
    EXPECT_EQ(spoold.Exit(), 1);
    EXPECT_THAT(ReadFile("error"), HasSubstr("spoold: worker-"));
    EXPECT_THAT(ReadFile("log"),
                ContainsRegex("Critical: worker-[12]: Cannot write 'spool/done/late.report'"));
    EXPECT_EQ(ReadFile("spool/work/late"), "late");
}

TEST_F(SpooldProcess, ShortageOfDescriptorsFailsNoFile) {
    Names expected;
    for (int number = 100; number < 200; ++number) {
        const std::string name = std::to_string(number);
        Write("spool/" + name, "");
        std::filesystem::resize_file("spool/" + name, 200'000);
        expected.insert({name, name + ".report"});
    }
    Child spoold = StartWaiting("--workers 64", "ulimit -n 16; ");
    for (int number = 100; number < 200; ++number) {
        WaitForText("trace", "Done: '" + std::to_string(number) + "'");
    }
    kill(spoold.pid, SIGTERM);
    EXPECT_EQ(spoold.Exit(), 0);
    EXPECT_EQ(In("spool/done"), expected);
}

TEST_F(SpooldProcess, RefusedThreadIsLoggedAndLeavesNoPidFile) {
    Child spoold = Start("--spool spool --log log --pid-file pid",
                         "ulimit -v 2000000; ulimit -s 4000000; ");  // in KiB; no room for a stack
    spoold.AwaitHangUp();
    EXPECT_FALSE(std::filesystem::exists("pid"));
    EXPECT_THAT(ReadFile("log"), HasSubstr("Critical: Cannot create a thread: "));
}

TEST_F(SpooldProcess, ErrorsReachTheExitCodeAndStandardError) {
    for (const auto& [options, error] :
         {std::pair("--foreground --log none/log", "spoold: Cannot write the log 'none/log'"),
          {"--foreground --trace full --trace-dir /dev", "Cannot write the trace 'full'"},
          {"--log log", "spoold: A daemon needs --pid-file, or --foreground"},
          {"--pid-file pid", "spoold: A daemon needs --log, or --foreground"},
          {"--pid-file none/pid --log log", "spoold: Cannot write 'none/pid', given by --pid-file"},
          {"--pid-file pid --log spool", "spoold: Cannot write 'spool', given by --log"},
          {"--config none", "spoold: Cannot read the configuration 'none'"},
          {"--not-before today", "invalid time format: today"},
          {"--not-before '1970-12-31 00:00:00'", "not in the years 1971 to 2105: 1970"},
          {"--onec", "was not expected: --onec"}}) {
        EXPECT_GT(Start(std::string("--spool spool ") + options).Exit(), 0) << options;
        EXPECT_THAT(ReadFile("error"), HasSubstr(error));
    }
    EXPECT_EQ(Start("--spool spool --log none/log --foreground 2>&- #").Exit(), 1);
    EXPECT_EQ(ReadFile("spool/work/.lock"), "");  // it could have become standard error
}

}  // namespace
}  // namespace quor_test
