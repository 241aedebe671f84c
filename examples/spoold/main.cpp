#include <quor/daemon.h>
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/signal_handler.h>
#include <quor/thread_controller.h>
#include <quor/time.h>
#include <quor/trace.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "options.h"
#include "reporting.h"
#include "signals.h"
#include "spool.h"
#include "spooler.h"
#include "stop_request.h"
#include "text.h"
#include "watch.h"
#include "workers.h"

namespace spoold {

// One pass of the scan loop.
void ScanAndWait(Spooler& spooler, const Watch& watch, StopRequest& stop) {
    try {
        spooler.Scan();
        watch.Wait();
    } catch (const std::exception& error) {
        stop.Fail(error.what());
        throw;  // ends the loop; the library traces it
    }
}

// Sleeps until the time has come or the program is to stop.
void HoldBack(const std::string& notBefore, const StopRequest& stop) {
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

// Runs the program's threads until a stop is requested, and ends them in the order in which none
// misses what it uses.
void Serve(CommandLine& commandLine, const Options& options, Spool& spool, HeldSignals& held) {
    QUOR_TRACE_FNC();
    StopRequest stop;
    Spooler spooler(spool, stop);
    Workers workers(spooler, stop);
    // Shared: calls of the cancel function may outlive the controller for a moment.
    const auto watch = std::make_shared<const Watch>(options.m_spool);
    quor::ThreadController scan(
        "scan", [&spooler, &stop, watch] { ScanAndWait(spooler, *watch, stop); },
        [watch] { watch->Wake(); });
    Signals signals(commandLine, spooler, stop);
    const std::unique_ptr<quor::SignalHandlerThread> signalThread(
        quor::SignalHandlerThread::InstallHandler(signals, Signals::c_numbers));
    held.LetGo();
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
        stop.Fail(error.what());
    }
    signalThread->Stop();
    workers.TerminateAll();
    scan.Stop();
    quor::Log::GetInstance().Info("Stopped; " + spooler.Summary());
    if (options.m_mode == Options::eOnce && spooler.Refused() > 0) {
        stop.Fail("Not drained; " + spooler.Summary());
    }
    if (!stop.Failure().empty()) {
        throw quor::Exception(stop.Failure(), true);
    }
}

// What is wrong up to here is told on the terminal.
void Daemonise(const Options& options) {
    CheckDaemonFiles(options);
    if (quor::Daemon::Instance().Start(options.m_pidFile) != 0) {
        throw quor::Exception("Cannot become a daemon", true);
    }
}

void Run(CommandLine& commandLine) {
    const Options options = commandLine.Read();
    // Its lock goes along into the daemon. Static, and older than the Daemon object: the lock goes
    // after the PID file, or the next daemon's PID file could be the one that is removed.
    static Spool spool(options.m_spool);
    HeldSignals held;
    if (options.m_mode == Options::eDaemon) {
        Daemonise(options);
    }
    try {
        StartReporting(options);
        Serve(commandLine, options, spool, held);
    } catch (const std::exception& error) {
        quor::Log::GetInstance().Critical(error.what());
        throw;
    }
}

}  // namespace spoold

int main(int argc, char** argv) try {
    spoold::CommandLine commandLine(argc, argv);
    try {
        spoold::Run(commandLine);
    } catch (const CLI::ParseError& error) {
        return commandLine.Exit(error);
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << "spoold: " << error.what() << std::endl;
    return 1;
}
