#include <quor/trace.h>

#include <cerrno>
#include <limits>
#include <locale>

namespace quor {

TraceLevel_e TraceActiveLevel() {
    TraceLevel_e level = Off;
    TraceFile::GetInstance().GetLevel(level);
    return level;
}

void TraceWrite(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                const std::string& text) {
    TraceFile::GetInstance().TraceLine(level, file, line, text.c_str());
}

// Sites stand in destructors and in the last handlers of threads, where an exception would end the
// process: a line is not worth that.
void TraceFnc::Write(const char* arrow, const char* function, const char* file, int line) noexcept {
    const int savedErrno = errno;
    try {
        TraceWrite(High, function, file, line, std::string(arrow) + function);
    } catch (...) {
    }
    errno = savedErrno;
}

// A stream of its own for every message costs half of it, but needs no care when the message itself
// traces, throws, or leaves manipulators behind.
TraceMessage::TraceMessage() : m_errno(errno), m_stream(&m_buffer) {
    if (m_stream.getloc() != std::locale::classic()) {
        m_stream.imbue(std::locale::classic());
    }
    errno = m_errno;
}

TraceMessage::~TraceMessage() {
    errno = m_errno;
}

void TraceMessage::Write(TraceLevel_e level, const char* /*function*/, const char* file,
                         int line) const noexcept {
    try {
        TraceFile::GetInstance().TraceLine(level, file, line, m_buffer.Text());
    } catch (...) {
    }
}

// Doubles the room. What does not fit any more is lost.
TraceMessage::Buffer::int_type TraceMessage::Buffer::overflow(int_type next) {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    if (text.size() > std::numeric_limits<int>::max() / 2) {
        return traits_type::eof();
    }
    std::string larger;
    larger.reserve(2 * text.size());
    larger = text;
    larger.resize(2 * text.size());
    m_heap.swap(larger);
    setp(m_heap.data(), m_heap.data() + m_heap.size());
    pbump(static_cast<int>(text.size()));
    return traits_type::eq_int_type(next, traits_type::eof())
               ? traits_type::not_eof(next)
               : sputc(traits_type::to_char_type(next));
}

}  // namespace quor
