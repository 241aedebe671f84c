#include "options.h"

#include <map>

namespace spoold {
namespace {

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

Only one spoold works on a spool. It may be killed at any time: what it had taken is finished at
the next start. SIGINT and SIGTERM end it after the file in hand.

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
    app.add_flag("--once", options.m_once, "Drain the spool and end");
}

}  // namespace spoold
