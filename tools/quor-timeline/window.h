#ifndef QUOR_TIMELINE_WINDOW_H
#define QUOR_TIMELINE_WINDOW_H

#include <map>
#include <string>
#include <vector>

#include "sinks.h"

namespace timeline {

/// Lets through what passes between two moments; calls that reach beyond them are cut off there.
///
/// Each moment is a time of day, "15:53:46.5", or has a date in front, "2026-01-31 15:53:46". A
/// time of day is the first such moment of the trace. Either may be empty.
class Window : public Sink {
public:
    /// `sink` must outlive the object. Throws std::invalid_argument.
    Window(Sink& sink, const std::string& from, const std::string& to);

    void Run(const Process& process) override;
    void Enter(std::int64_t thread, const Call& call) override;
    void Leave(std::int64_t thread, const Call& call) override;
    void Thrown(std::int64_t thread, std::int64_t time, std::string_view place) override;
    void Record(std::int64_t thread, std::int64_t time, std::string_view text) override;
    void EndRun() override;
    void Finish() override { m_sink.Finish(); }

private:
    struct Frame {
        Call m_call;
        bool m_isShown;
    };
    using Stack = std::vector<Frame>;

    void Begin(std::int64_t time);
    bool IsWithin(std::int64_t time);
    void Show(std::int64_t thread, Stack& stack);

    Sink& m_sink;
    std::int64_t m_from;
    std::int64_t m_to;
    bool m_isFixed = false;  // times of day have become moments
    std::map<std::int64_t, Stack> m_stacks;
};

}  // namespace timeline

#endif
