#include "bench.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <string_view>
#include <thread>

namespace quor_bench {
namespace {

int g_fd = -1;
std::mutex g_mutex;
thread_local long t_thread = 0;

char* PutDigits(char* end, unsigned long number, int count) {
    for (int index = count - 1; index >= 0; --index) {
        end[index] = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return end + count;
}

}  // namespace

void StartTrace(const benchmark::State& /*state*/) {
    TraceFile::Init("bench.trace", "");
    TraceFile::GetInstance().Start(Low);
}

void StopTrace(const benchmark::State& /*state*/) {
    TraceFile::GetInstance().Stop();
}

void FloorOfLine::Open(const benchmark::State& /*state*/) {
    g_fd = open("floor.trace", O_WRONLY | O_CREAT | O_APPEND, 0666);
}

void FloorOfLine::Close(const benchmark::State& /*state*/) {
    close(g_fd);
}

// The second is not broken down here at all.
std::size_t FloorOfLine::PutHeader(char* line) {
    if (t_thread == 0) {
        t_thread = syscall(SYS_gettid);
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    constexpr std::string_view c_header = "[01234: 15:53:46.123456789]   76: ";
    c_header.copy(line, c_header.size());
    PutDigits(line + 1, static_cast<unsigned long>(t_thread), 5);
    PutDigits(line + 17, static_cast<unsigned long>(now.tv_nsec), 9);
    return c_header.size();
}

void FloorOfLine::Write(const char* text, std::size_t length) {
    char line[640];
    const std::lock_guard<std::mutex> lock(g_mutex);
    const std::size_t header = PutHeader(line);
    std::memcpy(line + header, text, length);
    line[header + length] = '\n';
    benchmark::DoNotOptimize(write(g_fd, line, header + length + 1));
}

}  // namespace quor_bench

int main(int count, char** arguments) {
    // With one thread alone the C library's mutexes and allocator are cheaper than in a daemon.
    std::thread(pause).detach();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
