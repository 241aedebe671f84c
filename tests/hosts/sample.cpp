// sample FOLDER [files]: leaves sample.trace and sample.log in the folder, through the library
// alone: one of each thing that readers of the two meet, in the same order per thread every time.
// With "files", lines of the trace name their source files.
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/synchronizer.h>
#include <quor/thread_controller.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>

#include <semaphore.h>

#include <future>
#include <memory>
#include <string>

void Check(int number) {
    QUOR_TRACE_FNC();
    QUOR_TRACE(quor::Low, "checked " << number);
}

void Read(int number) {
    QUOR_TRACE_FNC();
    for (int part = 0; part < 2; ++part) Check(number);
    QUOR_TRACE(quor::Detail, "parts:\n| first of " << number << "\n|\n| second");
}

void Fail(const std::string& name) {
    QUOR_TRACE_FNC();
    throw quor::Exception("cannot open " + name, true);
}

// Each worker reads, says so at the barrier, and waits for its end.
class Reader : public quor::WorkerThread {
public:
    Reader(const std::string& name, quor::Synchronizer& barrier, std::shared_future<void> end)
        : WorkerThread(name), m_name(name), m_barrier(barrier), m_end(std::move(end)) {}
    std::promise<void> m_done;

protected:
    void Main() override {
        QUOR_TRACE(quor::Low, "at work: " << m_name);
        Read(m_name == "scan" ? 1 : 2);
        m_barrier.Decrement();
        m_done.set_value();
        if (m_name == "stuck") {
            m_end.wait();  // does not look for the request
        } else {
            while (!StopRequested()) TimedWait(0, 1'000'000);
            throw quor::Exception("nothing left to read", true);  // ends with STOPPED
        }
    }

private:
    const std::string m_name;
    quor::Synchronizer& m_barrier;
    const std::shared_future<void> m_end;
};

class Pool : public quor::WorkerPool {
public:
    Pool(quor::Synchronizer& barrier, std::shared_future<void> end)
        : m_barrier(barrier), m_end(std::move(end)) {}
    void Run(const std::string& name) {
        Reader& reader = static_cast<Reader&>(*GetWorker(name));
        reader.Start();
        reader.m_done.get_future().wait();
    }

protected:
    quor::WorkerThread* CreateWorker(const std::string& name) override {
        return new Reader(name, m_barrier, m_end);
    }

private:
    quor::Synchronizer& m_barrier;
    const std::shared_future<void> m_end;
};

// Posts when the thread that made it ends, behind the last line of that thread.
struct AtThreadEnd {
    static inline sem_t s_ended;
    ~AtThreadEnd() { sem_post(&s_ended); }
};

// One pass of a loop that is stopped while it waits.
void Control() {
    QUOR_TRACE_FNC();
    cStopSleepPeriodMs = 10'000;  // one cancellation, which is kept
    sem_init(&AtThreadEnd::s_ended, 0, 0);
    const auto cancelled = std::make_shared<std::promise<void>>();
    quor::ThreadController controller(
        "rescan",
        [cancelled] {
            static thread_local const AtThreadEnd end;
            QUOR_TRACE(quor::High, "rescan waits");
            cancelled->get_future().wait();
        },
        [cancelled] { cancelled->set_value(); });
    controller.Start();
    controller.Stop();
    sem_wait(&AtThreadEnd::s_ended);
}

void Lower() {
    QUOR_TRACE_FNC();
    quor::TraceFile::GetInstance().SetLevel(quor::Low);
    const quor::Exception swallowed("of no importance", true);  // with its place, not its stack
}

void Raise() {
    QUOR_TRACE_FNC();  // of this call the trace has the exit alone
    quor::TraceFile::GetInstance().SetLevel(quor::Detail);
}

void Rest() {
    QUOR_TRACE_FNC();
    quor::TraceFile::GetInstance().Pause();
    Check(3);  // not seen
    quor::TraceFile::GetInstance().Continue();
}

int main(int count, char** arguments) {
    quor::VerInfo::Init(1, 4, 27, 903, "sample", "", "", "", "");
    const std::string folder = arguments[1];
    quor::Log& log = quor::Log::GetInstance();
    quor::TraceFile& trace = quor::TraceFile::GetInstance();
    quor::Log::Init(folder + "/sample.log");
    quor::TraceFile::Init("sample.trace", folder);
    trace.SetPrintFile(count > 2);
    trace.SetLevel(quor::Detail);
    log.Info("Started");
    Read(0);

    quor::Synchronizer barrier(2, 10, 1000);
    std::promise<void> end;
    Pool pool(barrier, end.get_future().share());
    pool.Run("scan");
    pool.Run("stuck");
    log.Info(barrier.Wait() ? "Both have read" : "Somebody is late");
    Control();
    try {
        Fail("no-such-file");
    } catch (const quor::Exception& exception) {
        log.Error(exception.what());
    }
    Lower();
    log.Warning("Two lines:\n| this is the second");
    Raise();
    Rest();
    log.Critical("The disk is full");

    pool.Terminate("scan");
    pool.GetWorker("stuck")->Stop();
    trace.Stop();  // before the other one goes
    end.set_value();
    pool.TerminateAll();
}
