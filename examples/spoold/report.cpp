#include "report.h"

#include <fcntl.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <sstream>

#include "file.h"
#include "text.h"

namespace spoold {
namespace {

constexpr std::size_t c_bytesPerLine = 16;
constexpr mode_t c_reportMode = 0640;  // it shows bytes of a file that may be private

std::string Hex(const char* format, unsigned long value) {
    char text[32];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

std::string DumpLine(const std::string& bytes, std::size_t offset) {
    std::string hex;
    std::string plain;
    for (const char character : bytes.substr(offset, c_bytesPerLine)) {
        const auto byte = static_cast<unsigned char>(character);
        hex += Hex("%02lX ", byte);
        plain += std::isgraph(byte) != 0 ? character : '.';
    }
    hex.resize(3 * c_bytesPerLine, ' ');
    return Hex("%05lu: ", offset) + hex + " " + plain + "\n";
}

bool WriteAll(int fd, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t size = write(fd, text.data() + written, text.size() - written);
        if (size < 0) {
            return false;
        }
        written += static_cast<std::size_t>(size);
    }
    return true;
}

}  // namespace

std::string ReportText(const std::string& name, const Findings& findings) {
    std::ostringstream text;
    text << "File:    " << Quoted(name) << "\n"
         << "Size:    " << findings.m_size << " bytes\n"
         << "Lines:   " << findings.m_lines << "\n"
         << "Words:   " << findings.m_words << "\n"
         << "CRC-32:  " << Hex("%08lx", findings.m_crc) << "\n"
         << "Read:    " << findings.m_begin << ", in " << findings.m_duration << " s\n"
         << "First " << findings.m_head.size() << " bytes:\n";
    for (std::size_t offset = 0; offset < findings.m_head.size(); offset += c_bytesPerLine) {
        text << DumpLine(findings.m_head, offset);
    }
    return text.str();
}

void WriteReport(const std::string& growing, const std::string& path, const std::string& text) {
    QUOR_TRACE_FNC();
    const File file(open(growing.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, c_reportMode));
    if (!file.IsOpen() || !WriteAll(file.Fd(), text) || fsync(file.Fd()) != 0 ||
        rename(growing.c_str(), path.c_str()) != 0) {
        throw quor::Exception(SystemError("Cannot write " + Quoted(path)), true);
    }
}

}  // namespace spoold
