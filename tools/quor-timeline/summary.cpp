#include "output.h"
#include "sinks.h"
#include "tables.h"

namespace timeline {
namespace {

class Summary : public Sink {
public:
    Summary(Output& output, const Style& style)
        : m_output(output), m_style(style), m_names(style.m_name), m_swallowed(style.m_name) {}

    void Enter(const Thread& thread, const Call& call) override { m_stuck.Enter(thread, call); }
    void Leave(const Thread& thread, const Call& call) override {
        m_stuck.Leave(thread, call);
        m_slow.Leave(thread, call);
    }
    void Tell(const Thread& thread, const Message& message) override {
        m_stuck.Tell(thread, message);
        m_swallowed.Tell(message);
    }
    void EndRun(const Run& run) override {
        m_output << RunText(run) << "\n";
        m_stuck.EndRun(run, m_output, m_names);
        m_swallowed.EndRun(run, m_output);
        m_slow.EndRun(run, m_style, m_output, m_names);
    }

private:
    Output& m_output;
    const Style m_style;
    Made m_names;
    StuckTable m_stuck;
    SlowTable m_slow;
    SwallowedTable m_swallowed;
};

}  // namespace

std::unique_ptr<Sink> MakeSummary(Output& output, const Style& style) {
    return std::make_unique<Summary>(output, style);
}

}  // namespace timeline
