#include "command_line.h"

#include <quor/enum_map.h>
#include <quor/exception.h>

#include <filesystem>
#include <map>

#include "configuration.h"
#include "text.h"

namespace spoold {
namespace {

constexpr unsigned int c_maxWorkers = 64;

constexpr const char* c_contract = R"(
The spool folder:
  SPOOL/NAME          dropped, waiting; names that begin with a dot are left alone
  SPOOL/work/NAME     taken
  SPOOL/done/NAME     done, with its report beside it in SPOOL/done/NAME.report
  SPOOL/failed/NAME   cannot be read, or is no regular file; the log says why
What the process itself lacks, such as descriptors or room on the disk, moves no file there: it is
logged, and ends the program when a second try fails as well.

Drop a file by renaming it: write it as SPOOL/.NAME, or elsewhere on the same file system, then
rename it to SPOOL/NAME. A file that is written in place may be taken half-written.
A name that done/ or failed/ holds already, or that ends in ".report", gets a number: NAME.2.
Long names are cut after 200 bytes. Collect a report when its file stands beside it.

Without --foreground and --once it becomes a daemon, which needs --pid-file and --log. Until then
errors are told on the terminal; the working directory and the standard streams stay as they are.
The PID file goes last of all when the daemon ends, and right after it the lock on the spool.

Only one spoold works on a spool. It may be killed at any time: what it had taken is finished at
the next start.

The configuration file, in lines "key = value"; blank lines and lines that begin with # are skipped,
and the command line prevails:
  spool, log, trace, trace_dir, pid_file, not_before      as the options
  level         Off, Low, Medium, High, Detail
  mode          daemon, foreground, once
  trace_files   1, true, 0, false: whether trace lines show the source file

Signals:
  SIGTERM, SIGINT     end it, after the files in hand or after a minute
  SIGHUP              reopens the trace, after a rotation, at the level that the configuration
                      and the command line say now; logs the statistics
  SIGUSR1, SIGUSR2    raise and lower the level of the trace by one

Exit code: 0 stopped or drained; 1 an error, or with --once a file could not be taken; others:
the command line is wrong.)";

std::map<std::string, int> Levels() {
    std::map<std::string, int> levels;
    for (const auto& [name, level] : quor::EnumMap<quor::TraceLevel_e>::items.NameToValue()) {
        levels[name] = level;
    }
    return levels;
}

std::string RefuseMoment(const std::string& text) {
    try {
        ReadMoment(text);
        return {};
    } catch (const quor::Exception& error) {
        return std::string(error.what()) + ": " + text;
    }
}

}  // namespace

CommandLine::CommandLine(int argc, const char* const* argv)
    : m_argc(argc),
      m_argv(argv),
      m_app("Writes a report on every file that is dropped into a spool folder.") {
    AddOptions();
}

void CommandLine::AddOptions() {
    m_app.footer(c_contract);
    m_app.add_option("--config", m_options.m_config, "Configuration file")->option_text("FILE");
    m_app.add_option("--spool", m_options.m_spool, "The spool folder")->option_text("FOLDER");
    m_app.add_option("--log", m_options.m_log, "Log file; without it the log is standard output")
        ->option_text("FILE");
    m_app
        .add_option("--trace", m_options.m_trace,
                    "Trace file; - is standard output, + is ./spoold_PID.log")
        ->option_text("NAME");
    m_app.add_option("--trace-dir", m_options.m_traceDir, "Folder of the trace file")
        ->option_text("FOLDER");
    m_app
        .add_option("--level", m_options.m_level,
                    "off, low (when not given), medium, high or detail; 0 to 4")
        ->transform(CLI::CheckedTransformer(Levels(), CLI::ignore_case))
        ->option_text("LEVEL");
    m_app
        .add_option("--pid-file", m_options.m_pidFile,
                    "Holds the daemon's process id while it runs")
        ->option_text("FILE");
    m_app
        .add_option("--not-before", m_options.m_notBefore,
                    "Begins no work before that local time, as \"2026-01-31 08:00:00\", "
                    "in the years 1971 to 2105")
        ->check(RefuseMoment)
        ->option_text("TIME");
    m_app
        .add_option("--workers", m_options.m_workers,
                    "Files in hand at once, 1 to 64; 2 if not given")
        ->check(CLI::Range(1U, c_maxWorkers))
        ->option_text("COUNT");
    m_app.add_flag_callback(
        "--foreground", [this] { m_options.m_mode = Options::eForeground; }, "Become no daemon");
    m_app.add_flag_callback(
        "--once", [this] { m_options.m_mode = Options::eOnce; },
        "Drain the spool and end; no daemon");
}

Options CommandLine::Read() {
    m_options = Options();
    m_app.parse(m_argc, m_argv);
    if (!m_options.m_config.empty()) {
        Options configured;
        ReadConfiguration(m_options.m_config, configured);
        m_options = configured;
        m_app.parse(m_argc, m_argv);
    }
    if (!std::filesystem::is_directory(m_options.m_spool)) {
        throw quor::Exception("--spool is no folder: " + Quoted(m_options.m_spool), true);
    }
    return m_options;
}

}  // namespace spoold
