#include <quor/log_file.h>

#include <quor/internal/at_scope_end.h>
#include <quor/internal/cancellation_off.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/line_buffer.h>
#include <quor/internal/log_file_internals.h>
#include <quor/internal/standard_output.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quor {

using internal::CancellationOff;
using internal::LateReports;
using internal::LineBuffer;
using internal::LogFileInternals;
using internal::Put;

namespace {

constexpr int c_closed = LogFileInternals::c_closed;
constexpr mode_t c_fileMode = 0666;
constexpr int c_openFlags = O_WRONLY | O_APPEND;

// Closes even when the trailer's text cannot be had.
auto Closer(int& fd) {
    return internal::AtScopeEnd([&fd] {
        close(fd);
        fd = c_closed;
    });
}

// An empty block costs no call; the log's opening and closing blocks mostly are.
bool WriteBlock(int fd, const std::string& block) {
    return block.empty() || write(fd, block.data(), block.size()) >= 0;
}

// Gives a file that this process created its mode. The creation mask is the whole process's: to
// clear it, even for a moment, would open up what other threads create meanwhile.
int Create(const char* fileName) {
    const int fd = open(fileName, c_openFlags | O_CREAT | O_EXCL, c_fileMode);
    if (fd == c_closed && errno == EEXIST) {
        // Another process was faster, or the name is a link to a missing file.
        return open(fileName, c_openFlags | O_CREAT, c_fileMode);
    }
    if (fd != c_closed) {
        fchmod(fd, c_fileMode);
    }
    return fd;
}

int OpenOrCreate(const char* fileName) {
    const int fd = open(fileName, c_openFlags);
    return fd == c_closed && errno == ENOENT ? Create(fileName) : fd;
}

}  // namespace

const std::string LogFile::c_emptyStr;
const std::string LogFile::c_emptyLine = "\n";

LogFile::LogFile()
    : m_sync(false),
      m_fd(c_closed),
      m_handlingError(false),
      m_printLineHeader(true),
      m_printLineTrailer(true) {}

LogFile::~LogFile() {
    Close();
}

bool LogFile::SetPrintLineHeader(const bool& value) {
    m_printLineHeader = value;
    return true;
}

bool LogFile::GetPrintLineHeader(bool& value) const {
    value = m_printLineHeader;
    return true;
}

bool LogFile::SetPrintLineTrailer(const bool& value) {
    m_printLineTrailer = value;
    return true;
}

bool LogFile::GetPrintLineTrailer(bool& value) const {
    value = m_printLineTrailer;
    return true;
}

// Not copies of c_emptyStr: a thread may still write a line when that is destroyed at exit.
std::string LogFile::FileHeader() const {
    return {};
}

std::string LogFile::AppendBanner() const {
    return {};
}

std::string LogFile::FileTrailer() const {
    return {};
}

std::string LogFile::LineHeader() const {
    return {};
}

std::string LogFile::LineTrailer() const {
    return {};
}

void LogFile::Error(int /*errorCode*/) {
    Close();
}

bool LogFile::Open(const std::string& fileName, bool sync) {
    using Found = LogFileInternals::Found;
    const CancellationOff cancellationOff;
    m_fileName = fileName;
    m_sync = sync;
    const Found found = LogFileInternals::OpenDescriptor(*this);
    if (found == Found::eNothing) {
        return false;
    }
    try {
        std::string block = found == Found::eData ? AppendBanner() : FileHeader();
        return block.empty() || WriteHeader(block);
    } catch (...) {
        // Without a block the object must not stay open: nobody would close it.
        if (!m_fileName.empty()) {
            close(m_fd);
        }
        m_fd = c_closed;
        throw;
    }
}

bool LogFile::Open() {
    return Open(c_emptyStr, false);
}

void LogFile::Close() {
    if (m_fd == c_closed) {
        return;
    }
    const CancellationOff cancellationOff;
    if (LogFileInternals::IsOnStandardOutput(*this) && !LateReports::IsHeld()) {
        internal::FlushStandardOutput();
    }
    const auto closer = Closer(m_fd);
    if (!WriteBlock(m_fd, FileTrailer())) {
        LateReports::LostTrailer(m_fileName);
    }
}

void LogFile::Write(const char* text, unsigned int /*length*/) {
    if (m_fd == c_closed) {
        return;
    }
    const CancellationOff cancellationOff;
    const std::string_view body(text);
    const std::string header = m_printLineHeader ? LineHeader() : std::string();
    const std::string trailer = m_printLineTrailer ? LineTrailer() : std::string();
    LineBuffer line(0, header.size() + body.size() + trailer.size());
    char* const begin = line.Text();
    char* const end = Put(Put(Put(Put(begin, header), body), trailer), "\n");
    LogFileInternals::WriteFinished(*this, {begin, static_cast<std::size_t>(end - begin)});
}

bool LogFile::WriteHeader(std::string& block) {
    const CancellationOff cancellationOff;
    if (!WriteBlock(m_fd, block)) {
        HandleError(errno);
        return false;
    }
    return m_fd != c_closed;
}

void LogFile::HandleError(int errorCode) {
    if (m_handlingError) {
        return;
    }
    m_handlingError = true;
    const internal::AtScopeEnd handled([this] { m_handlingError = false; });
    Error(errorCode);
}

LogFileInternals::Found LogFileInternals::OpenDescriptor(LogFile& file) {
    const std::string& name = file.m_fileName;
    file.m_fd = name.empty() ? c_standardOutput : OpenOrCreate(name.c_str());
    if (file.m_fd == c_standardOutput) {
        return Found::eEmpty;
    }
    // A failed open fails here too: there is nothing to position.
    const off_t end = lseek(file.m_fd, 0, SEEK_END);
    if (end == -1) {
        file.HandleError(errno);
        return Found::eNothing;
    }
    if (end != 0) {
        return Found::eData;
    }
    fchmod(file.m_fd, c_fileMode);
    return Found::eEmpty;
}

void LogFileInternals::CloseWith(LogFile& file, const std::string& trailer) {
    if (file.m_fd == c_closed) {
        return;
    }
    const auto closer = Closer(file.m_fd);
    if (!WriteBlock(file.m_fd, trailer)) {
        LateReports::LostTrailer(file.m_fileName);
    }
}

}  // namespace quor
