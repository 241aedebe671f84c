// Ends by KILL after "<== void quor::WorkerThread::Stop()" in hanging.trace.
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
        Pass();
        m_atWork.set_value();
        while (!StopRequested()) {
            TimedWait(0, 50'000'000);
        }
    }

private:
    void Pass() {
        QUOR_TRACE_FNC();
        Send(3);
    }
    void Send(int files) {
        QUOR_TRACE_FNC();
        QUOR_TRACE(quor::Low, m_label << ": " << files << " files");
        if (m_label == "upload") {
            m_atWork.set_value();
            pause();  // the fault: sleeps without an end
        }
    }

    const std::string m_label;
};

class Pool : public quor::WorkerPool {
    quor::WorkerThread* CreateWorker(const std::string& name) override { return new Worker(name); }
};

int main() {
    quor::TraceFile::Init("hanging.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::High);
    Pool pool;
    for (const char* name : {"upload", "watch"}) {
        auto* worker = static_cast<Worker*>(pool.GetWorker(name));
        worker->Start();
        worker->m_atWork.get_future().wait();
    }
    pool.TerminateAll();
}
