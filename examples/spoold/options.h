#ifndef SPOOLD_OPTIONS_H
#define SPOOLD_OPTIONS_H

#include <quor/time.h>
#include <quor/trace_level.h>

#include <string>

namespace spoold {

/// What the operator wants. Of the types that settings of a configuration file can have.
struct Options {
    enum Mode_e { eDaemon, eForeground, eOnce };

    std::string m_spool;
    std::string m_log;    // empty: standard output
    std::string m_trace;  // empty: no trace
    std::string m_traceDir;
    bool m_traceFiles = false;  // trace lines show the source file
    int m_level = quor::Low;    // a quor::TraceLevel_e
    int m_mode = eDaemon;       // a Mode_e
    std::string m_pidFile;
    std::string m_notBefore;  // empty, or a text for ReadMoment()
    unsigned int m_workers = 2;
    std::string m_config;  // empty: no configuration file
};

/// As quor::CreateTime(), but throws quor::Exception also outside of the years 1971 to 2105: others
/// do not compare rightly with the current time.
quor::Time ReadMoment(const std::string& text);

/// Throws quor::Exception when a daemon could not write its files, or would have none. To be asked
/// while there is still a terminal that shows the answer.
void CheckDaemonFiles(const Options& options);

}  // namespace spoold

#endif
