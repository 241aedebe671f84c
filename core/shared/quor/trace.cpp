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

void TraceWrite(TraceLevel_e level, const char* function, const char* file, int line,
                const std::string& text) {
    const ErrnoKeeper keeper;
    TraceFile::GetInstance().Trace(level, function, file, line, text);
}

void TraceFnc::WriteEntry() const {
    const ErrnoKeeper keeper;
    TraceWrite(High, m_function, m_file, m_line, std::string("==> ") + m_function);
}

void TraceFnc::WriteExit() const noexcept {
    const ErrnoKeeper keeper;
    try {
        TraceWrite(High, m_function, m_file, m_line, std::string("<== ") + m_function);
    } catch (...) {
        // A line is not worth the process: this runs while a scope unwinds.
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
                         int line) const {
    TraceWrite(level, function, file, line, m_stream.str());
}

}  // namespace quor
