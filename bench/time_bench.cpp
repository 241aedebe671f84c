// What do the text of a time and a pass of a stop watch cost?
#include <quor/stop_watch.h>
#include <quor/time.h>
#include <time.h>

#include "bench.h"

namespace quor_bench {

char* PutTwo(char* end, int number, char behind) {
    end[0] = static_cast<char>('0' + number / 10);
    end[1] = static_cast<char>('0' + number % 10);
    end[2] = behind;
    return end + 3;
}

// All of form 7; the other two are shorter.
void DigitsByHand(benchmark::State& state) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    char text[32];
    for (auto _ : state) {
        tm fields{};
        localtime_r(&now.tv_sec, &fields);
        char* end = PutTwo(text, (fields.tm_year + 1900) / 100, ' ') - 1;
        end = PutTwo(end, fields.tm_year % 100, '-');
        end = PutTwo(end, fields.tm_mon + 1, '-');
        end = PutTwo(end, fields.tm_mday, ' ');
        end = PutTwo(end, fields.tm_hour, ':');
        end = PutTwo(end, fields.tm_min, ':');
        end = PutTwo(end, fields.tm_sec, '.');
        long rest = now.tv_nsec;
        for (int index = 8; index >= 0; --index) {
            end[index] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(DigitsByHand)->Name("text of a time/floor");

void TimeText(benchmark::State& state) {
    const Time time(7);
    for (auto _ : state) {
        time.ToText();
    }
}
BENCHMARK(TimeText)->Name("text of a time/quor");

void Clock(benchmark::State& state) {
    timespec now{};
    for (auto _ : state) {
        clock_gettime(CLOCK_REALTIME, &now);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(Clock)->Name("pass of a stop watch/floor");

void NextLoop(benchmark::State& state) {
    StopWatch watch;
    watch.Start();
    for (auto _ : state) {
        watch.NextLoop();
    }
}
BENCHMARK(NextLoop)->Name("pass of a stop watch/quor");

}  // namespace quor_bench
