#include <quor/worker_pool.h>

#include <quor/exception.h>
#include <quor/internal/joined.h>
#include <quor/trace.h>
#include <quor/worker_thread.h>

#include <memory>

namespace quor {

WorkerPool::WorkerPool() = default;

WorkerPool::~WorkerPool() {
    for (const auto& [name, worker] : m_workers) {
        if (worker != nullptr) {
            worker->m_pool = nullptr;
            QUOR_TRACE(Low, "WARNING: Worker pool destroyed with live worker: " << name);
        }
    }
}

WorkerThread* WorkerPool::GetWorker(const std::string& name) {
    std::unique_ptr<WorkerThread> worker;  // deleted after the unlock: it may call this pool then
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_workers.find(name);
    if (found != m_workers.end() && found->second != nullptr) {
        return found->second;
    }
    worker.reset(CreateWorker(name));
    if (worker == nullptr) {
        return nullptr;
    }
    if (worker->m_name != name) {
        throw Exception(
            internal::Joined({"Worker thread: ", worker->m_name, ": made for the name ", name}),
            true);
    }
    m_workers[name] = worker.get();
    // Last of all: from here on the worker's destructor takes the mutex that is held here.
    worker->m_pool = this;
    return worker.release();
}

void WorkerPool::Remove(WorkerThread* worker) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_workers.find(worker->m_name);
    if (found != m_workers.end() && found->second == worker) {
        found->second = nullptr;
    }
}

WorkerThread* WorkerPool::BeginTermination(const std::string& name) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_workers.find(name);
    if (found == m_workers.end() || found->second == nullptr ||
        !m_terminating.insert(name).second) {
        return nullptr;
    }
    return found->second;
}

void WorkerPool::EndTermination(const std::string& name) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_terminating.erase(name);
}

void WorkerPool::Terminate(const std::string& name) {
    // The caller's text may lie in the worker.
    const std::string key(name);  // NOLINT(performance-unnecessary-copy-initialization)
    WorkerThread* const worker = BeginTermination(key);
    if (worker == nullptr) {
        return;
    }
    try {
        if (worker->IsJoinable()) {
            worker->Stop();
            worker->m_thread.join();
        }
    } catch (...) {
        EndTermination(key);
        throw;
    }
    delete worker;
    EndTermination(key);
}

const std::string* WorkerPool::NextName(const std::string* name) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto next = name != nullptr ? m_workers.upper_bound(*name) : m_workers.begin();
    return next != m_workers.end() ? &next->first : nullptr;
}

std::size_t WorkerPool::CountNames() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_workers.size();
}

// Entries are never erased: a name stays where it is. Names that the host's code adds on the way
// take part.
void WorkerPool::TerminateAll() {
    const TraceFnc fnc("void quor::WorkerPool::TerminateAll()", "worker_pool", __LINE__);
    for (const auto* name = NextName(nullptr); name != nullptr; name = NextName(name)) {
        Terminate(*name);
    }
    QUOR_TRACE(Detail, "Size of worker map: " << CountNames());
    for (const auto* name = NextName(nullptr); name != nullptr; name = NextName(name)) {
        if (WorkerThread* const worker = BeginTermination(*name)) {
            delete worker;
            EndTermination(*name);
        }
    }
    QUOR_TRACE(Low, "Terminated worker threads.");
}

}  // namespace quor
