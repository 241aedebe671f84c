#include <quor/trace.h>

#include <cerrno>
#include <locale>

namespace quor {
namespace {

class ErrnoKeeper {
public:
    ErrnoKeeper() : m_errno(errno) {}
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = m_errno; }

private:
    int m_errno;
};

}  // namespace

TraceLevel_e TraceActiveLevel() {
    TraceLevel_e level = Off;
    TraceFile::GetInstance().GetLevel(level);
    return level;
}

void TraceWrite(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                const std::string& text) {
    const ErrnoKeeper keeper;
    TraceFile::GetInstance().TraceLine(level, file, line, {}, text.c_str());
}

// Sites stand in destructors and in the last handlers of threads, where an exception would end the
// process: a line is not worth that.
void TraceFnc::Write(const char* arrow) const noexcept {
    const ErrnoKeeper keeper;
    try {
        TraceFile::GetInstance().TraceLine(High, m_file, m_line, arrow, m_function);
    } catch (...) {
    }
}

TraceMessage::TraceMessage() : m_errno(errno) {
    m_stream.imbue(std::locale::classic());
    errno = m_errno;
}

TraceMessage::~TraceMessage() {
    errno = m_errno;
}

void TraceMessage::Write(TraceLevel_e level, const char* function, const char* file,
                         int line) const noexcept {
    try {
        TraceWrite(level, function, file, line, m_stream.str());
    } catch (...) {
    }
}

}  // namespace quor
