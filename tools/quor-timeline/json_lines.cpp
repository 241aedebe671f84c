#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

// What a run's and a call's objects share is put together once.
class JsonLines : public Sink {
public:
    JsonLines(Output& output, const Style& style)
        : m_output(output),
          m_host(Quoted(style.m_host)),
          m_functionName(style.m_name),
          m_function([name = style.m_name](std::string_view text) {
              return ",\"function\":" + Quoted(name(text));
          }),
          m_site([](std::string_view text) {
              const std::string members = SiteMembers(text);
              return members.empty() ? members : "," + members;
          }) {}

    void BeginRun(const Run& run) override {
        m_run = ",\"host\":" + m_host + ",\"process\":" + Quoted(run.m_name) +
                ",\"pid\":" + std::to_string(run.m_process) + ",\"run\":\"";
        AppendTime(m_run, run.m_begin.m_wall);
        m_run += "\",\"thread\":";
        m_heads.Clear();
    }
    void Leave(const Thread& thread, const Call& call) override {
        Begin("call", thread, call.m_begin);
        m_output << "\",\"depth\":" << static_cast<std::int64_t>(call.m_depth)
                 << m_function(call.m_function) << m_site(call.m_site)
                 << ",\"duration_ns\":" << call.Duration() << ",\"own_ns\":" << call.Own()
                 << (call.m_ending == Call::eCutOff ? ",\"cut\":true" : "") << ",\"unfinished\":"
                 << (call.m_ending == Call::eRunEnded ? "true}\n" : "false}\n");
    }
    void Tell(const Thread& thread, const Message& message) override {
        Begin(message.m_kind == Message::eThrown ? "exception" : "message", thread,
              message.m_moment);
        m_output << "\",\"severity\":" << Quoted(KindName(message.m_kind)) << m_site(message.m_site)
                 << ",\"text\":" << Quoted(message.m_text);
        if (!message.m_place.empty()) {
            m_output << ",\"place\":" << Quoted(PlaceName(message.m_place, m_functionName));
        }
        m_output << "}\n";
    }

private:
    struct Head {
        std::string m_text;  // from the host to the beginning of the time
        std::string m_worker;
    };

    void Begin(std::string_view type, const Thread& thread, const Moment& begin) {
        Head& head = m_heads[thread];
        if (head.m_text.empty() || head.m_worker != thread.m_worker) {
            head.m_worker = thread.m_worker;
            head.m_text =
                "\"" + m_run + std::to_string(thread.m_id) +
                (thread.m_worker.empty() ? "" : ",\"worker\":" + Quoted(thread.m_worker)) +
                ",\"begin\":\"";
        }
        m_time.clear();
        AppendTime(m_time, begin.m_wall);
        m_output << "{\"type\":\"" << type << head.m_text << m_time;
    }
    // RFC 3339: local time, and -00:00 says that its offset is not known.
    void AppendTime(std::string& text, std::int64_t wall) {
        const std::int64_t second = wall / 1'000'000'000;
        if (second != m_second || m_secondText.empty()) {
            m_second = second;
            m_secondText = MomentText(wall).substr(0, 20);
            m_secondText[10] = 'T';
        }
        text += m_secondText;
        AppendDigits(text, wall % 1'000'000'000, 9);
        text += "-00:00";
    }

    Output& m_output;
    const std::string m_host;
    const NameFnc m_functionName;
    Made m_function;
    Made m_site;
    std::string m_run;
    ByThread<Head> m_heads;
    std::string m_time;
    std::int64_t m_second = -1;  // that m_secondText shows
    std::string m_secondText;
};

}  // namespace

std::unique_ptr<Sink> MakeJsonLines(Output& output, const Style& style) {
    return std::make_unique<JsonLines>(output, style);
}

}  // namespace timeline
