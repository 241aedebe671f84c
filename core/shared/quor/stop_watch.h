#ifndef QUOR_STOP_WATCH_H
#define QUOR_STOP_WATCH_H

#include <quor/time.h>

namespace quor {

/// Times a repeated activity, such as the passes of a loop:
///
///     quor::StopWatch watch;
///     watch.Start();
///     while (Work()) watch.NextLoop();
///     watch.Stop();
///     std::cout << watch.m_loops << " passes, longest " << watch.m_maxLoop << '\n';
///
/// The statistics are read from the members, and keep their values after Stop() until the next
/// Start(). Durations come from the real-time clock: one over which the clock was set back is 0.
/// Until the first Start() they hold the time of construction as a time of day in UTC; after that
/// they carry form 3 of Time.
///
/// Nothing is locked and nothing throws: a watch belongs to the thread that drives it.
class StopWatch {
public:
    StopWatch();

    /// Begins a measurement, anew when one is running. The average keeps its last value.
    void Start();
    /// Ends a pass and begins the next. On a stopped watch it is Start(): no pass is counted.
    void NextLoop();
    /// Ends the last pass, which counts as one, and the measurement. Does nothing on a stopped
    /// watch.
    void Stop();

    Time m_start;                ///< when Start() was called
    Time m_total;                ///< from Start() to Stop(); set by Stop()
    Time m_loopStart;            ///< when the current pass began
    Time m_lastLoop;             ///< duration of the latest pass
    bool m_running;              ///< between Start() and Stop()
    unsigned long long m_loops;  ///< passes since Start()
    Time m_minLoop;              ///< shortest pass; 4294967295 s while there is none
    Time m_maxLoop;              ///< longest pass
    /// The total divided by the low 32 bits of the passes (0 s when these are 0), or the total
    /// itself when no pass began later than the measurement. Set by Stop().
    Time m_averageLoop;
};

}  // namespace quor

#endif
