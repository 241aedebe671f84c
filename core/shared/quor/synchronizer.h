#ifndef QUOR_SYNCHRONIZER_H
#define QUOR_SYNCHRONIZER_H

#include <condition_variable>
#include <mutex>

namespace quor {

/// Blocks a thread, for a bounded time, until others have counted down to zero.
///
///     Synchronizer ready(2, 10, 500);  // 2 to come, 10 waits of 500 ms
///     StartTwo(ready);                 // each calls ready.Decrement()
///     const bool all = ready.Wait();
///
/// The caller must ensure that waiters have left Wait() before the object is destroyed. The class
/// guarantees that everything written before a Decrement() is visible to a thread whose Wait() then
/// returns true.
///
/// Any thread may call any operation; several may wait. Times are measured by the wall clock: one
/// that is set back lengthens a wait. All steps but Reset() and Cancel() are traced at level
/// Low, with the mutex held. Throws std::system_error if the mutex cannot be locked.
class Synchronizer {
public:
    /// The limit for the product of iterations and their length, in milliseconds.
    static constexpr unsigned int MaxTimeout = 10000;

    /// Sets the counter. Wait() makes `iterations` waits of `timeoutMs` milliseconds each. Throws
    /// Exception if their product exceeds MaxTimeout. It is computed in unsigned 32-bit arithmetic:
    /// one that wraps around may pass, and Wait() then takes longer than MaxTimeout.
    Synchronizer(unsigned int counter, unsigned int iterations, unsigned int timeoutMs);
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;
    /// Cancels.
    ~Synchronizer();

    /// Returns true if the counter is 0 at once, between two iterations, or when the waiter wakes.
    /// Returns false if all iterations have elapsed (checked before the counter), if there are
    /// none, or if the waiter wakes with the counter above 0: after Cancel(), without a reason, or
    /// because the counter was raised again. So false need not mean that the time is up.
    bool Wait();
    /// Adds 1 to the counter. Wakes nobody.
    void Increment();
    /// Takes 1 from a counter above 0. Wakes all waiters if it is then 0.
    void Decrement();
    /// Sets the counter. Wakes nobody.
    void Reset(unsigned int counter);
    /// Wakes all waiters. Takes no lock: a thread that is about to wait can miss it.
    void Cancel();

    /// Returns the product of iterations and their length, in milliseconds, as the constructor
    /// computes it.
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
