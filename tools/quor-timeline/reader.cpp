#include "reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

namespace timeline {
namespace {

constexpr std::size_t c_bufferSize = 1 << 20;

// Hands over the whole lines in the buffer; returns how much that was.
std::size_t TakeLines(const char* begin, std::size_t size,
                      const std::function<void(std::string_view)>& take) {
    std::size_t taken = 0;
    while (const void* const end = std::memchr(begin + taken, '\n', size - taken)) {
        const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - begin) - taken;
        take({begin + taken, length});
        taken += length + 1;
    }
    return taken;
}

void ReadAll(int fd, const std::string& path, const std::function<void(std::string_view)>& take) {
    std::vector<char> buffer(c_bufferSize);
    std::size_t kept = 0;
    ssize_t size = 0;
    while ((size = read(fd, buffer.data() + kept, buffer.size() - kept)) > 0) {
        kept += static_cast<std::size_t>(size);
        std::size_t taken = TakeLines(buffer.data(), kept, take);
        if (taken == 0 && kept == buffer.size()) {
            take({buffer.data(), kept});
            taken = kept;
        }
        std::memmove(buffer.data(), buffer.data() + taken, kept - taken);
        kept -= taken;
    }
    if (size < 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    if (kept > 0) {
        take({buffer.data(), kept});
    }
}

}  // namespace

void ReadLines(const std::string& path, const std::function<void(std::string_view)>& take) {
    if (path == "-") {
        ReadAll(STDIN_FILENO, path, take);
        return;
    }
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    try {
        ReadAll(fd, path, take);
    } catch (...) {
        close(fd);
        throw;
    }
    close(fd);
}

}  // namespace timeline
