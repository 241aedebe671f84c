// Ends by TERM after "Started" in service.log.
#include <kit.h>
#include <quor/daemon.h>
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/thread_controller.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

#include <csignal>

class Drain : public quor::WorkerThread {
public:
    Drain(const std::string& name, kit::StopRequest& stop)
        : WorkerThread(name), m_label(name), m_stop(stop) {}

protected:
    void Main() override {
        kit::Guard(m_label, m_stop, [this] {
            QUOR_TRACE(quor::Low, "at work: " << m_label);
            while (!StopRequested()) {
                // ... one piece of work ...
                TimedWait(0, 50'000'000);
            }
        });
    }

private:
    const std::string m_label;
    kit::StopRequest& m_stop;
};

void StartLogAndTrace() {
    quor::VerInfo::Init(1, 4, 27, 903, "guide", "", "", "", "");  // before any header
    if (!quor::Log::Init("service.log")) {
        throw quor::Exception("Cannot write service.log", true);
    }
    quor::TraceFile::Init("service.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    if (!quor::TraceFile::GetInstance().IsActive()) {
        quor::Log::GetInstance().Warning("Cannot write service.trace; there is no trace");
    }
}

void Serve(const std::vector<int>& numbers, kit::StopRequest& stop) {
    kit::Pool pool([&stop](const std::string& name) { return new Drain(name, stop); });
    const auto bell = std::make_shared<kit::Bell>();
    quor::ThreadController scan(
        "scan", [&stop, bell] { kit::Guard("scan", stop, [&bell] { bell->Await(); }); },
        [bell] { bell->Ring(); });
    const kit::SignalThread signals(numbers, [&stop](int number) {
        if (number == SIGHUP) {
            quor::TraceFile::GetInstance().Reopen();  // it was rotated
        } else {
            stop.Request();
        }
    });
    pool.GetWorker("drain")->Start();
    scan.Start();
    quor::Log::GetInstance().Info("Started");
    stop.Await();
}  // ends the signal thread, then the scan, then the workers

int main() {
    const std::vector<int> numbers{SIGTERM, SIGINT, SIGHUP};
    kit::OpenStandardStreams();
    kit::HoldSignals(numbers);
    if (quor::Daemon::Instance().Start("service.pid") != 0) return 1;  // before any thread
    kit::StopRequest stop;
    try {
        StartLogAndTrace();
        Serve(numbers, stop);
    } catch (const std::exception& error) {
        stop.Fail(error);
    }
    quor::Log::GetInstance().Info("Stopped");
    return stop.Failure().empty() ? 0 : 1;
}  // the end of the process closes the trace, then deletes the PID file
