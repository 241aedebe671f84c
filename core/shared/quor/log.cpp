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
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string message(levelName);
    message.resize(std::max(message.size(), c_levelNameWidth), ' ');
    message += ": ";
    message += text;
    if (!WriteToFile(message) && !TraceFile::GetInstance().IsActive()) {
        std::cout << message << '\n';
    }
    QUOR_TRACE(Low, message);
}

bool Log::WriteToFile(const std::string& message) {
    if (FileName().empty()) {
        return false;
    }
    const FileCloser closer(*this);
    if (!Open(FileName(), false)) {
        return false;
    }
    Write(message.c_str(), static_cast<unsigned int>(message.size()));
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
    m_lineTime.UpdateToCurrent();
    return std::string("[") + m_lineTime.Text() + "] ";
}

}  // namespace quor
