#ifndef QUOR_TIMELINE_WINDOW_H
#define QUOR_TIMELINE_WINDOW_H

#include <string>
#include <vector>

#include "sinks.h"

namespace timeline {

/// What of a trace passes a Window.
struct Limits {
    /// Moments of the wall clock: a time of day, "15:53:46.5", which is the first such moment of
    /// the trace, or with a date in front, "2026-01-31 15:53:46". Empty: no limit.
    std::string m_from;
    std::string m_to;
    int m_run = 0;                // its number; 0: all
    std::int64_t m_shortest = 0;  // nanoseconds
};

/// Lets through what passes between two moments, in one run, and calls that last long enough.
///
/// Calls that reach beyond the moments are cut off there. The time of a call that is too short is
/// its caller's; one in which a message was told is shown nevertheless.
class Window : public Sink {
public:
    /// `sink` must outlive the object. Throws std::invalid_argument.
    Window(Sink& sink, const Limits& limits);

    void BeginRun(const Run& run) override;
    void Enter(const Thread& thread, const Call& call) override;
    void Leave(const Thread& thread, const Call& call) override;
    void Tell(const Thread& thread, const Message& message) override;
    void StepBack(const Moment& moment, std::int64_t by) override;
    void Count(Fault_e fault, const Moment& moment) override;
    void EndRun(const Run& run) override;
    void Finish() override { m_sink.Finish(); }

private:
    struct Frame {
        Call m_call;
        bool m_isShown;
    };
    struct Stack {
        const Thread* m_thread = nullptr;
        std::vector<Frame> m_frames;
    };

    void MoveTo(const Moment& now);
    bool IsWithin(std::int64_t wall) const { return m_from <= wall && wall <= m_to; }
    void Open(const Moment& begin);
    void Close(const Moment& end);
    void Show(Stack& stack);
    void Hide(Stack& stack, const Moment& end, Call::Ending_e ending, std::size_t cutDepth);

    Sink& m_sink;
    const Limits m_limits;
    std::int64_t m_from;
    std::int64_t m_to;
    bool m_isFixed = false;  // times of day have become moments
    bool m_isInRun = false;
    bool m_isOpen = false;
    Moment m_begin;  // of what is looked at now
    Moment m_end;    // of what was looked at last
    Moment m_last;
    ByThread<Stack> m_stacks;
};

}  // namespace timeline

#endif
