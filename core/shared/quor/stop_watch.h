#ifndef QUOR_STOP_WATCH_H
#define QUOR_STOP_WATCH_H

#include <quor/time.h>

namespace quor {

/// Times a repeated activity, such as the passes of a loop.
///
///     quor::StopWatch watch;
///     watch.Start();
///     while (Work()) watch.NextLoop();
///     watch.Stop();
///     std::cout << watch.m_loops << " passes, longest " << watch.m_maxLoop << '\n';
///
/// Read the statistics from the members. They keep their values after Stop() until the next
/// Start(); m_averageLoop keeps its value until the next Stop().
///
/// Durations are differences of the real-time clock. If it is set back, a span that would be
/// negative counts as zero: the passes then need not add up to m_total.
///
/// After Start() all times but m_averageLoop print in form 3 of Time, a local time of day;
/// m_averageLoop does so after Stop(). Until then durations hold the time of construction, in UTC.
///
/// The caller must ensure that only one thread uses a watch at a time. Nothing throws.
class StopWatch {
public:
    StopWatch();

    /// Begins a measurement, or begins it again if one is running. Resets everything but the
    /// average.
    void Start();
    /// Ends a pass and begins the next one. Starts a stopped watch instead, and counts no pass.
    void NextLoop();
    /// Ends the last pass, which is counted, and the measurement. Does nothing if the watch is
    /// stopped.
    void Stop();

    Time m_start;                ///< when Start() was called; zero before
    Time m_total;                ///< from Start() to Stop(); set by Stop()
    Time m_loopStart;            ///< when the current pass began; zero before Start()
    Time m_lastLoop;             ///< duration of the latest pass
    bool m_running;              ///< whether a measurement is running
    unsigned long long m_loops;  ///< passes since Start()
    Time m_minLoop;              ///< shortest pass; 4294967295 s if there is none yet
    Time m_maxLoop;              ///< longest pass
    /// The total divided by the low 32 bits of m_loops, or 0 s if these are 0. If the last pass
    /// began at the same clock reading as the measurement, it is the total itself, and so are the
    /// latest, the shortest and the longest pass.
    Time m_averageLoop;
};

}  // namespace quor

#endif
