#include "report.h"

#include <fcntl.h>
#include <quor/exception.h>
#include <quor/string_utils.h>
#include <quor/trace.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <sstream>

#include "file.h"
#include "text.h"

namespace spoold {
namespace {

constexpr unsigned int c_bytesPerLine = 16;
constexpr mode_t c_reportMode = 0640;  // it shows bytes of a file that may be private

std::string Hex(std::uint32_t value) {
    char text[9];
    std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned int>(value));
    return text;
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
         << "CRC-32:  " << Hex(findings.m_crc) << "\n"
         << "Read:    " << findings.m_begin << ", in " << findings.m_duration << " s\n"
         << "First " << findings.m_head.size() << " bytes:\n";
    text << quor::HexDump(findings.m_head.data(), static_cast<unsigned int>(findings.m_head.size()),
                          c_bytesPerLine, true);
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
