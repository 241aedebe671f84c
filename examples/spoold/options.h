#ifndef SPOOLD_OPTIONS_H
#define SPOOLD_OPTIONS_H

#include <quor/trace_level.h>

#include <CLI/CLI.hpp>
#include <string>

namespace spoold {

/// What the operator wants.
struct Options {
    std::string m_spool;
    std::string m_log;    // empty: standard output
    std::string m_trace;  // empty: no trace
    std::string m_traceDir;
    std::string m_pidFile;
    quor::TraceLevel_e m_level = quor::Low;
    unsigned int m_workers = 2;
    bool m_foreground = false;
    bool m_once = false;

    bool IsDaemon() const { return !m_foreground && !m_once; }
};

/// Lets `app` fill `options`, which must outlive the parsing.
void AddOptions(CLI::App& app, Options& options);

/// Throws quor::Exception when a daemon could not write its files, or would have none. To be asked
/// while there is still a terminal that shows the answer.
void CheckDaemonFiles(const Options& options);

}  // namespace spoold

#endif
