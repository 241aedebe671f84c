#ifndef QUOR_DETAIL_TRACE_GATE_H
#define QUOR_DETAIL_TRACE_GATE_H

#include <atomic>

namespace quor::detail {

constexpr int c_traceGateClosed = -1;

// What a trace site compares its level with: the level of a running trace, c_traceGateClosed
// otherwise. Every site reads this one word in place. It is initialised before any code runs and
// never destroyed.
extern std::atomic<int> g_traceGate;

}  // namespace quor::detail

#endif
