#include <gtest/gtest.h>
#include <quor/stop_watch.h>

#include <sstream>

#include "support.h"

using namespace quor_test;
using quor::Time;

namespace {

std::vector<double> Seconds(const quor::StopWatch& watch) {
    std::vector<double> seconds;
    for (const Time& time :
         {watch.m_total, watch.m_lastLoop, watch.m_minLoop, watch.m_maxLoop, watch.m_averageLoop}) {
        seconds.push_back(std::chrono::duration<double>(time).count());
    }
    return seconds;
}

TEST(StopWatch, MeasuresPassesTheirExtremesAndTheirAverage) {
    const struct {
        const char* name;
        std::vector<time_t> passes;  // how far the clock moves in each; Stop() ends the last
        std::vector<double> seconds;
        unsigned long long before = 0;  // passes, counted but not measured
    } rows[] = {{"one pass is everything", {2}, {2, 2, 2, 2, 2}},
                {"stop ends a pass", {1, 3}, {4, 3, 1, 3, 2}},
                {"extremes are kept", {3, 1, 2}, {6, 2, 1, 3, 2}},
                {"the average has fractions", {1, 2}, {3, 2, 1, 2, 1.5}},
                {"a clock set back gives zero", {1, -3}, {0, 0, 0, 1, 0}},
                {"passes that took no time are not averaged", {0, 4}, {4, 4, 4, 4, 4}},
                {"the low 32 bits divide", {1, 3}, {4, 3, 1, 3, 2}, 1ULL << 32},
                {"low 32 bits of 0 give no average", {3, 3}, {6, 3, 3, 3, 0}, (1ULL << 32) - 2}};
    for (const auto& row : rows) {
        FakeClock clock(1'000);
        quor::StopWatch watch;
        watch.NextLoop();  // on a stopped watch: starts it, counts nothing
        watch.m_loops += row.before;
        for (std::size_t pass = 0; pass < row.passes.size(); ++pass) {
            EXPECT_TRUE(watch.m_running && watch.m_loops == row.before + pass) << row.name;
            clock.Advance(row.passes[pass]);
            pass + 1 < row.passes.size() ? watch.NextLoop() : watch.Stop();
        }
        clock.Advance(5);
        watch.Stop();  // on a stopped watch: changes nothing
        EXPECT_TRUE(!watch.m_running && watch.m_loops == row.before + row.passes.size())
            << row.name;
        EXPECT_EQ(Seconds(watch), row.seconds) << row.name;
    }
}

TEST(StopWatch, PrintsInUtcBeforeTheFirstStartAndInLocalTimeAfterIt) {
    const ScopedZone zone("ABC-5");
    const FakeClock clock(1'000);
    quor::StopWatch watch;
    const auto printed = [&] {
        std::ostringstream text;
        text << watch.m_start << watch.m_loopStart << '/' << watch.m_total << watch.m_lastLoop
             << watch.m_maxLoop << '/' << watch.m_averageLoop;
        return text.str();
    };
    const std::string utc = "00:16:40.000000000", local = "05:16:40.000000000";
    const std::string zero = "05:00:00.000000000";
    EXPECT_EQ(printed(), zero + zero + '/' + utc + utc + utc + '/' + utc);
    EXPECT_EQ(watch.m_minLoop, Time(1'000u));
    watch.Start();  // leaves the average to Stop()
    EXPECT_EQ(printed(), local + local + '/' + zero + zero + zero + '/' + utc);
    EXPECT_EQ(watch.m_minLoop, Time(4'294'967'295u));
}

}  // namespace
