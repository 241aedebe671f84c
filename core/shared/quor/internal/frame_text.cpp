#include <quor/internal/frame_text.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

namespace quor::internal {
namespace {

constexpr std::size_t c_longestText = 499;

}  // namespace

CText Demangle(const char* mangled) {
    return CText(abi::__cxa_demangle(mangled, nullptr, nullptr, nullptr));
}

// The C library searches all symbols of the object for an address, and does it again for its own
// text: that is asked for only where there is no better.
std::string FrameText(void* address) {
    Dl_info info{};
    dladdr(address, &info);
    const CText function = info.dli_sname != nullptr ? Demangle(info.dli_sname) : nullptr;
    if (function == nullptr) {
        const std::unique_ptr<char*, Free> symbols(backtrace_symbols(&address, 1));
        return symbols != nullptr ? *symbols : std::string();
    }
    char start[2 * sizeof(std::uintptr_t)];
    char* const end =
        std::to_chars(start, std::end(start), reinterpret_cast<std::uintptr_t>(info.dli_saddr), 16)
            .ptr;
    std::string text;
    text.reserve(c_longestText + 1);
    text.append(info.dli_fname).append("(").append(function.get()).append(") [0x");
    text.append(start, end).append("]");
    text.resize(std::min(text.size(), c_longestText));
    return text;
}

}  // namespace quor::internal
