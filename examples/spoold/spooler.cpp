#include "spooler.h"

#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace.h>

#include <algorithm>
#include <iterator>
#include <shared_mutex>

#include "examine.h"
#include "report.h"
#include "text.h"

namespace spoold {

Spooler::Spooler(Spool& spool, const kit::StopRequest& stop) : m_spool(spool), m_stop(stop) {}

void Spooler::Recover() {
    QUOR_TRACE_FNC();
    const std::vector<std::string> names = m_spool.Taken();
    if (!names.empty()) {
        quor::Log::GetInstance().Warning("Taken by an earlier run and not finished: " +
                                         std::to_string(names.size()));
    }
    for (const std::string& name : names) {
        if (m_stop.IsRequested()) {
            return;
        }
        Process(name);
    }
}

// A name may be listed again while a worker has it in hand; the worker that takes it then finds it
// gone.
void Spooler::Scan() {
    QUOR_TRACE_FNC();
    m_statistics.NextPass();
    m_shortage = false;
    std::vector<std::string> names;
    TryTwice([this, &names] { names = m_spool.Waiting(); });
    QUOR_TRACE(quor::Medium, "Scan: " << names.size() << " waiting");
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_listed.assign(names.begin(), names.end());
    std::set<std::string> stillThere;
    std::set_intersection(m_refused.begin(), m_refused.end(), names.begin(), names.end(),
                          std::inserter(stillThere, stillThere.end()));
    m_refused.swap(stillThere);
    if (!m_listed.empty()) {
        m_condition.notify_all();
    }
}

bool Spooler::AwaitListed() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait(lock, [this] { return m_closed || !m_listed.empty(); });
    return !m_closed && !m_stop.IsRequested();
}

void Spooler::Close() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_closed = true;
    m_condition.notify_all();
}

bool Spooler::ProcessNext() {
    const std::string name = m_stop.IsRequested() ? std::string() : NextListed();
    if (name.empty()) {
        return false;
    }
    const std::string taken = Take(name);
    if (!taken.empty()) {
        Process(taken);
    }
    return true;
}

void Spooler::Drain() {
    QUOR_TRACE_FNC();
    std::size_t listed = 0;
    do {
        Scan();
        listed = 0;
        while (ProcessNext()) {
            ++listed;
        }
    } while (listed > Refused());
}

std::size_t Spooler::Refused() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_refused.size();
}

std::string Spooler::Summary() const {
    return m_statistics.Text() + ", could not be taken: " + std::to_string(Refused());
}

// Empty when there is none.
std::string Spooler::NextListed() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string name;
    if (!m_listed.empty()) {
        name.swap(m_listed.front());
        m_listed.pop_front();
    }
    return name;
}

// The name from now on; empty when the file is gone, or could not be taken.
std::string Spooler::Take(const std::string& name) {
    try {
        std::string taken = m_spool.Take(name);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_refused.erase(name);
        return taken;
    } catch (const quor::Exception& error) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_refused.insert(name).second) {
            quor::Log::GetInstance().Error(error.what());
        }
        return {};
    }
}

void Spooler::Process(const std::string& name) {
    QUOR_TRACE_FNC();
    bool done = false;
    TryTwice([this, &name, &done] { done = m_spool.HasReport(name) || Report(name); });
    if (done) {
        m_spool.Finish(name);
        m_statistics.FileDone();
    } else {
        m_spool.Fail(name);
        m_statistics.FileFailed();
    }
}

// A shortage may be of our own making, with as many files open as there are workers. So the second
// try waits until no other has one open, and with the log's file there is then room for ours.
void Spooler::TryTwice(const std::function<void()>& step) {
    std::string shortage;
    try {
        const std::shared_lock<std::shared_mutex> withOthers(m_opening);
        step();
        return;
    } catch (const Shortage& error) {
        shortage = error.what();
    }
    const std::unique_lock<std::shared_mutex> alone(m_opening);
    if (!m_shortage.exchange(true)) {
        quor::Log::GetInstance().Warning(shortage + "; the file is kept and tried again");
    }
    step();
}

// False when the file cannot be read.
bool Spooler::Report(const std::string& name) {
    std::string text;
    try {
        text = ReportText(name, Examine(m_spool.WorkPath(name)));
    } catch (const quor::Exception& error) {
        quor::Log::GetInstance().Error(std::string(error.what()) + "; it goes to failed/");
        return false;
    }
    WriteReport(m_spool.GrowingReportPath(name), m_spool.ReportPath(name), text);
    return true;
}

}  // namespace spoold
