#ifndef SPOOLD_WORKERS_H
#define SPOOLD_WORKERS_H

#include <quor/synchronizer.h>
#include <quor/worker_pool.h>

#include <string>

#include "spooler.h"
#include "stop_request.h"

namespace spoold {

/// The threads that process files, named worker-1, worker-2 and so on.
///
/// What one of them cannot bear ends the program: it goes to `stop`.
class Workers : public quor::WorkerPool {
public:
    /// Starts none. All must outlive the pool.
    Workers(Spooler& spooler, StopRequest& stop);

    /// Starts `count` workers and waits until all of them are at work. Throws quor::Exception when
    /// that takes more than ten seconds, std::system_error when a thread cannot be created.
    void Start(unsigned int count);

private:
    quor::WorkerThread* CreateWorker(const std::string& name) override;

    Spooler& m_spooler;
    StopRequest& m_stop;
    quor::Synchronizer m_ready;  // counts those that are not yet at work
};

}  // namespace spoold

#endif
