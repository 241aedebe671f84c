#include <quor/exception.h>

#include <quor/process.h>
#include <quor/trace.h>

#include <cerrno>
#include <cstring>
#include <ostream>

// The place of a throw is the third frame of the stack taken below. So the frames in between must
// exist: neither inlined nor left by a jump, which the empty statement behind each call prevents.
#define QUOR_KEEP_FRAME() __asm__ volatile("")

namespace quor {
namespace {

constexpr int c_depthOfPlace = 3;
constexpr const char* c_function = "void LogException(const char*, bool)";
constexpr const char* c_file = "exception";

void WriteThrown(const char* text, int line) {
    if (TraceGateOpen(Low)) {
        TraceWrite(Low, c_function, c_file, line,
                   std::string("** Thrown quor::Exception: ") + text);
    }
}

void WritePlace(const std::vector<std::string>& stack, int line) {
    if (TraceGateOpen(Low)) {
        const std::string place = stack.size() > 1 ? stack.back() : std::string();
        TraceWrite(Low, c_function, c_file, line, "** in: " + place);
    }
}

__attribute__((noinline)) void LogException(const char* text, bool log) noexcept {
    // Off asks whether the trace runs at all, without making it where there is none.
    if (!log || !TraceGateOpen(Off)) {
        return;
    }
    const int savedErrno = errno;
    try {
        bool dumpStack = false;
        TraceFile::GetInstance().GetDumpStack(dumpStack);
        if (dumpStack) {
            WriteThrown(text, __LINE__);
            TraceFile::GetInstance().DumpStack();
        } else {
            const std::vector<std::string> stack = GetExecutionStack(c_depthOfPlace);
            WriteThrown(text, __LINE__);
            WritePlace(stack, __LINE__);
        }
    } catch (...) {
        // Building an exception must not fail because of its report.
    }
    errno = savedErrno;
}

// When memory is short, what fits into the string itself.
void Store(std::string& message, const char* text, std::size_t length) noexcept {
    try {
        message.assign(text, length);
    } catch (...) {
        message.assign(text, std::min(length, message.capacity()));
    }
}

void StoreContents(std::string& message, const std::ostringstream& stream) noexcept {
    try {
        message = stream.str();
    } catch (...) {
        message.clear();
    }
}

}  // namespace

__attribute__((noinline)) Exception::Exception(const std::string& text, bool log) noexcept {
    Store(m_message, text.data(), text.size());
    LogException(m_message.c_str(), log);
    QUOR_KEEP_FRAME();
}

__attribute__((noinline)) Exception::Exception(const char* text, bool log) noexcept {
    Store(m_message, text, std::strlen(text));
    LogException(m_message.c_str(), log);
    QUOR_KEEP_FRAME();
}

__attribute__((noinline)) Exception::Exception(std::ostringstream& text, bool log) noexcept {
    StoreContents(m_message, text);
    LogException(m_message.c_str(), log);
    QUOR_KEEP_FRAME();
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return m_message.c_str();
}

std::ostream& operator<<(std::ostream& stream, const Exception& exception) {
    return stream << exception.what();
}

Lock::~Lock() {
    for (std::mutex* mutex : m_mutexes) {
        mutex->unlock();
    }
}

}  // namespace quor
