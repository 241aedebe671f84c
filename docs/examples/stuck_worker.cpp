// Ends by KILL after "upload: REQUEST TO STOP" in stuck_worker.trace.
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>
#include <unistd.h>

#include <future>

class Worker : public quor::WorkerThread {
public:
    explicit Worker(const std::string& name) : WorkerThread(name), m_label(name) {}
    std::promise<void> m_atWork;

protected:
    void Main() override {
        QUOR_TRACE(quor::Low, "at work: " << m_label);
        m_atWork.set_value();
        if (m_label == "upload") pause();  // the fault: sleeps without an end
        while (!StopRequested()) {
            TimedWait(0, 50'000'000);
        }
    }

private:
    const std::string m_label;
};

class Pool : public quor::WorkerPool {
    quor::WorkerThread* CreateWorker(const std::string& name) override { return new Worker(name); }
};

int main() {
    quor::TraceFile::Init("stuck_worker.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    Pool pool;
    for (const char* name : {"scan", "upload", "watch"}) {
        auto* worker = static_cast<Worker*>(pool.GetWorker(name));
        worker->Start();
        worker->m_atWork.get_future().wait();
    }
    pool.TerminateAll();
}
