#ifndef QUOR_TIMELINE_SINKS_H
#define QUOR_TIMELINE_SINKS_H

#include <memory>
#include <ostream>
#include <string>

#include "calls.h"

namespace timeline {

/// `text` with a question mark for each control character.
std::string Printable(std::string text);

/// Tables for the terminal: per thread its functions with calls, total, own, shortest, longest and
/// mean time; the places of thrown exceptions.
std::unique_ptr<Sink> MakeSummary(std::ostream& output);
/// A line "thread;outer;inner NANOSECONDS" per stack, with its own time, for flame graphs.
std::unique_ptr<Sink> MakeFolded(std::ostream& output);
/// Chrome trace events, as JSON: for Perfetto and chrome://tracing.
std::unique_ptr<Sink> MakeChrome(std::ostream& output);

}  // namespace timeline

#endif
