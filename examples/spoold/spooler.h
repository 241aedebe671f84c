#ifndef SPOOLD_SPOOLER_H
#define SPOOLD_SPOOLER_H

#include <set>
#include <string>

#include "spool.h"
#include "watch.h"

namespace spoold {

/// Takes what was dropped, file by file, and sees each to its end.
///
/// What is wrong with a file goes to the log, and the program goes on. What is wrong with the spool
/// (a full disk, a room that is gone) is thrown as quor::Exception and ends the program; the file
/// in hand waits in work/ for the next start.
class Spooler {
public:
    /// Both must outlive the spooler.
    Spooler(const Spool& spool, const Watch& watch);
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;

    /// Finishes what an earlier run had taken.
    void Recover();
    /// Takes and finishes files until none waits or the program is to stop.
    void Drain();

    /// Files that the last scan could not take.
    std::size_t Refused() const { return m_refused.size(); }
    /// How many files came to which end, for the log.
    std::string Summary() const;

private:
    bool TakeAll();
    bool TakeOne(const std::string& name, std::set<std::string>& refused);
    void Process(const std::string& name);
    bool Report(const std::string& name);

    const Spool& m_spool;
    const Watch& m_watch;
    std::set<std::string> m_refused;  // logged once, tried at every scan
    unsigned long m_done = 0;
    unsigned long m_failed = 0;
};

}  // namespace spoold

#endif
