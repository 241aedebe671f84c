#ifndef SPOOLD_WATCH_H
#define SPOOLD_WATCH_H

#include <string>

#include "file.h"

namespace spoold {

/// Wakes the program when a file is dropped or when it is to stop: SIGINT and SIGTERM, which are
/// blocked from here on and only read where the program is ready to end.
///
/// Build it before the first scan and before any thread. A drop that comes during a scan ends the
/// next Wait() at once. Throws quor::Exception.
class Watch {
public:
    explicit Watch(const std::string& folder);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Sleeps until there may be something to take, or the program is to stop.
    void Wait() const;
    bool StopRequested() const;

private:
    const File m_signals;
    const File m_drops;
};

}  // namespace spoold

#endif
