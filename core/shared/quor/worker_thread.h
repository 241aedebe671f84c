#ifndef QUOR_WORKER_THREAD_H
#define QUOR_WORKER_THREAD_H

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace quor {

class WorkerPool;

/// A named piece of host work on a thread of its own.
///
///     void Main() override {
///         while (!StopRequested()) {
///             DoOnePass();
///             TimedWait(1, 0);
///         }
///     }
///
/// Derive, override Main(), Start() the worker; later Stop() it and have the thread joined, which a
/// WorkerPool does, before the destructor of the derived class begins: Main() uses its members. As
/// a last resort this class's destructor stops and joins a thread that still runs, and warns.
///
/// An exception that leaves Main() is traced as a warning and ends only the thread. Life-cycle
/// events are traced at level Low. The worker's mutex is never held while host code runs. Errors
/// of the thread library are thrown as std::system_error.
class WorkerThread {
public:
    /// Creates no thread. In a pool, `name` is the worker's key.
    explicit WorkerThread(const std::string& name);
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    virtual ~WorkerThread();

    /// Creates the thread. Throws Exception when an earlier one has not been joined. A stop request
    /// stays: a worker that was stopped starts with StopRequested() true.
    void Start();

    /// Asks the thread to stop, wakes its TimedWait(), and returns at once. Any thread, any number
    /// of times.
    void Stop();

    /// True once Stop() has been called; never false again.
    bool StopRequested() const;

    /// Sleeps until Stop() is called or the time is up; true when the time ran out. Also wakes
    /// without a reason now and then. A Stop() that came before this call does not shorten it:
    /// wait in slices and test StopRequested() between them. Any length; the wall clock counts.
    bool TimedWait(unsigned long seconds, unsigned long nanoseconds) const;

    /// The thread's body, not for the host to call.
    void operator()();

protected:
    /// The host's work, called once on the new thread with no lock held. This one does nothing.
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
