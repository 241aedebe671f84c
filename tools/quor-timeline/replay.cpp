#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

constexpr std::size_t c_indent = 2;       // blanks per call around
constexpr std::size_t c_deepest = 40;     // calls that are indented
constexpr std::size_t c_columnWidth = 8;  // from one thread to the next
constexpr std::size_t c_mostColumns = 16;
constexpr std::size_t c_linesPerCall = 50;  // that are kept, where only the last calls are shown

// A call that nothing happens in is one line, "Function();", so its entry waits for what follows.
class Replay : public Sink {
public:
    Replay(Output& output, const Style& style)
        : m_output(output), m_style(style), m_names(style.m_name) {}

    void BeginRun(const Run& run) override {
        m_output << "# " << (run.m_process == 0 ? "process unknown" : Printable(run.m_name)) << " "
                 << run.m_process << ", " << MomentText(run.m_begin.m_wall)
                 << "\n# when                    took  thread\n";
    }
    void Enter(const Thread& thread, const Call& call) override {
        WriteEntry();
        m_entry.emplace(Entry{thread, call});
    }
    void Leave(const Thread& thread, const Call& call) override {
        const std::string end = call.HasNoExit()                      ? " (no exit)"
                                : call.m_ending == Call::eWindowEnded ? " (goes on)"
                                                                      : "";
        const std::string& name = m_names(call.m_function);
        const char* const parentheses = m_style.m_name == FullName ? "" : "()";
        if (m_entry && m_entry->m_thread.m_id == thread.m_id) {
            m_entry.reset();
            Write(thread, call.m_begin, call.Duration(), call.m_depth,
                  name + parentheses + ";" + end, "", true);
            return;
        }
        WriteEntry();
        Write(thread, call.m_end, call.Duration(), call.m_depth, "} /* " + name + " */" + end, "");
    }
    void Tell(const Thread& thread, const Message& message) override {
        WriteEntry();
        const bool isText = message.m_kind == Message::eText || message.m_kind == Message::eLevel;
        std::string text = isText ? "" : std::string(KindName(message.m_kind)) + ": ";
        text += OneLine(message.m_text);
        if (!message.m_place.empty()) {
            text += ", in " + PlaceName(message.m_place, m_style.m_name);
        }
        const char* const color = IsSwallowed(message) ? "\033[31m"
                                  : isText             ? "\033[2m"
                                                       : "\033[33m";
        Write(thread, message.m_moment, -1, m_depths[thread.m_id], "/* " + text + " */", color);
    }
    void StepBack(const Moment& /*moment*/, std::int64_t by) override {
        WriteEntry();
        m_output << "# the clock was set back by " << DurationText(by) << "\n";
    }
    void EndRun(const Run& run) override {
        WriteEntry();
        std::map<std::int64_t, const std::string*> lines;  // by their order
        for (const auto& [thread, kept] : m_kept) {
            for (const Kept& line : kept.m_lines) {
                lines[line.m_number] = &line.m_text;
            }
        }
        for (const auto& [number, line] : lines) {
            m_output << *line;
        }
        m_kept.clear();
        m_depths.clear();
        m_columns.clear();
        m_output << "# ends " << MomentText(run.m_end.m_wall)
                 << (run.m_hasTrailer ? "\n" : ", no trailer\n");
    }

private:
    struct Entry {
        Thread m_thread;
        Call m_call;
    };
    struct Kept {
        std::int64_t m_number;
        bool m_isCall;
        std::string m_text;
    };
    struct KeptLines {
        std::deque<Kept> m_lines;
        std::size_t m_calls = 0;
    };

    void WriteEntry() {
        if (m_entry) {
            const Entry entry = *m_entry;
            m_entry.reset();
            Write(entry.m_thread, entry.m_call.m_begin, -1, entry.m_call.m_depth,
                  m_names(entry.m_call.m_function) + (m_style.m_name == FullName ? " {" : "() {"),
                  "", true);
            m_depths[entry.m_thread.m_id] = entry.m_call.m_depth + 1;
        }
    }
    void Write(const Thread& thread, const Moment& moment, std::int64_t duration, std::size_t depth,
               const std::string& text, const std::string& color, bool isCall = false) {
        std::size_t indent = std::min(depth, c_deepest) * c_indent;
        if (m_style.m_hasColumns) {
            const std::size_t next = m_columns.size();
            indent += m_columns.try_emplace(thread.m_id, next).first->second % c_mostColumns *
                      c_columnWidth;
        }
        m_depths[thread.m_id] = depth;
        const bool hasColor = m_style.m_hasColors && !color.empty();
        std::string line = TimeOfDayText(moment.m_wall) + " " +
                           Right(duration < 0 ? "" : DurationText(duration), 12) + " [" +
                           Right(std::to_string(thread.m_id), 7) + "] | " +
                           std::string(indent, ' ') + (hasColor ? color : "") + text +
                           (hasColor ? "\033[0m" : "") + "\n";
        if (m_style.m_last == 0) {
            m_output << line;
            return;
        }
        KeptLines& kept = m_kept[thread.m_id];
        kept.m_lines.push_back({m_number++, isCall, std::move(line)});
        kept.m_calls += isCall ? 1 : 0;
        while (kept.m_calls > m_style.m_last ||
               kept.m_lines.size() > c_linesPerCall * m_style.m_last) {
            kept.m_calls -= kept.m_lines.front().m_isCall ? 1 : 0;
            kept.m_lines.pop_front();
        }
    }

    Output& m_output;
    const Style m_style;
    Made m_names;
    std::optional<Entry> m_entry;
    std::map<std::int64_t, std::size_t> m_depths;
    std::map<std::int64_t, std::size_t> m_columns;
    std::map<std::int64_t, KeptLines> m_kept;
    std::int64_t m_number = 0;
};

}  // namespace

std::unique_ptr<Sink> MakeReplay(Output& output, const Style& style) {
    return std::make_unique<Replay>(output, style);
}

}  // namespace timeline
