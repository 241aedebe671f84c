#include "log_and_trace.h"

#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

#include <algorithm>
#include <string>

#include "build_info.h"
#include "text.h"

namespace spoold {
namespace {

bool g_hasTrace = false;  // not changed once there are threads

bool HasTrace() {
    if (!g_hasTrace) {
        quor::Log::GetInstance().Info("There is no trace: started without --trace");
    }
    return g_hasTrace;
}

void LogTrace(const std::string& done, int level) {
    if (level != quor::Off && !quor::TraceFile::GetInstance().IsActive()) {
        quor::Log::GetInstance().Error("Cannot write the trace");
    } else {
        quor::Log::GetInstance().Info(done + std::to_string(level));
    }
}

}  // namespace

void StartLogAndTrace(const Options& options) {
    quor::VerInfo::Init(c_major, c_minor, c_build, c_revision, c_label, c_compiler, c_buildTime,
                        c_buildMachine, c_buildUser);
    if (!options.m_log.empty() && !quor::Log::Init(options.m_log)) {
        throw quor::Exception("Cannot write the log " + Quoted(options.m_log), true);
    }
    g_hasTrace = !options.m_trace.empty();
    if (!g_hasTrace) {
        return;
    }
    quor::TraceFile::Init(options.m_trace, options.m_traceDir);
    quor::TraceFile& trace = quor::TraceFile::GetInstance();
    trace.SetPrintFile(options.m_traceFiles);
    trace.SetLevel(static_cast<quor::TraceLevel_e>(options.m_level));
    if (options.m_level != quor::Off && !trace.IsActive()) {
        throw quor::Exception("Cannot write the trace " + Quoted(options.m_trace), true);
    }
}

void ReopenTrace(quor::TraceLevel_e level) {
    if (!HasTrace()) {
        return;
    }
    quor::TraceFile& trace = quor::TraceFile::GetInstance();
    trace.Reopen();
    trace.SetLevel(level);  // starts a stopped trace, unless the level is the same as before
    trace.Start(level);
    LogTrace("Trace reopened at level ", level);
}

void ChangeTraceLevel(int step) {
    if (!HasTrace()) {
        return;
    }
    const int level = std::clamp<int>(quor::TraceActiveLevel() + step, quor::Off, quor::Detail);
    quor::TraceFile::GetInstance().SetLevel(static_cast<quor::TraceLevel_e>(level));
    LogTrace("Trace level ", level);
}

}  // namespace spoold
