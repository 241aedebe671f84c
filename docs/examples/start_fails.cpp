#include <dirent.h>
#include <kit.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <cerrno>
#include <csignal>
#include <cstring>

class Drain : public quor::WorkerThread {
    using WorkerThread::WorkerThread;
    void Main() override {
        while (!StopRequested()) TimedWait(0, 50'000'000);
    }
};

void OpenSpool() {
    if (opendir("spool") == nullptr) {
        throw quor::Exception(std::string("Cannot open spool: ") + std::strerror(errno), true);
    }
}

int main() {
    kit::StopRequest stop;
    quor::Log::Init("start_fails.log");
    quor::TraceFile::Init("start_fails.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    try {
        kit::Pool pool([](const std::string& name) { return new Drain(name); });
        const kit::SignalThread signals({SIGTERM}, [&stop](int) { stop.Request(); });
        pool.GetWorker("drain")->Start();
        OpenSpool();  // the folder is missing, and two threads run already
        stop.Await();
    } catch (const std::exception& error) {
        stop.Fail(error);
    }
    return stop.Failure().empty() ? 0 : 1;
}
