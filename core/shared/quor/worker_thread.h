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
///             while (!StopRequested()) {
///                 DoOnePass();
///                 TimedWait(1, 0);
///             }
///         }
///     };
///
/// The caller must ensure that
///   - the thread is joined, which a WorkerPool does, before the destructor of the derived class
///     begins: Main() uses its members;
///   - Start() is not called while another thread destroys the worker.
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
    /// once, one succeeds. Keeps a stop request: a worker that was stopped starts with
    /// StopRequested() true.
    void Start();

    /// Asks the thread to stop, wakes its TimedWait(), and returns at once. May be repeated.
    void Stop();

    /// Returns whether Stop() has been called; never false again after that.
    bool StopRequested() const;

    /// Blocks until Stop() is called or the time has passed by the wall clock; returns true if the
    /// time ran out. May also return early without a reason. A Stop() that came before this call
    /// does not shorten it: wait in slices, and test StopRequested() between them. Lengths beyond
    /// the range of the clock wait as long as it can express.
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
