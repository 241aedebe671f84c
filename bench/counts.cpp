// counts [WHAT TIMES]: does one thing so many times, for scripts/bench --counts, which takes the
// difference of two runs. Without arguments it names what it can do. Log and trace are written
// beside this program, wherever it is started.
#include <quor/exception.h>
#include <quor/log.h>
#include <quor/process.h>
#include <quor/stop_watch.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <string>
#include <thread>
#include <utility>

// Not unnamed: what is built and taken here must have a name in a stack.
namespace quor_bench {

using namespace quor;

const std::string c_text(40, 'x');

__attribute__((noinline)) void BuildException() {
    const Exception exception(c_text, true);
}

// Three frames of this program, as a stack in a daemon has.
__attribute__((noinline)) void TakeStack(int frames) {
    if (frames > 1) {
        TakeStack(frames - 1);
    } else {
        GetExecutionStack(3);
    }
    __asm__ volatile("");
}

template <int Form>
void TextOfTime() {
    static const Time time(Form);
    time.ToText();
}

StopWatch g_watch;

struct Operation {
    const char* name;
    TraceLevel_e level;  // of the trace meanwhile
    void (*run)();
};

constexpr Operation c_operations[] = {
    {"nothing", Off, [] {}},
    {"closed_gate", Off, [] { QUOR_TRACE(Low, "never"); }},
    {"closed_trace_fnc", Off, [] { QUOR_TRACE_FNC(); }},
    {"open_trace_fnc", High, [] { QUOR_TRACE_FNC(); }},
    {"trace_write", Low, [] { TraceWrite(Low, "f", "file", 76, c_text); }},
    {"four_part_message", Low,
     [] { QUOR_TRACE(Low, "pass " << 12345 << " of worker " << c_text); }},
    {"log_message", Off, [] { Log::GetInstance().Info(c_text); }},
    {"log_message_traced", Low, [] { Log::GetInstance().Info(c_text); }},
    {"exception_trace_off", Off, BuildException},
    {"exception_reported", Low, BuildException},
    {"execution_stack_3", Off, [] { TakeStack(3); }},
    {"time_text_3", Off, TextOfTime<3>},
    {"time_text_6", Off, TextOfTime<6>},
    {"time_text_7", Off, TextOfTime<7>},
    {"next_loop", Off, [] { g_watch.NextLoop(); }},
};

// With one thread alone the C library's mutexes and allocator are cheaper than in a daemon.
void ParkAThread() {
    std::promise<void> started;
    std::future<void> running = started.get_future();
    std::thread(
        [](std::promise<void> promise) {
            promise.set_value();
            pause();
        },
        std::move(started))
        .detach();
    running.wait();
}

void Run(const Operation& operation, int times) {
    ParkAThread();
    std::filesystem::current_path(std::filesystem::canonical("/proc/self/exe").parent_path());
    std::filesystem::remove("counts.log");
    std::filesystem::remove("counts.trace");
    Log::Init("counts.log");
    TraceFile::Init("counts.trace", "");
    TraceFile::GetInstance().Start(operation.level);
    g_watch.Start();
    for (; times > 0; --times) {
        operation.run();
    }
}

}  // namespace quor_bench

int main(int count, char** arguments) {
    for (const quor_bench::Operation& operation : quor_bench::c_operations) {
        if (count != 3) {
            std::cout << operation.name << '\n';
        } else if (operation.name == std::string(arguments[1])) {
            quor_bench::Run(operation, std::atoi(arguments[2]));
        }
    }
}
