#include <quor/synchronizer.h>

#include <quor/exception.h>
#include <quor/internal/joined.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/wall_clock_wait.h>
#include <quor/trace.h>

#include <chrono>
#include <string>

namespace quor {

Synchronizer::Synchronizer(unsigned int counter, unsigned int iterations, unsigned int timeoutMs)
    : m_counter(counter), m_iterations(iterations), m_timeoutMs(timeoutMs) {
    const unsigned int timeout = Timeout();
    if (timeout > MaxTimeout) {
        throw Exception(internal::Joined({"Internal error: Specified timeout is too long. ",
                                          timeout, ">", +MaxTimeout}),
                        true);
    }
}

Synchronizer::~Synchronizer() {
    Cancel();
}

bool Synchronizer::Wait() {
    const internal::LateReports reports;
    std::unique_lock<std::mutex> lock(m_mutex);
    for (unsigned int iteration = 0; iteration < m_iterations; ++iteration) {
        // A counter of 0 does not save the last iteration: the limit is looked at first.
        if (m_counter == 0) {
            return true;
        }
        QUOR_TRACE(Low, "waiting for condition: iteration:" << iteration);
        if (!internal::WaitOnce(m_condition, lock, std::chrono::milliseconds(m_timeoutMs))) {
            return m_counter == 0;
        }
        QUOR_TRACE(Low, "waiting finished:" << iteration);
    }
    QUOR_TRACE(Low, "waiting failed:");
    return false;
}

void Synchronizer::Increment() {
    const internal::LateReports reports;
    const std::lock_guard<std::mutex> lock(m_mutex);
    QUOR_TRACE(Low, "Increment: before" << m_counter);
    ++m_counter;
    QUOR_TRACE(Low, "Increment: after" << m_counter);
}

void Synchronizer::Decrement() {
    const internal::LateReports reports;
    const std::lock_guard<std::mutex> lock(m_mutex);
    QUOR_TRACE(Low, "Decrement: before" << m_counter);
    if (m_counter > 0) {
        --m_counter;
    }
    if (m_counter == 0) {
        m_condition.notify_all();
    }
    QUOR_TRACE(Low, "Decrement: after" << m_counter);
}

void Synchronizer::Reset(unsigned int counter) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_counter = counter;
}

void Synchronizer::Cancel() {
    m_condition.notify_all();
}

unsigned int Synchronizer::Timeout() {
    return m_timeoutMs * m_iterations;
}

}  // namespace quor
