#include <quor/exception.h>

#include <quor/detail/errno_keeper.h>
#include <quor/internal/frame_text.h>
#include <quor/internal/joined.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <ostream>
#include <sstream>
#include <system_error>

// A stack dump shows each of the frames below: none is inlined, or left by a jump, which the empty
// statement behind each call prevents.
#define QUOR_KEEP_FRAME() __asm__ volatile("")

namespace quor {
namespace {

constexpr const char* c_function = "void LogException(const char*, bool)";
constexpr const char* c_file = "exception";

void WriteRecord(const char* mark, const std::string& text, int line) {
    if (TraceGateOpen(Low)) {
        TraceWrite(Low, c_function, c_file, line, internal::Joined({mark, text}));
    }
}

// `place` is the return address of the constructor, so it lies in the function that built the
// exception. To look one address up costs a tenth of walking the stack and naming its frames.
__attribute__((noinline)) void LogException(const char* text, bool log, void* place) noexcept {
    // Off asks whether the trace runs at all, without making it where there is none.
    if (!log || !TraceGateOpen(Off)) {
        return;
    }
    const detail::ErrnoKeeper keeper;
    try {
        bool dumpStack = false;
        TraceFile::GetInstance().GetDumpStack(dumpStack);
        if (dumpStack) {
            WriteRecord("** Thrown quor::Exception: ", text, __LINE__);
            TraceFile::GetInstance().DumpStack();
        } else {
            const std::string placeText = internal::FrameText(place);
            WriteRecord("** Thrown quor::Exception: ", text, __LINE__);
            WriteRecord("** in: ", placeText, __LINE__);
        }
    } catch (...) {
        // Building an exception must not fail because of its report.
    }
}

// When memory is short, what fits into the string itself.
void Store(std::string& message, const char* text, std::size_t length) noexcept {
    const detail::ErrnoKeeper keeper;
    try {
        message.assign(text, length);
    } catch (...) {
        message.assign(text, std::min(length, message.capacity()));
    }
}

void StoreContents(std::string& message, const std::ostringstream& stream) noexcept {
    const detail::ErrnoKeeper keeper;
    try {
        message = stream.str();
    } catch (...) {
        message.clear();
    }
}

}  // namespace

__attribute__((noinline)) Exception::Exception(const std::string& text, bool log) noexcept {
    Store(m_message, text.data(), text.size());
    LogException(m_message.c_str(), log, __builtin_return_address(0));
    QUOR_KEEP_FRAME();
}

__attribute__((noinline)) Exception::Exception(const char* text, bool log) noexcept {
    Store(m_message, text, std::strlen(text));
    LogException(m_message.c_str(), log, __builtin_return_address(0));
    QUOR_KEEP_FRAME();
}

__attribute__((noinline)) Exception::Exception(std::ostringstream& text, bool log) noexcept {
    StoreContents(m_message, text);
    LogException(m_message.c_str(), log, __builtin_return_address(0));
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
