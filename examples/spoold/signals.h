#ifndef SPOOLD_SIGNALS_H
#define SPOOLD_SIGNALS_H

#include <quor/signal_handler.h>

#include "options.h"
#include "spooler.h"
#include "stop_request.h"

namespace spoold {

/// What an operator asks for by signals; runs on the library's signal thread.
class Signals : public quor::SignalHandler {
public:
    /// The signals, ending in 0.
    static const int c_numbers[];

    /// All must outlive the object, which is the only one to use `commandLine`.
    Signals(CommandLine& commandLine, const Spooler& spooler, StopRequest& stop);

    void HandleSignal(int number) override;

private:
    void Reread();

    CommandLine& m_commandLine;
    const Spooler& m_spooler;
    StopRequest& m_stop;
};

/// Keeps the signals of the program pending until it can handle them: from when its PID file names
/// it on it may get one, whose default would end it and leave the file behind.
class HeldSignals {
public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { LetGo(); }
    /// Also those that whoever started the program held back.
    void LetGo();
};

}  // namespace spoold

#endif
