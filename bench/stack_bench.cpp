// What do the texts of three frames cost?
#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <quor/process.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench.h"

namespace quor_bench {

// The obvious way: all texts of the C library, then a better one for each frame that has it.
__attribute__((noinline)) std::vector<std::string> ObviousStack() {
    void* frames[4];
    const int count = backtrace(frames, 4);
    char** const symbols = backtrace_symbols(frames, count);
    std::vector<std::string> stack;
    for (int index = 1; index < count; ++index) {
        Dl_info info{};
        char* name = nullptr;
        if (dladdr(frames[index], &info) != 0 && info.dli_sname != nullptr) {
            name = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr);
        }
        char text[500];
        if (name != nullptr) {
            std::snprintf(text, sizeof(text), "%s(%s) [%p]", info.dli_fname, name, info.dli_saddr);
        }
        stack.emplace_back(name != nullptr ? text : symbols[index]);
        std::free(name);
    }
    std::free(symbols);
    return stack;
}

template <typename Take>
__attribute__((noinline)) void AtDepth(int frames, const Take& take) {
    if (frames > 1) {
        AtDepth(frames - 1, take);
    } else {
        benchmark::DoNotOptimize(take());
    }
    __asm__ volatile("");
}

void Obvious(benchmark::State& state) {
    for (auto _ : state) {
        AtDepth(3, ObviousStack);
    }
}
BENCHMARK(Obvious)->Name("three frames/floor");

void Stack(benchmark::State& state) {
    for (auto _ : state) {
        AtDepth(3, [] { return GetExecutionStack(3); });
    }
}
BENCHMARK(Stack)->Name("three frames/quor");

}  // namespace quor_bench
