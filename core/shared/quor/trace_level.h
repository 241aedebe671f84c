#ifndef QUOR_TRACE_LEVEL_H
#define QUOR_TRACE_LEVEL_H

#include <quor/detail/cxx17.h>

/// The library, except for its macros and three variables.
namespace quor {

/// How much is traced, from silent to most verbose. A message of level L is written while the
/// trace's level is at least L. Levels are compared as integers and printed as decimal numbers.
enum TraceLevel_e {
    Off = 0,     ///< nothing; setting this level closes the trace file
    Low = 1,     ///< life-cycle events, warnings, thrown exceptions, copies of log messages
    Medium = 2,  ///< steps of the signal thread
    High = 3,    ///< entry and exit of functions, state notes of thread controllers
    Detail = 4   ///< everything; setting this level also turns the stack dump on
};

}  // namespace quor

#endif
