// What does it cost to load the library into a process, beside a library of 24 functions?
#include <benchmark/benchmark.h>
#include <dlfcn.h>

namespace {

constexpr char c_quor[] = QUOR_LIBRARY;
constexpr char c_small[] = SMALL_LIBRARY;

template <const char* Library, int Binding>
void Load(benchmark::State& state) {
    for (auto _ : state) {
        void* const handle = dlopen(Library, Binding | RTLD_LOCAL);
        if (handle == nullptr) {
            state.SkipWithError(dlerror());
            break;
        }
        dlclose(handle);
    }
    if (dlopen(Library, RTLD_LAZY | RTLD_NOLOAD) != nullptr) {
        state.SkipWithError("it was not unloaded");
    }
}
BENCHMARK(Load<c_small, RTLD_LAZY>)->Name("loading/floor");
BENCHMARK(Load<c_quor, RTLD_LAZY>)->Name("loading/quor");
BENCHMARK(Load<c_small, RTLD_NOW>)->Name("loading and binding/floor");
BENCHMARK(Load<c_quor, RTLD_NOW>)->Name("loading and binding/quor");

}  // namespace

BENCHMARK_MAIN();
