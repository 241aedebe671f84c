#include <cstdio>
#include <cstdlib>

#include "line.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

class Chrome : public Sink {
public:
    explicit Chrome(std::ostream& output) : m_output(output) { m_output << "{\"traceEvents\":["; }

    void Run(const Process& process) override {
        m_process = process.m_id;
        Begin('M', 0, process.m_start);
        m_output << ",\"name\":\"process_name\",\"args\":{\"name\":" << Quoted(process.m_name)
                 << "}}";
    }
    void Enter(std::int64_t thread, const Call& call) override {
        Begin('B', thread, call.m_begin);
        m_output << ",\"name\":" << Quoted(*call.m_function) << ",\"args\":{\"thread\":" << thread
                 << SiteMembers(*call.m_site) << "}}";
    }
    void Leave(std::int64_t thread, const Call& call) override {
        Begin('E', thread, call.m_end);
        m_output << (call.m_cut ? ",\"args\":{\"cut\":true}}" : "}");
    }
    void Thrown(std::int64_t thread, std::int64_t time, std::string_view place) override {
        Begin('i', thread, time);
        m_output << ",\"s\":\"t\",\"name\":" << Quoted("thrown in " + std::string(place)) << "}";
    }
    void Finish() override {
        m_output << "\n],\"displayTimeUnit\":\"ns\",\"otherData\":{\"ts 0\":"
                 << Quoted(m_midnight < 0 ? "" : MomentText(m_midnight)) << "}}\n";
    }

private:
    void Begin(char phase, std::int64_t thread, std::int64_t time) {
        m_output << m_separator << "\n{\"ph\":\"" << phase << "\",\"pid\":" << m_process
                 << ",\"tid\":" << thread << ",\"ts\":" << Microseconds(time);
        m_separator = ",";
    }
    // Since the first midnight: readers take the number for a double, which has nanoseconds for a
    // hundred days.
    std::string Microseconds(std::int64_t time) {
        m_midnight = m_midnight < 0 ? time - time % c_day : m_midnight;
        const std::int64_t since = time - m_midnight;
        char text[40];
        std::snprintf(text, sizeof(text), "%s%lld.%03lld", since < 0 ? "-" : "",
                      std::abs(static_cast<long long>(since / 1000)),
                      std::abs(static_cast<long long>(since % 1000)));
        return text;
    }

    std::ostream& m_output;
    const char* m_separator = "";
    std::int64_t m_process = 0;
    std::int64_t m_midnight = -1;
};

}  // namespace

std::unique_ptr<Sink> MakeChrome(std::ostream& output) {
    return std::make_unique<Chrome>(output);
}

}  // namespace timeline
