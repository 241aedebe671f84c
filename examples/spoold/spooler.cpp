#include "spooler.h"

#include <quor/exception.h>
#include <quor/log.h>
#include <quor/trace.h>

#include <vector>

#include "examine.h"
#include "report.h"
#include "text.h"

namespace spoold {
Spooler::Spooler(const Spool& spool, const Watch& watch) : m_spool(spool), m_watch(watch) {}

void Spooler::Recover() {
    QUOR_TRACE_FNC();
    const std::vector<std::string> names = m_spool.Taken();
    if (!names.empty()) {
        quor::Log::GetInstance().Warning("Taken by an earlier run and not finished: " +
                                         std::to_string(names.size()));
    }
    for (const std::string& name : names) {
        if (m_watch.StopRequested()) {
            return;
        }
        Process(name);
    }
}

void Spooler::Drain() {
    QUOR_TRACE_FNC();
    while (TakeAll()) {
    }
}

std::string Spooler::Summary() const {
    return "done: " + std::to_string(m_done) + ", failed: " + std::to_string(m_failed) +
           ", could not be taken: " + std::to_string(m_refused.size());
}

// True when anything was taken: more may have been dropped meanwhile.
bool Spooler::TakeAll() {
    const std::vector<std::string> names = m_spool.Waiting();
    QUOR_TRACE(quor::Medium, "Scan: " << names.size() << " waiting");
    std::set<std::string> refused;
    bool anyTaken = false;
    for (const std::string& name : names) {
        if (m_watch.StopRequested()) {
            return false;
        }
        anyTaken = TakeOne(name, refused) || anyTaken;
    }
    m_refused = refused;
    return anyTaken;
}

// False when there was nothing to take, or it could not be taken.
bool Spooler::TakeOne(const std::string& name, std::set<std::string>& refused) {
    std::string taken;
    try {
        taken = m_spool.Take(name);
    } catch (const quor::Exception& error) {
        refused.insert(name);
        if (m_refused.count(name) == 0) {
            quor::Log::GetInstance().Error(error.what());
        }
    }
    if (taken.empty()) {
        return false;
    }
    Process(taken);
    return true;
}

void Spooler::Process(const std::string& name) {
    QUOR_TRACE_FNC();
    if (m_spool.HasReport(name) || Report(name)) {
        m_spool.Finish(name);
        ++m_done;
    } else {
        m_spool.Fail(name);
        ++m_failed;
    }
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
