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
/// A worker is made on the first GetWorker() of its name. After its deletion the name stays in the
/// table, and the next GetWorker() makes a new one. Call TerminateAll() before the pool goes: a
/// pool destroyed with live workers warns in the trace, cuts their link to it, and leaves them to
/// whoever holds them.
///
/// GetWorker() and Terminate() may be called from any thread, but not GetWorker() for a name that
/// is being terminated, nor either while TerminateAll() runs. The pool's mutex is held while
/// CreateWorker() runs, and never while a worker is stopped, joined or deleted. What the factory,
/// a stop or a join throws passes to the caller; std::system_error comes from the thread library.
class WorkerPool {
public:
    WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    virtual ~WorkerPool();

    /// The worker of that name, made if there is none, not started; the pool keeps owning it. Null
    /// when the factory makes none. Throws Exception when it makes one of another name.
    WorkerThread* GetWorker(const std::string& name);

    /// Stops the worker, waits for its Main() to return, and deletes it; one that never started is
    /// only deleted. Does nothing for an unknown or empty name, or for one that another thread is
    /// terminating. Not to be called by the worker itself.
    void Terminate(const std::string& name);

    /// Terminates all workers in the order of their names, each joined before the next is stopped.
    void TerminateAll();

protected:
    /// Makes the worker of that name with new, a distinct one at every call, or gives null. Runs
    /// with the pool's mutex held: it must not call this pool.
    virtual WorkerThread* CreateWorker(const std::string& name) = 0;

private:
    friend class WorkerThread;

    /// Clears the entry of a worker that is being destroyed.
    void Remove(WorkerThread* worker);
    /// The name that follows in the table, the first one after null; null at the end.
    const std::string* NextName(const std::string* name);
    std::size_t CountNames();
    /// The worker of that name, for the caller alone to terminate until EndTermination(); or null.
    WorkerThread* BeginTermination(const std::string& name);
    void EndTermination(const std::string& name);

    std::map<std::string, WorkerThread*> m_workers;  // guarded by m_mutex; null: deleted
    std::mutex m_mutex;
    std::set<std::string> m_terminating;  // by some thread; guarded by m_mutex
};

}  // namespace quor

#endif
