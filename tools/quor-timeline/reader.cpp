#include "reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace timeline {
namespace {

constexpr std::size_t c_longestLine = 1 << 20;

using File = std::unique_ptr<gzFile_s, int (*)(gzFile)>;

// zlib hands on what is not compressed as it is.
File Open(const std::string& path) {
    const int fd = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    File file(gzdopen(fd, "r"), gzclose);
    if (file == nullptr) {
        close(fd);
        throw std::bad_alloc();
    }
    return file;
}

void ThrowIfFailed(gzFile file, const std::string& path) {
    int error = Z_OK;
    const std::string text = gzerror(file, &error);  // "<fd:3>: what"
    if (error == Z_ERRNO) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    if (error != Z_OK) {
        throw std::runtime_error(path + text.substr(std::min(text.find(": "), text.size())));
    }
}

}  // namespace

LineCutter::LineCutter(const Reading& reading) : m_reading(reading), m_buffer(2 * c_longestLine) {}

void LineCutter::Take(std::size_t size) {
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

void LineCutter::End() {
    if (m_kept > 0) {
        HandOver(m_buffer.data(), m_buffer.data() + m_kept, false);
    }
    m_kept = 0;
    m_skipping = false;
}

void LineCutter::HandOver(const char* begin, const char* end, bool whole) {
    if (!m_skipping) {
        const auto size = static_cast<std::size_t>(end - begin);
        m_reading.m_take({begin, std::min(size, c_longestLine)}, whole);
    }
    m_skipping = false;
}

void ReadLines(const std::string& path, const Reading& reading) {
    const File file = Open(path);
    LineCutter cutter(reading);
    std::uint64_t read = 0;
    for (;;) {
        const int size =
            gzread(file.get(), cutter.Room(), static_cast<unsigned>(cutter.RoomSize()));
        if (size <= 0) {
            break;
        }
        cutter.Take(static_cast<std::size_t>(size));
        const auto at = static_cast<std::uint64_t>(std::max<z_off_t>(gzoffset(file.get()), 0));
        if (!reading.m_progress(at - std::min(read, at))) {
            return;
        }
        read = std::max(read, at);
    }
    ThrowIfFailed(file.get(), path);
    cutter.End();
}

std::uint64_t SizeOf(const std::string& path) {
    struct stat status {};
    const int result = path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status);
    return result == 0 && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace timeline
