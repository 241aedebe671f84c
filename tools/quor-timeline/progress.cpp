#include "progress.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string_view>

namespace timeline {
namespace {

constexpr std::uint64_t c_large = 64 << 20;
constexpr std::string_view c_wipe = "\r\033[K";

void WipeAndEnd(int signal) {
    const ssize_t written = write(STDERR_FILENO, c_wipe.data(), c_wipe.size());
    static_cast<void>(written);  // nothing more can be done
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

Progress::Progress(std::uint64_t size)
    : m_size(size >= c_large && isatty(STDERR_FILENO) == 1 ? size : 0) {
    if (m_size > 0) {
        std::signal(SIGINT, WipeAndEnd);
    }
}

Progress::~Progress() {
    if (m_shown > 0) {
        std::fwrite(c_wipe.data(), 1, c_wipe.size(), stderr);
    }
    if (m_size > 0) {
        std::signal(SIGINT, SIG_DFL);
    }
}

void Progress::Add(std::uint64_t bytes) {
    m_read += bytes;
    const std::uint64_t percent = m_size == 0 ? 0 : m_read * 100 / m_size;
    if (percent > m_shown) {
        m_shown = percent;
        std::fprintf(stderr, "\rquor-timeline: %3u %%", static_cast<unsigned>(percent));
    }
}

}  // namespace timeline
