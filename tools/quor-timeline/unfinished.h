#ifndef QUOR_TIMELINE_UNFINISHED_H
#define QUOR_TIMELINE_UNFINISHED_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace timeline {

/// Finds in the library's own messages what had not come to its end when a run ended: workers that
/// were asked to stop and were not destroyed, waits that were given up, and those of a
/// ThreadController or a Synchronizer that are the last thing their threads tell of. Such a thread
/// may have gone on without a word.
class Unfinished {
public:
    void Take(std::int64_t thread, std::int64_t time, std::string_view text);
    /// The thread said something else.
    void GoOn(std::int64_t thread);
    void EndRun();

    /// One line each, in the order of runs.
    const std::vector<std::string>& Findings() const { return m_findings; }

private:
    struct Wait {
        std::int64_t m_since;
        std::string m_what;
        bool m_isPaused;  // an iteration has ended: what it waits for may have come
    };

    void TakeWorker(std::int64_t time, std::string_view text);
    void TakeWait(std::int64_t thread, std::int64_t time, const std::string& what);
    void Pause(std::int64_t thread);
    void AddFinding(std::int64_t time, const std::string& text);

    std::map<std::string, std::int64_t> m_stopping;  // workers, since when
    std::map<std::int64_t, Wait> m_waiting;
    std::vector<std::string> m_findings;
};

}  // namespace timeline

#endif
