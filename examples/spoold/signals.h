#ifndef SPOOLD_SIGNALS_H
#define SPOOLD_SIGNALS_H

#include <quor/signal_handler.h>

#include "options.h"
#include "stop_request.h"

namespace spoold {

/// What an operator asks for by signals; runs on the library's signal thread.
class Signals : public quor::SignalHandler {
public:
    /// The signals, ending in 0.
    static const int c_numbers[];

    /// Both must outlive the object.
    Signals(const Options& options, StopRequest& stop);

    void HandleSignal(int number) override;

private:
    const Options& m_options;
    StopRequest& m_stop;
};

}  // namespace spoold

#endif
