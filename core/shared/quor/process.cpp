#include <quor/process.h>

#include <quor/internal/frame_text.h>

#include <execinfo.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace quor {
namespace {

constexpr int c_maxDepth = 128;

}  // namespace

const char* GetProgName() {
    return program_invocation_short_name;
}

pid_t GetPid() {
    return getpid();
}

pid_t GetTid() {
    return static_cast<pid_t>(syscall(SYS_gettid));
}

std::string CppName(const char* mangled) {
    const internal::CText name = internal::Demangle(mangled);
    return name != nullptr ? name.get() : mangled;
}

std::string CppName(const std::type_info& type) {
    return CppName(type.name());
}

// Inlined, or entered by a jump, it would lose its own frame and the skipped one would be its
// caller's.
__attribute__((noinline)) std::vector<std::string> GetExecutionStack(int depth) {
    void* frames[c_maxDepth + 1];
    const int count = backtrace(frames, std::min(depth, c_maxDepth) + 1);
    std::vector<std::string> stack;
    stack.reserve(static_cast<std::size_t>(std::max(count, 1)) - 1);
    for (int index = 1; index < count; ++index) {
        std::string text = internal::FrameText(frames[index]);
        if (text.empty()) {
            return {};
        }
        stack.push_back(std::move(text));
    }
    return stack;
}

__attribute__((noinline)) std::string ThisFncName() {
    const std::vector<std::string> stack = GetExecutionStack(2);
    return stack.empty() ? std::string() : stack.back();
}

}  // namespace quor
