#include "workers.h"

#include <quor/exception.h>
#include <quor/trace.h>
#include <quor/worker_thread.h>

#include <chrono>
#include <string>

namespace spoold {
namespace {

using std::chrono::seconds;

constexpr seconds c_startTime(10);
constexpr seconds c_stopTime(60);
constexpr unsigned int c_iterations = 10;
constexpr unsigned int c_iterationMs = 100;

// A single Wait() may end without a reason, and counts by a clock that an operator may set.
bool AwaitZero(quor::Synchronizer& counter, seconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!counter.Wait()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
    }
    return true;
}

}  // namespace

class Worker : public quor::WorkerThread {
public:
    Worker(const std::string& name, Spooler& spooler, kit::StopRequest& stop,
           quor::Synchronizer& starting, quor::Synchronizer& working)
        : WorkerThread(name),
          m_label(name),
          m_spooler(spooler),
          m_stop(stop),
          m_starting(starting),
          m_working(working) {}

protected:
    void Main() override {
        const Leaving leaving{m_working};
        QUOR_TRACE(quor::Low, "At work: " << m_label);  // shows which thread it is
        m_starting.Decrement();
        kit::Guard(m_label, m_stop, [this] {
            while (m_spooler.AwaitListed()) {
                m_spooler.ProcessNext();
            }
        });
    }

private:
    struct Leaving {
        quor::Synchronizer& m_working;
        ~Leaving() { m_working.Decrement(); }
    };

    const std::string m_label;
    Spooler& m_spooler;
    kit::StopRequest& m_stop;
    quor::Synchronizer& m_starting;
    quor::Synchronizer& m_working;
};

Workers::Workers(Spooler& spooler, kit::StopRequest& stop)
    : m_spooler(spooler),
      m_starting(0, c_iterations, c_iterationMs),
      m_working(0, c_iterations, c_iterationMs),
      m_pool(
          [this, &stop](const std::string& name) {
              return new Worker(name, m_spooler, stop, m_starting, m_working);
          },
          [&spooler] { spooler.Close(); }) {}

void Workers::Start(unsigned int count) {
    QUOR_TRACE_FNC();
    m_starting.Reset(count);
    for (unsigned int number = 1; number <= count; ++number) {
        quor::WorkerThread* const worker = m_pool.GetWorker("worker-" + std::to_string(number));
        m_working.Increment();
        try {
            worker->Start();
        } catch (...) {
            m_working.Decrement();
            throw;
        }
    }
    if (!AwaitZero(m_starting, c_startTime)) {
        throw quor::Exception("The workers did not get ready", true);
    }
}

bool Workers::End() {
    m_spooler.Close();
    if (!AwaitZero(m_working, c_stopTime)) {
        return false;
    }
    m_pool.End();
    return true;
}

}  // namespace spoold
