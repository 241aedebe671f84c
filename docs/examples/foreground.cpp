// Ends by TERM after "Started" in output.
#include <quor/log.h>
#include <quor/signal_handler.h>

#include <csignal>
#include <future>
#include <iostream>
#include <memory>

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
    // No Daemon, no Log::Init, no trace: messages go to standard output.
    std::cout << std::unitbuf;  // or they wait in the buffer
    const int numbers[] = {SIGTERM, 0};
    Signals handler;
    const std::unique_ptr<quor::SignalHandlerThread> signals(
        quor::SignalHandlerThread::InstallHandler(handler, numbers));
    quor::Log::GetInstance().Info("Started");
    handler.m_stop.get_future().wait();
    signals->Stop();
    quor::Log::GetInstance().Info("Stopped");
}
