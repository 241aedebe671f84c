#include "examine.h"

#include <fcntl.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <vector>

#include "file.h"
#include "text.h"

namespace spoold {
namespace {

constexpr std::size_t c_blockSize = 65536;
constexpr std::size_t c_headSize = 64;

bool IsSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

void Add(Findings& findings, const char* block, std::size_t size, bool& inWord) {
    findings.m_size += size;
    findings.m_crc = static_cast<std::uint32_t>(
        crc32(findings.m_crc, reinterpret_cast<const Bytef*>(block), static_cast<uInt>(size)));
    findings.m_head.append(block, std::min(size, c_headSize - findings.m_head.size()));
    for (const char* next = block; next != block + size; ++next) {
        findings.m_lines += *next == '\n' ? 1 : 0;
        findings.m_words += !inWord && !IsSpace(*next) ? 1 : 0;
        inWord = !IsSpace(*next);
    }
}

}  // namespace

Findings Examine(const std::string& path) {
    QUOR_TRACE_FNC();
    // Asked before it is opened: to open a pipe would block, and a link may lead anywhere.
    std::error_code error;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error))) {
        throw quor::Exception("Not a regular file: " + Quoted(path), true);
    }
    const File file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.IsOpen()) {
        throw quor::Exception(SystemError("Cannot open " + Quoted(path)), true);
    }
    Findings findings;
    const quor::Time start = quor::Time::Now(quor::Time::eNanoSec);
    bool inWord = false;
    std::vector<char> block(c_blockSize);
    ssize_t size = 0;
    while ((size = read(file.Fd(), block.data(), block.size())) > 0) {
        Add(findings, block.data(), static_cast<std::size_t>(size), inWord);
        QUOR_TRACE(quor::Detail, "Read: " << findings.m_size << " bytes");
    }
    if (size < 0) {
        throw quor::Exception(SystemError("Cannot read " + Quoted(path)), true);
    }
    findings.m_duration = quor::Time::Now(quor::Time::eNanoSec) - start;
    return findings;
}

}  // namespace spoold
