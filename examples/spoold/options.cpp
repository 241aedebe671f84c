#include "options.h"

#include <quor/exception.h>
#include <unistd.h>

#include <filesystem>
#include <map>

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

Drop a file by renaming it: write it as SPOOL/.NAME, or elsewhere on the same file system, then
rename it to SPOOL/NAME. A file that is written in place may be taken half-written.
A name that done/ or failed/ holds already, or that ends in ".report", gets a number: NAME.2.
Long names are cut after 200 bytes. Collect a report when its file stands beside it.

Without --foreground and --once it becomes a daemon, which needs --pid-file and --log. Until then
errors are told on the terminal; the working directory and the standard streams stay as they are.
The PID file goes last of all when the daemon ends.

Only one spoold works on a spool. It may be killed at any time: what it had taken is finished at
the next start.

Signals, which want a moment between two of different kinds:
  SIGTERM, SIGINT     end it, after the files in hand
  SIGHUP              opens the trace anew, at the level it was started with: after a rotation
  SIGUSR1, SIGUSR2    raise and lower the level of the trace by one

Exit code: 0 stopped or drained; 1 an error, or with --once a file could not be taken; others:
the command line is wrong.)";

const std::map<std::string, quor::TraceLevel_e> c_levels{{"off", quor::Off},
                                                         {"low", quor::Low},
                                                         {"medium", quor::Medium},
                                                         {"high", quor::High},
                                                         {"detail", quor::Detail}};

}  // namespace

void AddOptions(CLI::App& app, Options& options) {
    app.footer(c_contract);
    app.add_option("--spool", options.m_spool, "The spool folder")
        ->required()
        ->check(CLI::ExistingDirectory)
        ->option_text("FOLDER");
    app.add_option("--log", options.m_log, "Log file; without it the log is standard output")
        ->option_text("FILE");
    CLI::Option* trace = app.add_option("--trace", options.m_trace,
                                        "Trace file; - is standard output, + is ./spoold_PID.log")
                             ->option_text("NAME");
    app.add_option("--trace-dir", options.m_traceDir, "Folder of the trace file")
        ->needs(trace)
        ->option_text("FOLDER");
    app.add_option("--level", options.m_level,
                   "off, low (when not given), medium, high or detail; 0 to 4")
        ->needs(trace)
        ->transform(CLI::CheckedTransformer(c_levels, CLI::ignore_case))
        ->option_text("LEVEL");
    app.add_option("--pid-file", options.m_pidFile, "Holds the daemon's process id while it runs")
        ->option_text("FILE");
    app.add_option("--workers", options.m_workers, "Files in hand at once, 1 to 64; 2 if not given")
        ->check(CLI::Range(1U, c_maxWorkers))
        ->option_text("COUNT");
    app.add_flag("--foreground", options.m_foreground, "Become no daemon");
    app.add_flag("--once", options.m_once, "Drain the spool and end; no daemon");
}

// Not in the unnamed namespace: the trace could not name it as the place of a throw.
void CheckWritable(const std::string& option, const std::string& file) {
    if (file.empty()) {
        throw quor::Exception("A daemon needs " + option + ", or --foreground", true);
    }
    const std::filesystem::path path(file);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    const bool isThere = access(path.c_str(), F_OK) == 0;
    if (std::filesystem::is_directory(path) ||
        access(isThere ? path.c_str() : folder.c_str(), isThere ? W_OK : W_OK | X_OK) != 0) {
        throw quor::Exception("Cannot write " + Quoted(file) + ", given by " + option, true);
    }
}

void CheckDaemonFiles(const Options& options) {
    CheckWritable("--pid-file", options.m_pidFile);
    CheckWritable("--log", options.m_log);
    if (!options.m_trace.empty() && options.m_trace != "+" && options.m_trace != "-") {
        CheckWritable("--trace", options.m_traceDir.empty()
                                     ? options.m_trace
                                     : options.m_traceDir + "/" + options.m_trace);
    }
}

}  // namespace spoold
