#include <quor/process.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <utility>

namespace quor {
namespace {

constexpr int c_maxDepth = 128;
constexpr std::size_t c_longestFrameText = 499;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using CText = std::unique_ptr<char, Free>;

CText Demangle(const char* mangled) {
    return CText(abi::__cxa_demangle(mangled, nullptr, nullptr, nullptr));
}

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
    const CText name = Demangle(mangled);
    return name != nullptr ? name.get() : mangled;
}

std::string CppName(const std::type_info& type) {
    return CppName(type.name());
}

// The C library searches all symbols of the object for an address, and does it again for its own
// text: that is asked for only where there is no better.
std::string FrameText(void* address) {
    Dl_info info{};
    const bool known = dladdr(address, &info) != 0 && info.dli_sname != nullptr;
    const CText function = known ? Demangle(info.dli_sname) : nullptr;
    if (function == nullptr) {
        const std::unique_ptr<char*, Free> symbols(backtrace_symbols(&address, 1));
        return symbols != nullptr ? *symbols : std::string();
    }
    char start[2 * sizeof(std::uintptr_t)];
    char* const end =
        std::to_chars(start, std::end(start), reinterpret_cast<std::uintptr_t>(info.dli_saddr), 16)
            .ptr;
    std::string text;
    text.reserve(c_longestFrameText + 1);
    text.append(info.dli_fname).append("(").append(function.get()).append(") [0x");
    text.append(start, end).append("]");
    text.resize(std::min(text.size(), c_longestFrameText));
    return text;
}

// Inlined, or entered by a jump, it would lose its own frame and the skipped one would be its
// caller's.
__attribute__((noinline)) std::vector<std::string> GetExecutionStack(int depth) {
    void* frames[c_maxDepth + 1];
    const int count = backtrace(frames, std::min(depth, c_maxDepth) + 1);
    std::vector<std::string> stack;
    if (count <= 1) {
        return stack;
    }
    stack.reserve(static_cast<std::size_t>(count) - 1);
    for (int index = 1; index < count; ++index) {
        std::string text = FrameText(frames[index]);
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
