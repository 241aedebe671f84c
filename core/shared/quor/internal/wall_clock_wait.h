#ifndef QUOR_INTERNAL_WALL_CLOCK_WAIT_H
#define QUOR_INTERNAL_WALL_CLOCK_WAIT_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quor::internal {

using WallClock = std::chrono::system_clock;

// Waits once, until notified, woken without a reason, or `deadline`. Returns whether the wall clock
// has reached the deadline, whatever ended the wait.
inline bool WaitOnce(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     WallClock::time_point deadline) {
    condition.wait_until(lock, deadline);
    return WallClock::now() >= deadline;
}

inline bool WaitOnce(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     std::chrono::milliseconds length) {
    return WaitOnce(condition, lock, WallClock::now() + length);
}

}  // namespace quor::internal

#endif
