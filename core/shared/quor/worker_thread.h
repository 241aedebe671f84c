#ifndef QUOR_WORKER_THREAD_H
#define QUOR_WORKER_THREAD_H

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace quor {

class WorkerPool;

/// Runs a named piece of work on a thread of its own.
///
///     class Drain : public WorkerThread {
///         void Main() override {
///             for (; !StopRequested(); TimedWait(1, 0)) DoOnePass();
///         }
///     };
///
/// The caller must ensure that
///   - the thread is joined, which a WorkerPool does, before the destructor of the derived class
///     begins: Main() uses its members.
/// The worker guarantees that
///   - an exception that leaves Main() is traced as a warning and ends only the thread;
///   - no lock is held while Main() runs;
///   - everything written before Start() is visible to Main(), everything written before Stop() to
///     a thread that then sees StopRequested(), and everything Main() wrote after the join.
///
/// Any thread may call any operation. Life-cycle events are traced at level Low. Throws
/// std::system_error if the thread library fails.
class WorkerThread {
public:
    /// Creates no thread. In a pool, `name` is the worker's key.
    explicit WorkerThread(const std::string& name);
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    /// As a last resort, stops and joins a thread that nobody joined, and traces a warning. Is not
    /// a cancellation point.
    virtual ~WorkerThread();

    /// Creates the thread. Throws Exception if an earlier one has not been joined; of two calls at
    /// once, one succeeds. Keeps an earlier stop request.
    void Start();
    /// Asks the thread to stop, wakes its TimedWait(), and returns at once. May be repeated.
    void Stop();
    /// Returns whether Stop() has been called; never false again after that.
    bool StopRequested() const;
    /// Blocks until Stop() is called or the time has passed by the wall clock; returns whether it
    /// has. May return early without a reason. A Stop() that came before does not shorten the wait:
    /// wait in slices, and test StopRequested() between them.
    bool TimedWait(unsigned long seconds, unsigned long nanoseconds) const;

    /// The body of the thread; not to be called by your program.
    void operator()();

protected:
    /// The work, called once on the new thread. The default does nothing.
    virtual void Main();

private:
    friend class WorkerPool;

    bool IsJoinable() const;

    std::string m_name;
    bool m_stopRequested;  // guarded by m_mutex
    mutable std::condition_variable m_condition;
    mutable std::mutex m_mutex;
    std::thread m_thread;  // guarded by m_mutex, but for the join
    WorkerPool* m_pool;    // null unless a pool owns this worker
};

}  // namespace quor

#endif
