#ifndef QUOR_TESTS_THREADS_H
#define QUOR_TESTS_THREADS_H

#include "support.h"

#include <quor/trace.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace quor_test {

/// A trace whose lines name their source file and no source line.
class ThreadTap : public TraceTap {
public:
    explicit ThreadTap(quor::TraceLevel_e level = quor::Low);
    /// The lines since the start: the thread's number, 0 for the caller, the others in the order of
    /// their first lines; the file unless it is `module`; the text, but for "Worker thread: "
    /// before it. Without the places of throws.
    static std::string Lines(const std::string& module);
    /// The lines thread by thread, without numbers: the caller's, then, each after a line "-",
    /// those of others, in the order of their texts. After a short time, once they are `expected`;
    /// if not, after 10 s, as they are.
    static std::string ByThread(const std::string& module, const std::string& expected);
};

/// What a TraceFnc writes around `inner`.
std::string Scope(const std::string& function, const std::string& inner = "");

/// Ways for host code to end its thread, at the next cancellation point at the latest, and the ends
/// of the warnings about that; empty: none.
struct WayOut {
    std::function<void()> leave;
    std::string workerWarning;
    std::string signalWarning;
};
extern const std::vector<WayOut> c_waysOut;

/// An event that stays raised until it has woken one thread.
class Flag {
public:
    void Raise();
    void Await();

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_raised = false;
};

class Worker : public quor::WorkerThread {
public:
    using Work = std::function<void(Worker&)>;
    Worker(const std::string& name, Work work) : WorkerThread(name), m_work(std::move(work)) {}

private:
    void Main() override {
        const Work work = m_work;  // some workers are destroyed while they run
        work(*this);
    }
    const Work m_work;
};

class Pool : public quor::WorkerPool {
public:
    using Factory = std::function<quor::WorkerThread*(const std::string&)>;
    explicit Pool(Factory create) : m_create(std::move(create)) {}
    explicit Pool(const Worker::Work& work)
        : Pool([work](const std::string& name) { return new Worker(name, work); }) {}

private:
    quor::WorkerThread* CreateWorker(const std::string& name) override { return m_create(name); }
    const Factory m_create;
};

}  // namespace quor_test

#endif
