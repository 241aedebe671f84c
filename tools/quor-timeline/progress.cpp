#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace timeline {
namespace {

constexpr std::uint64_t c_large = 64 << 20;

}  // namespace

Progress::Progress(std::uint64_t size)
    : m_size(size >= c_large && isatty(STDERR_FILENO) == 1 ? size : 0) {}

Progress::~Progress() {
    if (m_shown > 0) {
        std::fputs("\r\033[K", stderr);
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
