#include <kit.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <stdexcept>

// Ends the program when it fails.
class Drain : public quor::WorkerThread {
public:
    Drain(const std::string& name, kit::StopRequest& stop)
        : WorkerThread(name), m_label(name), m_stop(stop) {}

protected:
    void Main() override {
        kit::Guard(m_label, m_stop, [this] {
            QUOR_TRACE(quor::Low, "at work: " << m_label);  // tells its thread id
            while (!StopRequested()) {
                Work();
                TimedWait(0, 50'000'000);  // a slice: a Stop() that came before it costs 50 ms
            }
        });
    }

private:
    static void Work() { throw std::runtime_error("the spool is gone"); }

    const std::string m_label;
    kit::StopRequest& m_stop;
};

// Starts again when it fails.
class Feed : public quor::WorkerThread {
public:
    Feed(const std::string& name, kit::Bell& fed) : WorkerThread(name), m_fed(fed) {}

protected:
    void Main() override {
        while (!StopRequested()) {
            try {
                Work();
                return;
            } catch (const std::exception& error) {
                quor::Log::GetInstance().Error(std::string("feed: ") + error.what());
                TimedWait(0, 50'000'000);  // not at once, and not for ever after a Stop()
            }
        }
    }

private:
    void Work() {
        if (++m_tries == 1) throw std::runtime_error("the peer hung up; connecting again");
        m_fed.Ring();
    }

    int m_tries = 0;
    kit::Bell& m_fed;
};

int main() {
    quor::Log::Init("workers.log");
    quor::TraceFile::Init("workers.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    kit::StopRequest stop;
    kit::Bell fed;
    kit::Pool pool([&](const std::string& name) -> quor::WorkerThread* {
        if (name == "feed") return new Feed(name, fed);
        return new Drain(name, stop);
    });
    pool.GetWorker("feed")->Start();
    fed.Await();
    pool.GetWorker("drain")->Start();
    stop.Await();
}  // the pool stops, joins and deletes both
