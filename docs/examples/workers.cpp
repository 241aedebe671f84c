#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>

#include <future>
#include <memory>

class Drain : public quor::WorkerThread {
public:
    Drain(const std::string& name, std::promise<void>& first)
        : WorkerThread(name), m_first(first) {}

protected:
    void Main() override {
        QUOR_TRACE(quor::Low, "at work: drain");  // tells its thread id
        m_first.set_value();
        while (!StopRequested()) {
            // ... one piece of work ...
            TimedWait(0, 50'000'000);  // a slice: a Stop() that came before it costs 50 ms
        }
    }

private:
    std::promise<void>& m_first;
};

class Pool : public quor::WorkerPool {
public:
    std::promise<void> m_first;

private:
    quor::WorkerThread* CreateWorker(const std::string& name) override {
        return new Drain(name, m_first);
    }
};

int main() {
    quor::TraceFile::Init("workers.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    Pool pool;
    pool.GetWorker("drain")->Start();
    pool.m_first.get_future().wait();
    pool.TerminateAll();  // before the pool goes
}
