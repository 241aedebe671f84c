#include <cstdlib>

#include "line.h"
#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

class Chrome : public Sink {
public:
    Chrome(Output& output, const Style& style)
        : m_output(output),
          m_name([name = style.m_name](std::string_view text) { return Quoted(name(text)); }),
          m_nameWithoutExit([name = style.m_name](std::string_view text) {
              return Quoted(name(text) + " (no exit)");
          }),
          m_functionName(style.m_name) {
        m_output << "{\"traceEvents\":[";
    }

    void BeginRun(const Run& run) override {
        m_process = run.m_process;
        m_threads.Clear();
        // Times are counted from the first midnight: readers take one for a double, which has
        // nanoseconds for a hundred days.
        if (m_begin.m_elapsed == 0) {
            const std::int64_t sinceMidnight = run.m_begin.m_wall % c_day;
            m_begin = {run.m_begin.m_wall - sinceMidnight, run.m_begin.m_elapsed - sinceMidnight};
        }
    }
    void Leave(const Thread& thread, const Call& call) override {
        Begin("X", thread, call.m_begin);
        m_output << ",\"dur\":";
        WriteMicroseconds(call.Duration());
        m_output << ",\"name\":" << (call.HasNoExit() ? m_nameWithoutExit : m_name)(call.m_function)
                 << "}";
    }
    void Tell(const Thread& thread, const Message& message) override {
        if (message.m_kind == Message::eText) {
            return;
        }
        std::string text = message.m_kind == Message::eLevel
                               ? std::string(message.m_text)
                               : std::string(KindName(message.m_kind)) + ": ";
        text += message.m_kind == Message::eLevel ? "" : message.m_text;
        if (!message.m_place.empty()) {
            text += ", in " + PlaceName(message.m_place, m_functionName);
        }
        WriteInstant(thread, message.m_moment, text);
    }
    void StepBack(const Moment& moment, std::int64_t by) override {
        m_output << m_separator << "\n{\"ph\":\"i" << HeadText(Thread()) << ",\"ts\":";
        WriteMicroseconds(moment.m_elapsed - m_begin.m_elapsed);
        m_output << ",\"s\":\"p\",\"name\":"
                 << Quoted("the clock was set back by " + DurationText(by)) << "}";
        m_separator = ",";
    }
    void EndRun(const Run& run) override {
        WriteName("process_name", Thread(), run.m_name.empty() ? "process unknown" : run.m_name);
        for (const Seen& seen : m_threads) {
            if (seen.m_head.empty()) {
                continue;
            }
            const bool isMain = seen.m_thread.m_id == run.m_process;
            WriteName("thread_name", seen.m_thread,
                      !seen.m_thread.m_worker.empty() ? seen.m_thread.m_worker
                      : isMain                        ? "main"
                                                      : "thread");
        }
    }
    void Finish() override {
        m_output << "\n],\"displayTimeUnit\":\"ns\",\"otherData\":{\"ts 0\":"
                 << Quoted(m_begin.m_elapsed == 0 ? "" : MomentText(m_begin.m_wall)) << "}}\n";
    }

private:
    struct Seen {
        Thread m_thread;
        std::string m_head;
    };

    void Begin(std::string_view phase, const Thread& thread, const Moment& moment) {
        m_output << m_separator << "\n{\"ph\":\"" << phase << Head(thread) << ",\"ts\":";
        WriteMicroseconds(moment.m_elapsed - m_begin.m_elapsed);
        m_separator = ",";
    }
    void WriteInstant(const Thread& thread, const Moment& moment, const std::string& text) {
        Begin("i", thread, moment);
        m_output << ",\"s\":\"t\",\"name\":" << Quoted(text) << "}";
    }
    void WriteName(std::string_view what, const Thread& thread, const std::string& name) {
        m_output << m_separator << "\n{\"ph\":\"M" << HeadText(thread) << ",\"name\":\"" << what
                 << "\",\"args\":{\"name\":" << Quoted(name) << "}}";
        m_separator = ",";
    }
    const std::string& Head(const Thread& thread) {
        Seen& seen = m_threads[thread];
        if (seen.m_head.empty()) {
            seen.m_head = HeadText(thread);
        }
        if (seen.m_thread.m_worker.size() != thread.m_worker.size()) {
            seen.m_thread.m_worker = thread.m_worker;
        }
        seen.m_thread.m_id = thread.m_id;
        return seen.m_head;
    }
    std::string HeadText(const Thread& thread) const {
        return "\",\"pid\":" + std::to_string(m_process) +
               ",\"tid\":" + std::to_string(thread.m_id);
    }
    void WriteMicroseconds(std::int64_t nanoseconds) {
        // A run may be dated before the one above it.
        const std::int64_t positive = std::abs(nanoseconds);
        const auto rest = static_cast<int>(positive % 1000);
        const char fraction[] = {'.', Digit(rest / 100), Digit(rest / 10), Digit(rest)};
        m_output << (nanoseconds < 0 ? "-" : "") << positive / 1000
                 << std::string_view(fraction, sizeof(fraction));
    }
    static char Digit(int number) { return static_cast<char>('0' + number % 10); }

    Output& m_output;
    const char* m_separator = "";
    std::int64_t m_process = 0;
    ByThread<Seen> m_threads;  // of this run
    Moment m_begin;            // what times are counted from
    Made m_name;
    Made m_nameWithoutExit;
    NameFnc m_functionName;
};

}  // namespace

std::unique_ptr<Sink> MakeChrome(Output& output, const Style& style) {
    return std::make_unique<Chrome>(output, style);
}

}  // namespace timeline
