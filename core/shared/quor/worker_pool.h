#ifndef QUOR_WORKER_POOL_H
#define QUOR_WORKER_POOL_H

#include <cstddef>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace quor {

class WorkerThread;

/// Creates workers by name, owns them, and stops, joins and deletes them.
///
///     class Pool : public WorkerPool {
///         WorkerThread* CreateWorker(const std::string& name) override { return new Drain(name); }
///     };
///     pool.GetWorker("drain")->Start();
///     pool.TerminateAll();  // before the pool is destroyed
///
/// The caller must ensure that
///   - TerminateAll() comes before the destructor, which only traces a warning for each worker
///     that is left, and leaves it to its holders;
///   - nobody uses a worker while its name is being terminated, and no other thread the pool while
///     TerminateAll() runs. Workers and their destructors may call GetWorker() then.
/// The pool guarantees that
///   - a name has at most one worker; once that is deleted, the next GetWorker() makes another;
///   - its mutex is held while CreateWorker() runs, never while a worker is stopped or deleted;
///   - after the Terminate() that deleted it, everything the worker wrote is visible to the caller.
///
/// Any thread may call any operation. Exceptions of the factory, a stop or a join are passed on.
/// Throws std::system_error if the thread library fails.
class WorkerPool {
public:
    WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    virtual ~WorkerPool();

    /// Returns the worker of that name, which the pool owns; creates one, not started, if there is
    /// none. Returns null if the factory does. Throws Exception, and deletes the worker, if the
    /// factory gave it another name.
    WorkerThread* GetWorker(const std::string& name);

    /// Stops and joins the worker, if it was started, and deletes it. Does nothing if there is
    /// none, or if another thread is terminating it. Not to be called by the worker itself.
    void Terminate(const std::string& name);

    /// Terminates all workers in the order of their names, each joined before the next is stopped.
    /// A worker created meanwhile under a name that was passed is deleted in the end without a
    /// stop, and must not have been started.
    void TerminateAll();

protected:
    /// Returns a worker of that name made by `new`, or null. Must not call this pool.
    virtual WorkerThread* CreateWorker(const std::string& name) = 0;

private:
    friend class WorkerThread;

    void Remove(WorkerThread* worker);
    // The next name in the table, or the first one after null; null at the end.
    const std::string* NextName(const std::string* name);
    std::size_t CountNames();
    // The worker of that name, for the caller alone to terminate until EndTermination(); or null.
    WorkerThread* BeginTermination(const std::string& name);
    void EndTermination(const std::string& name);

    std::map<std::string, WorkerThread*> m_workers;  // guarded by m_mutex; null: deleted
    std::mutex m_mutex;
    std::set<std::string> m_terminating;  // by some thread; guarded by m_mutex
};

}  // namespace quor

#endif
