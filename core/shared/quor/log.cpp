#include <quor/log.h>

#include <quor/process.h>
#include <quor/ver_info.h>

#include <algorithm>
#include <iostream>

namespace quor {
namespace {

constexpr int c_formatFull = Time::eDate | Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_formatLine = Time::eDate | Time::eTimeOfDay;
constexpr std::size_t c_levelNameWidth = 8;
constexpr std::size_t c_headerRoom = 32;  // a stamp has at most 29 characters

}  // namespace

std::atomic<bool> Log::m_enabled{false};

struct Log::AtExit {
    AtExit() = default;
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    ~AtExit() { m_enabled = false; }
};

// Closes the file behind every message, also when memory ran out in its middle.
struct Log::FileCloser {
    explicit FileCloser(Log& log) : m_log(log) {}
    FileCloser(const FileCloser&) = delete;
    FileCloser& operator=(const FileCloser&) = delete;
    ~FileCloser() { m_log.Close(); }

    Log& m_log;
};

Log::Log() : m_levelNames{"Info", "Warning", "Error", "Critical"}, m_lineTime(c_formatLine) {
    // Built first, the trace ends later and takes the last messages.
    TraceFile::GetInstance();
    m_enabled = true;
}

Log::~Log() {
    m_enabled = false;
}

// The object itself stays: a thread may be logging while the process exits.
Log& Log::GetInstance() {
    static Log& instance = *new Log;
    static const AtExit atExit;
    return instance;
}

bool Log::Init(const std::string& fileName) {
    Log& log = GetInstance();
    if (fileName.empty()) {
        log.SetFileName(fileName);
        return false;
    }
    const FileCloser closer(log);
    return log.Open(fileName, false);
}

void Log::Info(const std::string& text) {
    WriteMessage(m_levelNames[0], text);
}

void Log::Warning(const std::string& text) {
    WriteMessage(m_levelNames[1], text);
}

void Log::Error(const std::string& text) {
    WriteMessage(m_levelNames[2], text);
}

void Log::Critical(const std::string& text) {
    WriteMessage(m_levelNames[3], text);
}

void Log::Error(int errorCode) {
    LogFile::Error(errorCode);
}

void Log::WriteMessage(const std::string& levelName, const std::string& text) {
    const TraceFile::ReportsLater reportsLater;
    const std::lock_guard<std::mutex> lock(m_mutex);
    LineRoom room(c_levelNameWidth + levelName.size() + sizeof(": ") + text.size());
    char* end = Put(room.Begin(), levelName);
    while (end < room.Begin() + c_levelNameWidth) {
        *end++ = ' ';
    }
    const std::string_view message = room.TextTo(Put(Put(end, ": "), text));
    if (!WriteToFile(message) && !TraceFile::GetInstance().IsActive()) {
        std::cout << message << '\n';
    }
    QUOR_TRACE(Low, message);
}

bool Log::WriteToFile(std::string_view message) {
    if (FileName().empty()) {
        return false;
    }
    const FileCloser closer(*this);
    if (!Open(FileName(), false)) {
        return false;
    }
    LineRoom room(c_headerRoom + message.size() + 1);
    char* const end = Put(PutHeader(room.Begin()), message.substr(0, message.find('\0')));
    WriteFinished(room.TextTo(Put(end, "\n")));
    return true;
}

std::string Log::FileHeader() const {
    const std::string rule = std::string(79, '-') + "\n";
    return rule + "* *****Logging started *****\n\n" +                //
           "* Version       : " + VerInfo::VersionString() + "\n" +   //
           "* Start time    : " + Time(c_formatFull).Text() + "\n" +  //
           "* Process name  : " + GetProgName() + "\n" + rule + "\n";
}

std::string Log::LineHeader() const {
    char header[c_headerRoom];
    return {header, PutHeader(header)};
}

char* Log::PutHeader(char* end) const {
    return Put(Put(Put(end, "["), m_lineTime.CurrentText(m_lineZone)), "] ");
}

}  // namespace quor
