#ifndef QUOR_SYNCHRONIZER_H
#define QUOR_SYNCHRONIZER_H

#include <condition_variable>
#include <mutex>

namespace quor {

/// A counting barrier: one thread waits, a bounded time, until others have counted down to zero.
///
/// All operations may be called from any thread, by several waiters too. Deadlines follow the wall
/// clock. Every step but Reset() and Cancel() is traced at level Low, under the mutex. Waiters must
/// have left Wait() before the object goes. Throws std::system_error when the mutex cannot be
/// locked.
class Synchronizer {
public:
    /// The longest that Wait() may take in all, in milliseconds.
    static constexpr unsigned int MaxTimeout = 10000;  // NOLINT(readability-identifier-naming)

    /// `iterations` waits of `timeoutMs` milliseconds each. Throws Exception when their product, in
    /// unsigned 32-bit arithmetic, exceeds MaxTimeout.
    Synchronizer(unsigned int counter, unsigned int iterations, unsigned int timeoutMs);
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;
    /// Cancels.
    ~Synchronizer();

    /// True when the counter is 0, at once or at the end of an iteration. False when the iterations
    /// are used up, which is looked at first, when there are none, or when Cancel() came.
    bool Wait();
    /// Wakes nobody.
    void Increment();
    /// Leaves a counter of 0 as it is; wakes all waiters when the counter is 0.
    void Decrement();
    /// Wakes nobody.
    void Reset(unsigned int counter);
    /// Wakes all waiters, which return false unless the counter is 0. Takes no lock: a waiter that
    /// is about to wait can miss it.
    void Cancel();

    /// The longest that Wait() can take, in milliseconds.
    unsigned int Timeout();

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    unsigned int m_counter;     // guarded by m_mutex
    unsigned int m_iterations;  // waits that Wait() makes
    unsigned int m_timeoutMs;   // one wait
};

}  // namespace quor

#endif
