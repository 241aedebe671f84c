#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace.h>
#include <quor/ver_info.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "build_info.h"
#include "options.h"
#include "spool.h"
#include "spooler.h"
#include "text.h"
#include "watch.h"

namespace spoold {

// Before any thread, and before anything that logs or traces.
void StartReporting(const Options& options) {
    quor::VerInfo::Init(c_major, c_minor, c_build, c_revision, c_label, c_compiler, c_buildTime,
                        c_buildMachine, c_buildUser);
    if (!options.m_log.empty() && !quor::Log::Init(options.m_log)) {
        throw quor::Exception("Cannot write the log " + Quoted(options.m_log), true);
    }
    if (options.m_trace.empty() || options.m_level == quor::Off) {
        return;
    }
    quor::TraceFile::Init(options.m_trace, options.m_traceDir);
    quor::TraceFile::GetInstance().SetLevel(options.m_level);
    if (!quor::TraceFile::GetInstance().IsActive()) {
        throw quor::Exception("Cannot write the trace " + Quoted(options.m_trace), true);
    }
}

void Work(const Options& options) {
    QUOR_TRACE_FNC();
    const Spool spool(options.m_spool);
    const Watch watch(options.m_spool);
    Spooler spooler(spool, watch);
    quor::Log::GetInstance().Info("Started on " + Quoted(options.m_spool));
    spooler.Recover();
    spooler.Drain();
    while (!options.m_once && !watch.StopRequested()) {
        watch.Wait();
        spooler.Drain();
    }
    quor::Log::GetInstance().Info("Stopped; " + spooler.Summary());
    if (options.m_once && spooler.Refused() > 0) {
        throw quor::Exception("Not drained; " + spooler.Summary(), true);
    }
}

void Run(const Options& options) {
    try {
        StartReporting(options);
        Work(options);
    } catch (const std::exception& error) {
        quor::Log::GetInstance().Critical(error.what());
        throw;
    }
}

}  // namespace spoold

int main(int argc, char** argv) try {
    CLI::App app("Writes a report on every file that is dropped into a spool folder.");
    spoold::Options options;
    spoold::AddOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    spoold::Run(options);
    return 0;
} catch (const std::exception& error) {
    std::cerr << "spoold: " << error.what() << std::endl;
    return 1;
}
