#include <quor/stop_watch.h>

#include <cstdint>

namespace quor {
namespace {

constexpr int c_formatReading = Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_formatStatistics = Time::eUtc | Time::eTimeOfDay | Time::eNanoSec;
constexpr unsigned long c_mostSeconds = 4'294'967'295;  // no pass is longer

void EndLoop(StopWatch& watch, const Time& now) {
    watch.m_lastLoop = now;
    watch.m_lastLoop -= watch.m_loopStart;
    if (!(watch.m_lastLoop < watch.m_maxLoop) && !(watch.m_lastLoop == watch.m_maxLoop)) {
        watch.m_maxLoop = watch.m_lastLoop;
    }
    if (watch.m_lastLoop < watch.m_minLoop) {
        watch.m_minLoop = watch.m_lastLoop;
    }
}

}  // namespace

StopWatch::StopWatch()
    : m_start(0, 0),
      m_total(c_formatStatistics),
      m_loopStart(0, 0),
      m_lastLoop(c_formatStatistics),
      m_running(false),
      m_loops(0),
      m_minLoop(c_formatStatistics),
      m_maxLoop(c_formatStatistics),
      m_averageLoop(c_formatStatistics) {}

void StopWatch::Start() {
    m_start = Time::Now(c_formatReading);
    m_loopStart = m_start;
    m_total = Time(0, 0);
    m_lastLoop = Time(0, 0);
    m_loops = 0;
    m_maxLoop = Time(0, 0);
    m_minLoop = Time(c_mostSeconds, 0);
    m_running = true;
}

void StopWatch::NextLoop() {
    if (!m_running) {
        Start();
        return;
    }
    const Time now(c_formatReading);
    EndLoop(*this, now);
    m_loopStart = now;
    ++m_loops;
}

void StopWatch::Stop() {
    if (!m_running) {
        return;
    }
    const Time now(c_formatReading);
    m_total = now - m_start;
    ++m_loops;
    if (m_start == m_loopStart) {
        m_lastLoop = m_minLoop = m_maxLoop = m_averageLoop = m_total;
    } else {
        EndLoop(*this, now);
        const auto divisor = static_cast<std::uint32_t>(m_loops);
        m_averageLoop = divisor != 0 ? m_total / divisor : Time(0, 0);
    }
    m_running = false;
}

}  // namespace quor
