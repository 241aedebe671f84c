#ifndef SPOOLD_STATISTICS_H
#define SPOOLD_STATISTICS_H

#include <quor/stop_watch.h>

#include <mutex>
#include <string>

namespace spoold {

/// Times the passes of the scan loop and counts how files ended. Any thread.
class Statistics {
public:
    Statistics() = default;
    Statistics(const Statistics&) = delete;
    Statistics& operator=(const Statistics&) = delete;

    /// A pass begins, and the one before has ended.
    void NextPass();
    void FileDone();
    void FileFailed();

    /// All of it up to now, the pass under way included, on one line; passes last until the next
    /// one, so most of it is waiting.
    std::string Text() const;

private:
    mutable std::mutex m_mutex;  // guards the rest
    quor::StopWatch m_passes;
    unsigned long long m_done = 0;
    unsigned long long m_failed = 0;
};

}  // namespace spoold

#endif
