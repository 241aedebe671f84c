#include <quor/create_time.h>
#include <quor/stop_watch.h>
#include <quor/time.h>

#include <iostream>

int main() {
    using quor::Time;
    const Time begin = quor::CreateTime("2026-01-31 08:00:00");  // local
    const Time end = begin + Time(90, 500'000'000);
    std::cout << begin << "\n" << end << "\n";
    std::cout << "seconds: " << std::chrono::duration<double>(end - begin).count() << "\n";

    quor::StopWatch watch;
    watch.Start();
    for (int pass = 0; pass < 3; ++pass) watch.NextLoop();
    watch.Stop();
    std::cout << watch.m_loops
              << " passes, longest shorter than a minute: " << (watch.m_maxLoop < Time(60, 0))
              << "\n";

    const Time now(Time::eDate | Time::eTimeOfDay | Time::eUtc);
    std::cout << "later than then: " << (begin < now) << "\n";
}
