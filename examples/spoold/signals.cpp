#include "signals.h"

#include <quor/log.h>
#include <quor/trace.h>

#include <csignal>
#include <cstring>
#include <exception>
#include <string>

#include "reporting.h"

namespace spoold {
namespace {

void ChangeMask(int how) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int* number = Signals::c_numbers; *number != 0; ++number) {
        sigaddset(&signals, *number);
    }
    pthread_sigmask(how, &signals, nullptr);
}

}  // namespace

const int Signals::c_numbers[] = {SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGUSR2, 0};

Signals::Signals(CommandLine& commandLine, const Spooler& spooler, StopRequest& stop)
    : m_commandLine(commandLine), m_spooler(spooler), m_stop(stop) {}

void Signals::HandleSignal(int number) {
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

// A mistake in the configuration must not end the signal thread; the rotated trace is let go
// anyway.
void Signals::Reread() {
    quor::TraceLevel_e level = quor::TraceActiveLevel();
    try {
        level = static_cast<quor::TraceLevel_e>(m_commandLine.Read().m_level);
    } catch (const std::exception& error) {
        quor::Log::GetInstance().Error(std::string(error.what()) + "; the level stays");
    }
    ReopenTrace(level);
}

HeldSignals::HeldSignals() {
    ChangeMask(SIG_BLOCK);
}

void HeldSignals::LetGo() {
    ChangeMask(SIG_UNBLOCK);
}

}  // namespace spoold
