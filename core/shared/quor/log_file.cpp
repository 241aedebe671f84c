#include <quor/log_file.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace quor {
namespace {

constexpr int c_closed = -1;
constexpr int c_standardOutput = 1;
constexpr mode_t c_fileMode = 0666;
constexpr int c_openFlags = O_WRONLY | O_APPEND;

// A thread cancelled in the middle of a line would lose it, and cancellation that unwinds through a
// destructor or a constructor declared not to throw would end the process.
class CancellationOff {
public:
    CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_previous); }
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;
    ~CancellationOff() { pthread_setcancelstate(m_previous, nullptr); }

private:
    int m_previous = PTHREAD_CANCEL_ENABLE;
};

class FlagGuard {
public:
    explicit FlagGuard(bool& flag) : m_flag(flag) { m_flag = true; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;
    ~FlagGuard() { m_flag = false; }

private:
    bool& m_flag;
};

// Closes even when the trailer's text could not be had.
class DescriptorCloser {
public:
    explicit DescriptorCloser(int& fd) : m_fd(fd) {}
    DescriptorCloser(const DescriptorCloser&) = delete;
    DescriptorCloser& operator=(const DescriptorCloser&) = delete;
    ~DescriptorCloser() {
        close(m_fd);
        m_fd = c_closed;
    }

private:
    int& m_fd;
};

// An empty block costs no call; the log's opening and closing blocks mostly are.
bool WriteBlock(int fd, const std::string& block) {
    return block.empty() || write(fd, block.data(), block.size()) >= 0;
}

// Gives a file that this process created its mode. The creation mask is the whole process's: to
// clear it, even for a moment, would open up what other threads create meanwhile.
int Create(const char* fileName) {
    int fd = open(fileName, c_openFlags | O_CREAT | O_EXCL, c_fileMode);
    if (fd == c_closed && errno == EEXIST) {
        // Another process was faster, or the name is a link to a missing file.
        fd = open(fileName, c_openFlags | O_CREAT, c_fileMode);
        struct stat status {};
        if (fd == c_closed || fstat(fd, &status) != 0 || status.st_size != 0) {
            return fd;
        }
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
    const CancellationOff cancellationOff;
    m_fileName = fileName;
    m_sync = sync;
    m_fd = m_fileName.empty() ? c_standardOutput : OpenOrCreate(m_fileName.c_str());
    bool append = false;
    if (m_fd != c_standardOutput) {
        // A failed open fails here too: there is nothing to position.
        const off_t end = lseek(m_fd, 0, SEEK_END);
        if (end == -1) {
            HandleError(errno);
            return false;
        }
        append = end != 0;
        if (!append) {
            chmod(m_fileName.c_str(), c_fileMode);
        }
    }
    return WriteOpeningBlock(append);
}

bool LogFile::WriteOpeningBlock(bool append) {
    try {
        std::string block = append ? AppendBanner() : FileHeader();
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
    if (!CloseSilently()) {
        ReportLostTrailer(m_fileName);
    }
}

bool LogFile::CloseSilently() {
    if (m_fd == c_closed) {
        return true;
    }
    const CancellationOff cancellationOff;
    const DescriptorCloser closer(m_fd);
    return WriteBlock(m_fd, FileTrailer());
}

void LogFile::ReportLostTrailer(const std::string& fileName) {
    const CancellationOff cancellationOff;
    std::cerr << "Unable to write to log file: " << fileName << std::endl;
}

void LogFile::Write(const char* text, unsigned int /*length*/) {
    if (m_fd == c_closed) {
        return;
    }
    const CancellationOff cancellationOff;
    const std::string_view body(text);
    const std::string header = m_printLineHeader ? LineHeader() : std::string();
    const std::string trailer = m_printLineTrailer ? LineTrailer() : std::string();
    LineRoom room(header.size() + body.size() + trailer.size() + 1);
    WriteFinished(room.TextTo(Put(Put(Put(Put(room.Begin(), header), body), trailer), "\n")));
}

void LogFile::WriteFinished(std::string_view line) {
    const CancellationOff cancellationOff;
    if (write(m_fd, line.data(), line.size()) < 0) {
        HandleError(errno);
    }
    if (m_sync && m_fd != c_standardOutput) {
        fsync(m_fd);
    }
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
    const FlagGuard guard(m_handlingError);
    Error(errorCode);
}

}  // namespace quor
