#ifndef SPOOLD_LOG_AND_TRACE_H
#define SPOOLD_LOG_AND_TRACE_H

#include <quor/trace_level.h>

#include "options.h"

namespace spoold {

/// Starts log and trace as the options say. After daemonising, whose process id they carry, and
/// before any thread. Throws quor::Exception when a file cannot be written.
void StartLogAndTrace(const Options& options);

/// Closes the trace file, which may have been renamed, and opens it again at `level`. The log
/// says whether it went well; without a trace it only says so.
void ReopenTrace(quor::TraceLevel_e level);

/// Raises or lowers the level of the trace by `step`, within Off and Detail; says the same.
void ChangeTraceLevel(int step);

}  // namespace spoold

#endif
