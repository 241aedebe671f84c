#ifndef SPOOLD_WATCH_H
#define SPOOLD_WATCH_H

#include <string>

#include "file.h"

namespace spoold {

/// Wakes the scan when a file is dropped, or when it is to end.
///
/// Build it before the first scan: a drop that comes during a scan ends the next Wait() at once,
/// and so does a Wake(). Wait() is for one thread, Wake() for any. Throws quor::Exception.
class Watch {
public:
    explicit Watch(const std::string& folder);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Sleeps until there may be something to take, or Wake() was called.
    void Wait() const;
    void Wake() const;

private:
    const File m_drops;
    const File m_wakes;
};

}  // namespace spoold

#endif
