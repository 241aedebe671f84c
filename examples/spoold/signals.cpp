#include "signals.h"

#include <quor/log.h>
#include <quor/trace.h>

#include <csignal>
#include <cstring>
#include <exception>
#include <string>

#include "log_and_trace.h"

namespace spoold {

std::vector<int> Signals::Numbers() {
    return {SIGTERM, SIGINT, SIGHUP, SIGUSR1, SIGUSR2};
}

Signals::Signals(CommandLine& commandLine, const Spooler& spooler, kit::StopRequest& stop)
    : m_commandLine(commandLine), m_spooler(spooler), m_stop(stop) {}

void Signals::operator()(int number) const {
    quor::Log::GetInstance().Info(std::string("Signal: ") + strsignal(number));
    if (number == SIGTERM || number == SIGINT) {
        m_stop.Request();
    } else if (number == SIGHUP) {
        quor::Log::GetInstance().Info(m_spooler.Summary());
        Reread();
    } else {
        ChangeTraceLevel(number == SIGUSR1 ? 1 : -1);
    }
}

// A mistake in the configuration must not keep the rotated trace open.
void Signals::Reread() const {
    quor::TraceLevel_e level = quor::TraceActiveLevel();
    try {
        level = static_cast<quor::TraceLevel_e>(m_commandLine.Read().m_level);
    } catch (const std::exception& error) {
        quor::Log::GetInstance().Error(std::string(error.what()) + "; the level stays");
    }
    ReopenTrace(level);
}

}  // namespace spoold
