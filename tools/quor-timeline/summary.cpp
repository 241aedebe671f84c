#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

#include "output.h"
#include "sinks.h"
#include "text.h"
#include "unfinished.h"

namespace timeline {
namespace {

struct Times {
    std::int64_t m_calls = 0;
    std::int64_t m_cutCalls = 0;
    double m_total = 0;  // of calls of calls too: may be more than an integer holds
    std::int64_t m_own = 0;
    std::int64_t m_shortest = INT64_MAX;
    std::int64_t m_longest = 0;
};

class Summary : public Sink {
public:
    explicit Summary(Output& output) : m_output(output) {}

    void Enter(std::int64_t thread, const Call& /*call*/) override { m_unfinished.GoOn(thread); }
    void Leave(std::int64_t thread, const Call& call) override {
        Times& times = m_threads[thread][call.m_function];
        const std::int64_t duration = call.m_end - call.m_begin;
        ++times.m_calls;
        times.m_cutCalls += call.m_cut ? 1 : 0;
        times.m_total += static_cast<double>(duration);
        times.m_own += duration - call.m_inner;
        times.m_shortest = std::min(times.m_shortest, duration);
        times.m_longest = std::max(times.m_longest, duration);
        if (!call.m_cut) {
            m_unfinished.GoOn(thread);
        }
    }
    void Thrown(std::int64_t thread, std::int64_t /*time*/, std::string_view place) override {
        ++m_thrown[std::string(place)];
        m_unfinished.GoOn(thread);
    }
    void Record(std::int64_t thread, std::int64_t time, std::string_view text) override {
        m_unfinished.Take(thread, time, text);
    }
    void EndRun() override { m_unfinished.EndRun(); }
    void Finish() override {
        for (const auto& [thread, functions] : m_threads) {
            WriteThread(thread, functions);
        }
        if (!m_thrown.empty()) {
            m_output << "Exceptions\n";
        }
        for (const auto& [place, count] : m_thrown) {
            m_output << "  " << count << " thrown in " << Printable(place) << "\n";
        }
        if (!m_unfinished.Findings().empty()) {
            m_output << "Not finished\n";
        }
        for (const std::string& finding : m_unfinished.Findings()) {
            m_output << "  " << finding << "\n";
        }
    }

private:
    using Functions = std::map<const std::string*, Times>;

    void WriteThread(std::int64_t thread, const Functions& functions) {
        // The longest own time first; names decide between equals, so that the table stays the
        // same.
        std::vector<std::pair<const std::string*, Times>> rows(functions.begin(), functions.end());
        std::sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
            return std::make_pair(-left.second.m_own, *left.first) <
                   std::make_pair(-right.second.m_own, *right.first);
        });
        m_output << "Thread " << thread << "\n";
        char line[160];
        std::snprintf(line, sizeof(line), "%10s %14s %14s %14s %14s %14s  %s\n", "calls",
                      "total us", "own us", "shortest us", "longest us", "mean us", "function");
        m_output << line;
        for (const auto& [function, times] : rows) {
            std::snprintf(line, sizeof(line), "%10lld %14.3f %14.3f %14.3f %14.3f %14.3f  ",
                          static_cast<long long>(times.m_calls), times.m_total / 1e3,
                          Micro(times.m_own), Micro(times.m_shortest), Micro(times.m_longest),
                          times.m_total / 1e3 / static_cast<double>(times.m_calls));
            m_output << line << Printable(*function);
            if (times.m_cutCalls > 0) {
                m_output << " (" << times.m_cutCalls << " without exit)";
            }
            m_output << "\n";
        }
    }
    static double Micro(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e3; }

    Output& m_output;
    std::map<std::int64_t, Functions> m_threads;
    std::map<std::string, std::int64_t> m_thrown;
    Unfinished m_unfinished;
};

}  // namespace

std::unique_ptr<Sink> MakeSummary(Output& output) {
    return std::make_unique<Summary>(output);
}

}  // namespace timeline
