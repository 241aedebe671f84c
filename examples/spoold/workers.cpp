#include "workers.h"

#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/worker_thread.h>

#include <exception>
#include <string>

namespace spoold {
namespace {

// An idle worker looks for work once per slice; Stop() ends a slice early.
constexpr unsigned long c_sliceNs = 50'000'000;
constexpr unsigned int c_readyIterations = 10;
constexpr unsigned int c_readyTimeoutMs = 1000;

}  // namespace

class Worker : public quor::WorkerThread {
public:
    Worker(const std::string& name, Spooler& spooler, StopRequest& stop, quor::Synchronizer& ready)
        : WorkerThread(name), m_label(name), m_spooler(spooler), m_stop(stop), m_ready(ready) {}

protected:
    void Main() override {
        QUOR_TRACE(quor::Low, "At work: " << m_label);  // shows which thread it is
        m_ready.Decrement();
        try {
            while (!StopRequested()) {
                if (!m_spooler.ProcessNext()) {
                    TimedWait(0, c_sliceNs);
                }
            }
        } catch (const std::exception& error) {
            m_stop.Fail(error.what());
            throw;  // the library traces it with the worker's name
        }
    }

private:
    const std::string m_label;
    Spooler& m_spooler;
    StopRequest& m_stop;
    quor::Synchronizer& m_ready;
};

Workers::Workers(Spooler& spooler, StopRequest& stop)
    : m_spooler(spooler), m_stop(stop), m_ready(0, c_readyIterations, c_readyTimeoutMs) {}

void Workers::Start(unsigned int count) {
    QUOR_TRACE_FNC();
    m_ready.Reset(count);
    for (unsigned int number = 1; number <= count; ++number) {
        GetWorker("worker-" + std::to_string(number))->Start();
    }
    if (!m_ready.Wait()) {
        throw quor::Exception("The workers did not get ready", true);
    }
}

quor::WorkerThread* Workers::CreateWorker(const std::string& name) {
    return new Worker(name, m_spooler, m_stop, m_ready);
}

}  // namespace spoold
