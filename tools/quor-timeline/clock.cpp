#include "clock.h"

#include <algorithm>

#include "line.h"

namespace timeline {
namespace {

// Summer time, with room for a clock that was also corrected.
constexpr std::int64_t c_largestStepBack = std::int64_t{70} * 60 * c_second;

// No clock of a trace gets there; a file that is none must not make times overflow.
constexpr std::int64_t c_endOfTime = 100'000 * c_day;

}  // namespace

void Clock::Set(std::int64_t wall) {
    m_now = {wall, wall};
    m_stepBack = 0;
}

Moment Clock::Take(std::int64_t timeOfDay) {
    const std::int64_t forward = timeOfDay - m_now.m_wall % c_day;
    const std::int64_t days = forward < -c_largestStepBack          ? 1
                              : forward > c_day - c_largestStepBack ? -1
                                                                    : 0;
    return TakeDated(std::max<std::int64_t>(m_now.m_wall + forward + days * c_day, timeOfDay));
}

Moment Clock::TakeDated(std::int64_t wall) {
    wall = wall > c_endOfTime ? c_endOfTime + wall % c_day : wall;
    const std::int64_t passed = wall - m_now.m_wall;
    m_stepBack = std::max<std::int64_t>(-passed, 0);
    m_now.m_wall = wall;
    m_now.m_elapsed =
        std::min(m_now.m_elapsed + std::max<std::int64_t>(passed, 0), c_endOfTime + c_day);
    return m_now;
}

}  // namespace timeline
