#include "signals.h"

#include <quor/log.h>

#include <csignal>
#include <cstring>
#include <string>

#include "reporting.h"

namespace spoold {

const int Signals::c_numbers[] = {SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGUSR2, 0};

Signals::Signals(const Options& options, StopRequest& stop) : m_options(options), m_stop(stop) {}

void Signals::HandleSignal(int number) {
    quor::Log::GetInstance().Info(std::string("Signal: ") + strsignal(number));
    if (number == SIGTERM || number == SIGINT) {
        m_stop.Request();
    } else if (m_options.m_trace.empty()) {
        quor::Log::GetInstance().Warning("There is no trace: started without --trace");
    } else if (number == SIGHUP) {
        ReopenTrace(m_options.m_level);
    } else {
        ChangeTraceLevel(number == SIGUSR1 ? 1 : -1);
    }
}

}  // namespace spoold
