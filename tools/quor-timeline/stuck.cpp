#include <algorithm>
#include <tuple>

#include "line.h"
#include "tables.h"
#include "text.h"

namespace timeline {
namespace {

// The library's own functions wait for work; the program's are what does not come back.
bool IsAtRest(const Call& innermost) {
    return innermost.m_function->m_text.find("quor::") != std::string::npos;
}

class Stuck : public Sink {
public:
    Stuck(Output& output, const Style& style) : m_output(output), m_names(style.m_name) {}

    void Enter(const Thread& thread, const Call& call) override { m_table.Enter(thread, call); }
    void Leave(const Thread& thread, const Call& call) override { m_table.Leave(thread, call); }
    void Tell(const Thread& thread, const Message& message) override {
        m_table.Tell(thread, message);
    }
    void EndRun(const Run& run) override {
        m_output << RunText(run) << "\n";
        if (!m_table.EndRun(run, m_output, m_names)) {
            m_output << "Nothing is unfinished\n";
        }
    }

private:
    Output& m_output;
    Made m_names;
    StuckTable m_table;
};

}  // namespace

void StuckTable::Enter(const Thread& thread, const Call& call) {
    Open& open = m_threads[thread];
    open.m_last = call.m_begin;
    open.m_calls.clear();
    m_waits.Enter(thread, call);
}

void StuckTable::Leave(const Thread& thread, const Call& call) {
    m_waits.Leave(thread, call);
    Open& open = m_threads[thread];
    if (call.m_ending == Call::eRunEnded || call.m_ending == Call::eWindowEnded) {
        open.m_thread = thread;
        open.m_calls.push_back(call);
    } else {
        open.m_last = call.m_end;
    }
}

void StuckTable::Tell(const Thread& thread, const Message& message) {
    m_threads[thread].m_last = message.m_moment;
    m_waits.Tell(thread, message);
}

bool StuckTable::EndRun(const Run& run, Output& output, Made& names) {
    bool isEmpty = true;
    for (const Waits::Finding& finding : m_waits.EndRun()) {
        output << (isEmpty ? "Stuck\n" : "") << "  " << finding.m_text << "; since "
               << WhenText(finding.m_since, run) << ", "
               << DurationText(run.m_end.m_elapsed - finding.m_since.m_elapsed) << "\n";
        isEmpty = false;
        for (Open& open : m_threads) {
            if (open.m_thread.m_id == finding.m_thread) {
                WriteStack(open, run, output, names);
                open.m_calls.clear();
            }
        }
    }
    for (Open* const open : Sorted(run)) {
        output << (isEmpty ? "Stuck\n" : "") << "  thread " << open->m_thread.m_id
               << (open->m_thread.m_worker.empty() ? "" : ", worker ")
               << Printable(open->m_thread.m_worker) << ", silent since "
               << WhenText(open->m_last, run) << ", "
               << DurationText(run.m_end.m_elapsed - open->m_last.m_elapsed) << "\n";
        isEmpty = false;
        WriteStack(*open, run, output, names);
    }
    m_threads.Clear();
    return !isEmpty;
}

// The thread that is silent for the longest time first; but behind the others those that wait for
// work, and last the main thread, which waits for all of them.
std::vector<StuckTable::Open*> StuckTable::Sorted(const Run& run) {
    std::vector<Open*> sorted;
    for (Open& open : m_threads) {
        if (!open.m_calls.empty()) {
            sorted.push_back(&open);
        }
    }
    const auto key = [&run](const Open& open) {
        return std::make_tuple(open.m_thread.m_id == run.m_process, IsAtRest(open.m_calls.front()),
                               open.m_last.m_elapsed, open.m_thread.m_id);
    };
    std::sort(sorted.begin(), sorted.end(),
              [&key](const Open* left, const Open* right) { return key(*left) < key(*right); });
    return sorted;
}

void StuckTable::WriteStack(const Open& open, const Run& run, Output& output, Made& names) const {
    for (auto call = open.m_calls.rbegin(); call != open.m_calls.rend(); ++call) {
        output << "    " << WhenText(call->m_begin, run) << " "
               << Right(DurationText(run.m_end.m_elapsed - call->m_begin.m_elapsed), 12) << "  "
               << names(call->m_function) << "  " << Printable(*call->m_position.m_file) << ":"
               << call->m_position.m_line << "\n";
    }
}

std::string RunText(const Run& run) {
    return "Run " + std::to_string(run.m_number) + ": " +
           (run.m_process == 0
                ? std::string("process unknown")
                : Printable(run.m_name) + ", process " + std::to_string(run.m_process)) +
           ", " + MomentText(run.m_begin.m_wall) + " to " + WhenText(run.m_end, run) +
           (run.m_hasTrailer ? "" : ", no trailer");
}

std::string WhenText(const Moment& moment, const Run& run) {
    return run.m_begin.m_wall / c_day == run.m_end.m_wall / c_day ? TimeOfDayText(moment.m_wall)
                                                                  : MomentText(moment.m_wall);
}

std::unique_ptr<Sink> MakeStuck(Output& output, const Style& style) {
    return std::make_unique<Stuck>(output, style);
}

}  // namespace timeline
