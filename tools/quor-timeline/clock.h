#ifndef QUOR_TIMELINE_CLOCK_H
#define QUOR_TIMELINE_CLOCK_H

#include <cstdint>

namespace timeline {

/// One moment by two clocks, in nanoseconds. Where the wall clock was never set back, both agree.
struct Moment {
    std::int64_t m_wall = 0;     // since 1970, as if local time were UTC: what the lines say
    std::int64_t m_elapsed = 0;  // never goes back within a run: what durations are taken from
};

/// Makes moments of times of day.
///
/// A step back of up to 70 minutes is the clock being set: no time passes. A larger one is a new
/// day, and a step forward of nearly a day is the clock being set back over midnight.
class Clock {
public:
    /// Begins a run.
    void Set(std::int64_t wall);
    Moment Take(std::int64_t timeOfDay);
    /// Moves on to a moment that has a date.
    Moment TakeDated(std::int64_t wall);

    Moment Now() const { return m_now; }
    /// By how much the last line set the clock back; 0 when it did not.
    std::int64_t LastStepBack() const { return m_stepBack; }

private:
    Moment m_now;
    std::int64_t m_stepBack = 0;
};

}  // namespace timeline

#endif
