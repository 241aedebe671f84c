#ifndef SPOOLD_COMMAND_LINE_H
#define SPOOLD_COMMAND_LINE_H

#include <CLI/CLI.hpp>

#include "options.h"

namespace spoold {

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

}  // namespace spoold

#endif
