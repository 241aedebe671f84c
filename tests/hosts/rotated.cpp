// rotated FOLDER ROTATIONS: eight threads log and trace numbered lines until the trace was let go
// so many times by SIGHUP, each of which is answered on standard output.
#include <quor/log.h>
#include <quor/signal_handler.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

class Rotation : public quor::SignalHandler {
public:
    explicit Rotation(int wanted) : m_wanted(wanted) {}
    void HandleSignal(int) override {
        quor::TraceFile::GetInstance().Reopen();
        ++m_seen;
        std::cout << m_seen << std::endl;
    }
    bool IsDone() const { return m_seen >= m_wanted; }

private:
    const int m_wanted;
    std::atomic<int> m_seen{0};
};

void Write(int thread, const Rotation& rotation) {
    for (int number = 0; !rotation.IsDone(); ++number) {
        const std::string text = std::to_string(thread) + "-" + std::to_string(number);
        QUOR_TRACE(quor::Low, "traced " << text);
        quor::Log::GetInstance().Info("logged " + text);
    }
    QUOR_TRACE(quor::Low, "end of " << thread);
}

}  // namespace

int main(int, char** argv) {
    const std::string folder = argv[1];
    quor::Log::Init(folder + "/spoold.log");
    quor::TraceFile::Init("spoold.trace", folder);
    quor::TraceFile::GetInstance().Start(quor::Low);
    Rotation rotation(std::atoi(argv[2]));
    const int signals[] = {SIGHUP, 0};
    const std::unique_ptr<quor::SignalHandlerThread> signalThread(
        quor::SignalHandlerThread::InstallHandler(rotation, signals));
    std::cout << "ready" << std::endl;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([thread, &rotation] { Write(thread, rotation); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    signalThread->Stop();
}
