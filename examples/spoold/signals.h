#ifndef SPOOLD_SIGNALS_H
#define SPOOLD_SIGNALS_H

#include <kit.h>

#include <vector>

#include "command_line.h"
#include "spooler.h"

namespace spoold {

/// What an operator asks for by signals; called on the library's signal thread.
class Signals {
public:
    /// The signals, those that end the program first.
    static std::vector<int> Numbers();

    /// All must outlive the object, which is the only one to use `commandLine`.
    Signals(CommandLine& commandLine, const Spooler& spooler, kit::StopRequest& stop);

    void operator()(int number) const;

private:
    void Reread() const;

    CommandLine& m_commandLine;
    const Spooler& m_spooler;
    kit::StopRequest& m_stop;
};

}  // namespace spoold

#endif
