#include "reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

namespace timeline {
namespace {

constexpr std::size_t c_longestLine = 1 << 20;

// Cuts what arrives in pieces into lines.
class Cutter {
public:
    explicit Cutter(const Reading& reading) : m_reading(reading), m_buffer(2 * c_longestLine) {}

    // Where the next piece is to be put, and how long it may be.
    char* Room() { return m_buffer.data() + m_kept; }
    std::size_t RoomSize() const { return m_buffer.size() - m_kept; }

    void Take(std::size_t size) {
        const char* begin = m_buffer.data();
        const char* const end = begin + m_kept + size;
        const char* searched = begin + m_kept;
        while (const void* const found =
                   std::memchr(searched, '\n', static_cast<std::size_t>(end - searched))) {
            const char* const feed = static_cast<const char*>(found);
            HandOver(begin, feed, true);
            begin = searched = feed + 1;
        }
        m_kept = static_cast<std::size_t>(end - begin);
        if (m_kept > c_longestLine) {
            HandOver(begin, end, true);
            m_skipping = true;
            m_kept = 0;
        }
        std::memmove(m_buffer.data(), begin, m_kept);
    }
    void End() {
        if (m_kept > 0) {
            HandOver(m_buffer.data(), m_buffer.data() + m_kept, false);
        }
    }

private:
    void HandOver(const char* begin, const char* end, bool whole) {
        if (!m_skipping) {
            const auto size = static_cast<std::size_t>(end - begin);
            m_reading.m_take({begin, size < c_longestLine ? size : c_longestLine}, whole);
        }
        m_skipping = false;
    }

    const Reading& m_reading;
    std::vector<char> m_buffer;
    std::size_t m_kept = 0;   // of a line whose end has not come yet
    bool m_skipping = false;  // the rest of a line that was handed over
};

void ReadAll(int fd, const std::string& path, const Reading& reading) {
    Cutter cutter(reading);
    ssize_t size = 0;
    while ((size = read(fd, cutter.Room(), cutter.RoomSize())) > 0) {
        cutter.Take(static_cast<std::size_t>(size));
        reading.m_progress(static_cast<std::uint64_t>(size));
    }
    if (size < 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    cutter.End();
}

}  // namespace

void ReadLines(const std::string& path, const Reading& reading) {
    if (path == "-") {
        ReadAll(STDIN_FILENO, path, reading);
        return;
    }
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    try {
        ReadAll(fd, path, reading);
    } catch (...) {
        close(fd);
        throw;
    }
    close(fd);
}

std::uint64_t SizeOf(const std::string& path) {
    struct stat status {};
    const int result = path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status);
    return result == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace timeline
