#include <quor/signal_handler.h>

#include <csignal>
#include <cstring>
#include <future>
#include <iostream>
#include <memory>

class Handler : public quor::SignalHandler {
public:
    void HandleSignal(int number) override {
        if (number == SIGQUIT) {  // keeps the signal thread busy
            m_busy.set_value();
            m_go.get_future().wait();
        }
        std::cout << strsignal(number) << "\n";
    }
    std::promise<void> m_busy;
    std::promise<void> m_go;
};

int main() {
    Handler handler;
    const std::unique_ptr<quor::SignalHandlerThread> signals(
        quor::SignalHandlerThread::InstallHandler(handler, nullptr));
    std::raise(SIGQUIT);
    handler.m_busy.get_future().wait();
    std::raise(SIGTERM);  // is never seen:
    std::raise(SIGHUP);   // this one is seen twice
    handler.m_go.set_value();
    signals->Stop();
}
