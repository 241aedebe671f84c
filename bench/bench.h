#ifndef QUOR_BENCH_H
#define QUOR_BENCH_H

#include <benchmark/benchmark.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <pthread.h>

#include <mutex>
#include <string>

/// What the questions share. A question is a file; its benchmarks are QUESTION/floor, the least
/// that does the same work, and QUESTION/quor.
namespace quor_bench {

using namespace quor;

inline const std::string c_text(40, 'x');

/// A trace at `level` into a file of the working directory, as long as the object lives.
class OpenTrace {
public:
    explicit OpenTrace(TraceLevel_e level) {
        TraceFile::Init("bench.trace", "");
        TraceFile::GetInstance().Start(level);
    }
    OpenTrace(const OpenTrace&) = delete;
    OpenTrace& operator=(const OpenTrace&) = delete;
    ~OpenTrace() { TraceFile::GetInstance().Stop(); }
};

/// For benchmarks of several threads, which share what their first thread made.
void StartTrace(const benchmark::State& state);
void StopTrace(const benchmark::State& state);

/// The least that writes a trace line: clock, digits, one write under a mutex.
class FloorOfLine {
public:
    static void Open(const benchmark::State& state);
    static void Close(const benchmark::State& state);
    static void Write(const char* text, std::size_t length);
    /// The same line without a file, for who writes it elsewhere: "[01234: 15:53:46.123456789] ".
    static std::size_t PutHeader(char* line);
};

}  // namespace quor_bench

#endif
