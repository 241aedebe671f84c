#ifndef SPOOLD_OPTIONS_H
#define SPOOLD_OPTIONS_H

#include <quor/trace_level.h>

#include <CLI/CLI.hpp>
#include <string>

namespace spoold {

/// What the command line says.
struct Options {
    std::string m_spool;
    std::string m_log;    // empty: standard output
    std::string m_trace;  // empty: no trace
    std::string m_traceDir;
    quor::TraceLevel_e m_level = quor::Low;
    bool m_once = false;
};

/// Lets `app` fill `options`, which must outlive the parsing.
void AddOptions(CLI::App& app, Options& options);

}  // namespace spoold

#endif
