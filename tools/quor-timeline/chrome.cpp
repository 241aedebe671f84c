#include <cstdlib>
#include <map>

#include "line.h"
#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

class Chrome : public Sink {
public:
    explicit Chrome(Output& output) : m_output(output) { m_output << "{\"traceEvents\":["; }

    void Run(const Process& process) override {
        m_process = process.m_id;
        m_heads.clear();
        Begin("M", 0, process.m_start);
        m_output << ",\"name\":\"process_name\",\"args\":{\"name\":" << Quoted(process.m_name)
                 << "}}";
    }
    void Enter(std::int64_t thread, const Call& call) override {
        Begin("B", thread, call.m_begin);
        m_output << ",\"name\":" << m_quoted(call.m_function) << ",\"args\":{"
                 << m_siteMembers(call.m_site) << "}}";
    }
    void Leave(std::int64_t thread, const Call& call) override {
        Begin("E", thread, call.m_end);
        m_output << (call.m_cut ? ",\"args\":{\"cut\":true}}" : "}");
    }
    void Thrown(std::int64_t thread, std::int64_t time, std::string_view place) override {
        Begin("i", thread, time);
        m_output << ",\"s\":\"t\",\"name\":" << Quoted("thrown in " + std::string(place)) << "}";
    }
    void EndRun() override {
        m_process = 0;
        m_heads.clear();
    }
    void Finish() override {
        m_output << "\n],\"displayTimeUnit\":\"ns\",\"otherData\":{\"ts 0\":"
                 << Quoted(m_midnight < 0 ? "" : MomentText(m_midnight)) << "}}\n";
    }

private:
    void Begin(std::string_view phase, std::int64_t thread, std::int64_t time) {
        m_midnight = m_midnight < 0 ? time - time % c_day : m_midnight;
        m_output << m_separator << "\n{\"ph\":\"" << phase << Head(thread);
        WriteMicroseconds(time - m_midnight);
        m_separator = ",";
    }

    const std::string& Head(std::int64_t thread) {
        std::string& head = m_heads[thread];
        if (head.empty()) {
            head = "\",\"pid\":" + std::to_string(m_process) +
                   ",\"tid\":" + std::to_string(thread) + ",\"ts\":";
        }
        return head;
    }
    void WriteMicroseconds(std::int64_t nanoseconds) {
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
    std::map<std::int64_t, std::string> m_heads;  // of this process' threads
    // Times are counted from the first midnight: readers take one for a double, which has
    // nanoseconds for a hundred days.
    std::int64_t m_midnight = -1;
    Made<Quoted> m_quoted;
    Made<SiteMembers> m_siteMembers;
};

}  // namespace

std::unique_ptr<Sink> MakeChrome(Output& output) {
    return std::make_unique<Chrome>(output);
}

}  // namespace timeline
