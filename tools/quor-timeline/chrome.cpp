#include <cstdio>

#include "sinks.h"

namespace timeline {
namespace {

// A JSON string is UTF-8; what the trace holds need not be: bytes from 0x80 on stand for Latin-1.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < ' ' || byte > '~' || byte == '"' || byte == '\\') {
            char escape[8];
            std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(byte));
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + "\"";
}

std::string Microseconds(std::int64_t nanoseconds) {
    char text[40];
    std::snprintf(text, sizeof(text), "%lld.%03lld", static_cast<long long>(nanoseconds / 1000),
                  static_cast<long long>(nanoseconds % 1000));
    return text;
}

class Chrome : public Sink {
public:
    explicit Chrome(std::ostream& output) : m_output(output) { m_output << "{\"traceEvents\":["; }

    void Run(long process) override { m_process = process; }
    void Enter(long thread, const Call& call) override {
        Begin('B', thread, call.m_begin);
        m_output << ",\"name\":" << Quoted(*call.m_function)
                 << ",\"args\":{\"site\":" << Quoted(*call.m_site) << "}}";
    }
    void Leave(long thread, const Call& call) override {
        Begin('E', thread, call.m_end);
        m_output << (call.m_cut ? ",\"args\":{\"cut\":true}}" : "}");
    }
    void Thrown(long thread, std::int64_t time, std::string_view place) override {
        Begin('i', thread, time);
        m_output << ",\"s\":\"t\",\"name\":" << Quoted("thrown in " + std::string(place)) << "}";
    }
    void Finish() override { m_output << "\n],\"displayTimeUnit\":\"ns\"}\n"; }

private:
    void Begin(char phase, long thread, std::int64_t time) {
        m_output << m_separator << "\n{\"ph\":\"" << phase << "\",\"pid\":" << m_process
                 << ",\"tid\":" << thread << ",\"ts\":" << Microseconds(time);
        m_separator = ",";
    }

    std::ostream& m_output;
    const char* m_separator = "";
    long m_process = 0;
};

}  // namespace

std::unique_ptr<Sink> MakeChrome(std::ostream& output) {
    return std::make_unique<Chrome>(output);
}

}  // namespace timeline
