// Ends by TERM after "Started" in output.
#include <kit.h>
#include <quor/log.h>

#include <csignal>
#include <iostream>

int main() {
    // No Daemon, no Log::Init, no trace: messages go to standard output.
    kit::OpenStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // the reader of our output may go away
    std::cout << std::unitbuf;      // or messages wait in the buffer
    kit::StopRequest stop;
    try {
        const kit::SignalThread signals({SIGTERM, SIGINT}, [&stop](int) { stop.Request(); });
        quor::Log::GetInstance().Info("Started");
        stop.Await();
    } catch (const std::exception& error) {
        stop.Fail(error);
    }
    quor::Log::GetInstance().Info("Stopped");
    return stop.Failure().empty() ? 0 : 1;
}
