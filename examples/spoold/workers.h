#ifndef SPOOLD_WORKERS_H
#define SPOOLD_WORKERS_H

#include <kit.h>
#include <quor/synchronizer.h>

#include "spooler.h"

namespace spoold {

/// The threads that process files, named worker-1, worker-2 and so on.
///
/// An error that is not a file's ends the program: it goes to `stop`.
class Workers {
public:
    /// Starts none. Both must outlive the object, which ends the workers that are left.
    Workers(Spooler& spooler, kit::StopRequest& stop);

    /// Starts `count` workers and waits until all of them are at work. Throws quor::Exception when
    /// that takes more than ten seconds, std::system_error when a thread cannot be created.
    void Start(unsigned int count);
    /// Waits until the files in hand are finished. Returns false, with workers left, when that
    /// takes more than a minute; otherwise none is left.
    bool End();

private:
    Spooler& m_spooler;
    quor::Synchronizer m_starting;  // counts those that are not yet at work
    quor::Synchronizer m_working;   // counts those that have not ended
    kit::Pool m_pool;
};

}  // namespace spoold

#endif
