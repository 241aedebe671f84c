#ifndef SPOOLD_OPTIONS_H
#define SPOOLD_OPTIONS_H

#include <quor/time.h>
#include <quor/trace_level.h>

#include <CLI/CLI.hpp>
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

/// The program's arguments, and the configuration file that they may name. One thread at a time.
class CommandLine {
public:
    CommandLine(int argc, const char* const* argv);
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// What the configuration file says, as it is now, and over it what the command line says.
    /// Throws CLI::ParseError for Exit(), also when help was asked for; quor::Exception when the
    /// configuration or the spool folder is wrong.
    Options Read();
    /// Prints help or error, and returns the exit code.
    int Exit(const CLI::ParseError& error) const { return m_app.exit(error); }

private:
    void AddOptions();

    const int m_argc;
    const char* const* const m_argv;
    CLI::App m_app;
    Options m_options;  // what m_app parses into
};

/// As quor::CreateTime(), but throws quor::Exception also outside of the years 1971 to 2105: others
/// do not compare rightly with the current time.
quor::Time ReadMoment(const std::string& text);

/// Throws quor::Exception when a daemon could not write its files, or would have none. To be asked
/// while there is still a terminal that shows the answer.
void CheckDaemonFiles(const Options& options);

}  // namespace spoold

#endif
