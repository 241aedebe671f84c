#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

#include "sinks.h"

namespace timeline {
namespace {

struct Times {
    unsigned long m_calls = 0;
    std::int64_t m_total = 0;
    std::int64_t m_own = 0;
    std::int64_t m_shortest = INT64_MAX;
    std::int64_t m_longest = 0;
};

class Summary : public Sink {
public:
    explicit Summary(std::ostream& output) : m_output(output) {}

    void Leave(long thread, const Call& call) override {
        Times& times = m_threads[thread][call.m_function];
        const std::int64_t duration = call.m_end - call.m_begin;
        ++times.m_calls;
        times.m_total += duration;
        times.m_own += duration - call.m_inner;
        times.m_shortest = std::min(times.m_shortest, duration);
        times.m_longest = std::max(times.m_longest, duration);
    }
    void Thrown(long /*thread*/, std::int64_t /*time*/, std::string_view place) override {
        ++m_thrown[std::string(place)];
    }
    void Finish() override {
        for (const auto& [thread, functions] : m_threads) {
            WriteThread(thread, functions);
        }
        if (!m_thrown.empty()) {
            m_output << "Exceptions\n";
        }
        for (const auto& [place, count] : m_thrown) {
            m_output << "  " << count << " thrown in " << Printable(place) << '\n';
        }
    }

private:
    using Functions = std::map<const std::string*, Times>;

    void WriteThread(long thread, const Functions& functions) {
        // The longest own time first; names decide between equals, so that the table stays the
        // same.
        std::vector<std::pair<const std::string*, Times>> rows(functions.begin(), functions.end());
        std::sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
            return std::make_pair(-left.second.m_own, *left.first) <
                   std::make_pair(-right.second.m_own, *right.first);
        });
        char line[128];
        std::snprintf(line, sizeof(line), "Thread %ld\n%10s %14s %14s %14s %14s %14s  %s\n", thread,
                      "calls", "total us", "own us", "shortest us", "longest us", "mean us",
                      "function");
        m_output << line;
        for (const auto& [function, times] : rows) {
            const auto calls = static_cast<double>(times.m_calls);
            std::snprintf(line, sizeof(line), "%10lu %14.3f %14.3f %14.3f %14.3f %14.3f  ",
                          times.m_calls, Micro(times.m_total), Micro(times.m_own),
                          Micro(times.m_shortest), Micro(times.m_longest),
                          Micro(times.m_total) / calls);
            m_output << line << Printable(*function) << '\n';
        }
    }
    static double Micro(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e3; }

    std::ostream& m_output;
    std::map<long, Functions> m_threads;
    std::map<std::string, unsigned long> m_thrown;
};

}  // namespace

std::string Printable(std::string text) {
    for (char& character : text) {
        const auto byte = static_cast<unsigned char>(character);
        character = byte < ' ' || byte == 0x7F ? '?' : character;
    }
    return text;
}

std::unique_ptr<Sink> MakeSummary(std::ostream& output) {
    return std::make_unique<Summary>(output);
}

}  // namespace timeline
