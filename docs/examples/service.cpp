// Ends by TERM after "Started" in service.log.
#include <quor/daemon.h>
#include <quor/log.h>
#include <quor/signal_handler.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>

#include <future>
#include <memory>

class Worker : public quor::WorkerThread {
    using WorkerThread::WorkerThread;
    void Main() override {
        while (!StopRequested()) TimedWait(0, 50'000'000);
    }
};

class Pool : public quor::WorkerPool {
    quor::WorkerThread* CreateWorker(const std::string& name) override { return new Worker(name); }
};

class Signals : public quor::SignalHandler {
public:
    void HandleSignal(int) override {
        if (!m_asked) m_stop.set_value();
        m_asked = true;
    }
    std::promise<void> m_stop;

private:
    bool m_asked = false;  // of the signal thread alone
};

int main() {
    if (quor::Daemon::Instance().Start("service.pid") != 0) return 1;  // 1: before any thread
    quor::VerInfo::Init(1, 4, 27, 903, "guide", "", "", "", "");       // 2: before any header
    quor::Log::Init("service.log");
    quor::TraceFile::Init("service.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    Signals handler;  // 3: before the threads whose end it asks for
    const std::unique_ptr<quor::SignalHandlerThread> signals(
        quor::SignalHandlerThread::InstallHandler(handler, nullptr));
    Pool pool;  // 4: the work
    pool.GetWorker("drain")->Start();
    quor::Log::GetInstance().Info("Started");

    handler.m_stop.get_future().wait();
    signals->Stop();
    pool.TerminateAll();
    quor::Log::GetInstance().Info("Stopped");
}  // the end of the process closes the trace, then deletes the PID file
