#include <quor/daemon.h>

#include "support.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace quor_test {
namespace {

namespace fs = std::filesystem;

std::string Start(const std::string& pidFile) {
    const pid_t before = getpid();
    const int result = quor::Daemon::Instance().Start(pidFile);
    return std::to_string(result) + (getpid() == before ? " here" : " detached");
}

std::string Show(const std::string& file) {
    const std::string text = ReadFile(file);
    return text == std::to_string(getpid()) + "\n" ? "own id" : fs::exists(file) ? text : "absent";
}

void ForkAChildThatExits() {
    const pid_t child = fork();
    if (child == 0) {
        exit(0);
    }
    waitpid(child, nullptr, 0);
}

// What the steps give, and standard error in between, goes to the file "said".
void Take(const std::string& steps) {
    std::istringstream words(steps);
    for (std::string step, file; words >> step;) {
        std::ostringstream result;
        if (step == "start" || step == "show") {
            words >> file;
            result << step << ' ' << (step == "start" ? Start(file) : Show(file)) << '\n';
        } else if (step == "stop") {
            result << "stop " << quor::Daemon::Instance().Stop() << '\n';
        } else if (step == "farewell") {
            std::atexit([] { std::ofstream("said", std::ios::app) << "ended\n"; });
        } else if (step == "throw") {
            close(2), open("/dev/full", O_WRONLY);
            std::cerr.exceptions(std::ios_base::badbit);
        } else if (step == "close") {
            close(0), close(1), close(2);
        } else if (step == "child") {
            ForkAChildThatExits();
        } else if (step == "exit") {
            exit(0);
        }
        g_hooks.Plan(step == "fail" ? Hooks::Bit(Call::eDaemon) : 0, 1, Harm::eOnce);
        std::ofstream("said", std::ios::app) << result.str();
    }
}

TEST(DaemonProcess, KeepsAPidFileWhileItRuns) {
    const struct {
        const char* steps;
        std::string said;
    } rows[] = {
        {"stop start pid show pid start other show other stop show pid stop start new show new",
         "stop 0\nstart 0 detached\nshow own id\nProcess already daemonised. Ignoring.\n"
         "start 0 here\nshow absent\nstop 0\nshow absent\nstop 0\nstart 0 detached\nshow own id\n"},
        {"start old show old", "@(4711). Delete file: old\nstart 0 detached\nshow own id\n"},
        {"start empty", "@(). Delete file: empty\nstart 0 detached\n"},
        {"start full start /proc/version start pid stop",
         "@(). Can't delete file: full\nstart -1 here\n"
         "@(Linux). Can't delete file: /proc/version\nstart -1 here\nstart 0 detached\nstop 0\n"},
        {"start hollow show hollow", "@(). Delete file: hollow\nstart 0 detached\nshow own id\n"},
        {"start link show link show old stop",
         "@(4711). Delete file: link\nstart 0 detached\nshow own id\nshow 4711 x\nstop 0\n"},
        {"start dangling show target stop show dangling show target",
         "start 0 detached\nshow own id\nstop 0\nshow absent\nshow own id\n"},
        {"start gone/pid stop stop",
         "Error writing to PID file gone/pid\nstart 0 detached\nPID file can't be deleted.\n"
         "stop -1\nstop 0\n"},
        {"fail start pid start pid stop stop",
         "Daemonizing error: Resource temporarily unavailable\nstart -1 here\n"
         "Process already daemonised. Ignoring.\nstart 0 here\nPID file can't be deleted.\n"
         "stop -1\nstop 0\n"},
        {"close start old show old stop start gone/pid stop",
         "start 0 detached\nshow own id\nstop 0\nstart 0 detached\nstop -1\n"},
        {"start pid child show pid exit", "start 0 detached\nshow own id\n"},
        {"farewell start gone/pid throw exit",
         "Error writing to PID file gone/pid\nstart 0 detached\nended\n"}};
    for (const auto& row : rows) {
        const Folder folder;
        std::fflush(stdout);  // some of the processes leave by exit()
        std::ofstream("old") << "4711 x";
        std::ofstream("empty").close();
        fs::create_directories("full/folder");
        fs::create_directory("hollow");
        fs::create_symlink("old", "link");
        fs::create_symlink("target", "dangling");
        Child host([&row](Pipe&) {
            const Redirected standardError(STDERR_FILENO, "said");
            Take(row.steps);
        });
        host.AwaitHangUp();  // the detached processes too
        std::string said = ReadFile("said");
        const std::string found =
            std::string("Found PID file for another instance of ") + program_invocation_short_name;
        for (std::size_t at; (at = said.find(found)) != std::string::npos;) {
            said.replace(at, found.size(), "@");
        }
        EXPECT_EQ(said, row.said) << row.steps;
        EXPECT_FALSE(fs::exists("pid")) << row.steps;  // leaving by exit() removes it
    }
}

}  // namespace
}  // namespace quor_test
