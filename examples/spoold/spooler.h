#ifndef SPOOLD_SPOOLER_H
#define SPOOLD_SPOOLER_H

#include <kit.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <string>
#include <vector>

#include "spool.h"
#include "statistics.h"

namespace spoold {

/// Takes what was dropped, file by file, and sees each to its end.
///
/// What is wrong with a file goes to the log, and the program goes on. What is wrong with the spool
/// (a full disk, a room that is gone) is thrown as quor::Exception, and what the process lacks as
/// Shortage, once a second try with no other file open has failed as well. Both are to end the
/// program; the file in hand waits in work/ for the next start. Any thread.
class Spooler {
public:
    /// Both must outlive the spooler. No file is begun once `stop` is requested.
    Spooler(Spool& spool, const kit::StopRequest& stop);
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;

    /// Finishes what an earlier run had taken. Before any ProcessNext().
    void Recover();
    /// Begins a pass: lists the files that wait now, and wakes AwaitListed().
    void Scan();
    /// Sleeps until a file is listed. Returns false when the program is to stop.
    bool AwaitListed();
    /// Ends every AwaitListed(), once the stop is requested.
    void Close();
    /// Takes and finishes one listed file; false when there is none, or the program is to stop.
    bool ProcessNext();
    /// Scans and processes until nothing can be taken any more.
    void Drain();

    /// Files that were listed last and could not be taken.
    std::size_t Refused() const;
    /// Statistics and the files that were refused, for the log.
    std::string Summary() const;

private:
    std::string NextListed();
    std::string Take(const std::string& name);
    void Process(const std::string& name);
    void TryTwice(const std::function<void()>& step);
    bool Report(const std::string& name);

    Spool& m_spool;
    const kit::StopRequest& m_stop;
    Statistics m_statistics;
    std::shared_mutex m_opening;          // shared by those that may have files open
    std::atomic<bool> m_shortage{false};  // logged once in a pass
    mutable std::mutex m_mutex;           // guards the rest
    std::condition_variable m_condition;
    bool m_closed = false;
    std::deque<std::string> m_listed;
    std::set<std::string> m_refused;  // logged once, tried at every scan
};

}  // namespace spoold

#endif
