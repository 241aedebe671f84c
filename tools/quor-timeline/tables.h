#ifndef QUOR_TIMELINE_TABLES_H
#define QUOR_TIMELINE_TABLES_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "output.h"
#include "sinks.h"
#include "waits.h"

namespace timeline {

/// What is unfinished at the end of a run: waits, and per thread the stack that is open.
class StuckTable {
public:
    void Enter(const Thread& thread, const Call& call);
    void Leave(const Thread& thread, const Call& call);
    void Tell(const Thread& thread, const Message& message);
    /// Writes the table and clears it. Returns false if there was nothing to write.
    bool EndRun(const Run& run, Output& output, Made& names);

private:
    struct Open {
        Thread m_thread;
        Moment m_last;              // when it told of anything
        std::vector<Call> m_calls;  // outermost last
    };

    void WriteStack(const Open& open, const Run& run, Output& output, Made& names) const;
    std::vector<Open*> Sorted(const Run& run);

    Waits m_waits;
    ByThread<Open> m_threads;
};

/// Functions of all threads, with their times.
class SlowTable {
public:
    void Leave(const Thread& thread, const Call& call);
    void EndRun(const Run& run, const Style& style, Output& output, Made& names);

private:
    struct Row {
        const Name* m_function = nullptr;
        std::int64_t m_calls = 0;
        std::int64_t m_withoutExit = 0;
        std::int64_t m_total = 0;  // of outermost calls
        std::int64_t m_own = 0;
        double m_sum = 0;  // of all calls: may be more than an integer holds
        Call m_longest;
        std::int64_t m_longestThread = 0;
    };

    static double Key(const Row& row, Style::Sort_e sort);

    std::vector<Row> m_rows;  // by the number of the name
};

/// Exceptions, assertions, errors and warnings, by text.
class SwallowedTable {
public:
    explicit SwallowedTable(NameFnc name) : m_name(name) {}

    void Tell(const Message& message);
    void EndRun(const Run& run, Output& output);

private:
    struct Row {
        std::int64_t m_count = 0;
        Moment m_first;
        Moment m_last;
    };

    NameFnc m_name;
    std::map<std::string, Row> m_rows;
};

/// "Run 2: spoold, process 200, 2026-02-01 00:00:10.000000000 to 00:00:12.500000000, no trailer".
std::string RunText(const Run& run);
/// Time of day, with the date in front if the run passed a midnight.
std::string WhenText(const Moment& moment, const Run& run);

}  // namespace timeline

#endif
