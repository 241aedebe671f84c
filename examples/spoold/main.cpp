#include <kit.h>
#include <quor/daemon.h>
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/thread_controller.h>
#include <quor/time.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>

#include "command_line.h"
#include "log_and_trace.h"
#include "signals.h"
#include "spool.h"
#include "spooler.h"
#include "text.h"
#include "watch.h"
#include "workers.h"

namespace spoold {

// Sleeps until the time has come or the program is to stop.
void HoldBack(const std::string& notBefore, const kit::StopRequest& stop) {
    using std::chrono::milliseconds;
    constexpr milliseconds c_slice(60'000);  // a clock that is set is noticed that late
    const quor::Time begin = ReadMoment(notBefore);
    const auto left = [&begin]() -> std::chrono::duration<double> {
        return begin - quor::Time::Now(quor::Time::eNanoSec);
    };
    if (left().count() > 0) {
        quor::Log::GetInstance().Info("No work before " + notBefore);
    }
    while (!stop.IsRequested() && left().count() > 0) {
        stop.AwaitFor(std::min(std::chrono::ceil<milliseconds>(left()), c_slice));
    }
}

// A read that never returns, from a file system that is gone, must not hold up the machine's own
// shut-down.
[[noreturn]] void GiveUp() {
    quor::Log::GetInstance().Critical("Cannot stop in time; what is in hand waits in work/");
    quor::Daemon::Instance().Stop();
    quor::TraceFile::GetInstance().Stop();
    std::_Exit(1);
}

// A stop wakes the scan from a thread of its own, which the system may refuse. The controller's
// destructor tries again; woken from here, the scan has ended by then.
void StopScan(quor::ThreadController& scan, const Watch& watch) {
    try {
        scan.Stop();
    } catch (const std::system_error& error) {
        quor::Log::GetInstance().Warning(std::string("Stopping the scan: ") + error.what());
        watch.Wake();
    }
}

// Runs the program's threads until a stop is requested, and ends them in the order in which none
// misses what it uses.
void Serve(CommandLine& commandLine, const Options& options, Spool& spool, kit::StopRequest& stop) {
    QUOR_TRACE_FNC();
    Spooler spooler(spool, stop);
    Workers workers(spooler, stop);
    // Shared: calls of the cancel function may outlive the controller for a moment.
    const auto watch = std::make_shared<const Watch>(options.m_spool);
    const auto pass = [&spooler, &watch] {
        spooler.Scan();
        watch->Wait();
    };
    quor::ThreadController scan(
        "scan", [&stop, &pass] { kit::Guard("scan", stop, pass); }, [watch] { watch->Wake(); });
    kit::SignalThread signals(Signals::Numbers(), Signals(commandLine, spooler, stop));
    try {
        quor::Log::GetInstance().Info("Started on " + Quoted(options.m_spool));
        if (!options.m_notBefore.empty()) {
            HoldBack(options.m_notBefore, stop);
        }
        spooler.Recover();
        if (options.m_mode == Options::eOnce) {
            spooler.Drain();
        } else {
            workers.Start(options.m_workers);
            scan.Start();
            stop.Await();
        }
    } catch (const std::exception& error) {
        stop.Fail(error);
    }
    signals.Stop();
    if (!workers.End()) {
        GiveUp();
    }
    StopScan(scan, *watch);
    quor::Log::GetInstance().Info("Stopped; " + spooler.Summary());
    if (options.m_mode == Options::eOnce && spooler.Refused() > 0) {
        stop.Fail("Not drained; " + spooler.Summary());
    }
}

// What is wrong up to here is told on the terminal.
void Daemonise(const Options& options) {
    CheckDaemonFiles(options);
    if (quor::Daemon::Instance().Start(options.m_pidFile) != 0) {
        throw quor::Exception("Cannot become a daemon", true);
    }
}

// Returns the failure that ended the program, empty for none.
std::string Run(CommandLine& commandLine) {
    const Options options = commandLine.Read();
    // Its lock goes along into the daemon. Static, and older than the Daemon object: the lock goes
    // after the PID file, or the next daemon's PID file could be the one that is removed.
    static Spool spool(options.m_spool);
    kit::HoldSignals(Signals::Numbers());
    if (options.m_mode == Options::eDaemon) {
        Daemonise(options);
    }
    kit::StopRequest stop;
    try {
        StartLogAndTrace(options);
        Serve(commandLine, options, spool, stop);
    } catch (const std::exception& error) {
        stop.Fail(error);
    }
    return stop.Failure();
}

}  // namespace spoold

int main(int argc, char** argv) try {
    kit::OpenStandardStreams();
    spoold::CommandLine commandLine(argc, argv);
    std::string failure;
    try {
        failure = spoold::Run(commandLine);
    } catch (const CLI::ParseError& error) {
        return commandLine.Exit(error);
    }
    if (!failure.empty()) {
        std::cerr << "spoold: " << failure << std::endl;
    }
    return failure.empty() ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "spoold: " << error.what() << std::endl;
    return 1;
}
