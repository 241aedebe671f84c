#include <quor/log.h>

#include <quor/internal/at_scope_end.h>
#include <quor/internal/cancellation_off.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/line_buffer.h>
#include <quor/internal/log_file_internals.h>
#include <quor/internal/opening_block.h>
#include <quor/internal/time_text.h>
#include <quor/internal/trace_file_internals.h>

#include <algorithm>
#include <iostream>

namespace quor {

using internal::LogFileInternals;
using internal::Put;
using internal::RoomyText;

namespace {

constexpr std::size_t c_levelNameWidth = 8;
// Room for the head of the log's line, and then of the trace's.
constexpr std::size_t c_gap = internal::c_lineGap;

internal::ShownZone g_zone;  // of the latest stamp; guarded by the log's mutex

struct AtExit {
    AtExit() = default;
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    ~AtExit() { Log::m_enabled = false; }
};

}  // namespace

namespace internal {

struct LogInternals {
    // Closes the file behind every message, also if memory runs out in between.
    static auto FileCloser(Log& log) {
        return AtScopeEnd([&log] { log.Close(); });
    }

    static Log& MakeInstance() {
        // Built first, the trace ends later and takes the last messages.
        TraceFile::GetInstance();
        return *new Log;
    }

    static char* PutHeadBefore(char* begin, const Time& lineTime) {
        return PutBefore(PutBefore(PutBefore(begin, "] "), TimeText::Now(lineTime, g_zone)), "[");
    }

    // Returns false if there is no file.
    static bool WriteToFile(Log& log, const RoomyText& message) {
        if (LogFileInternals::FileName(log).empty()) {
            return false;
        }
        const auto closer = FileCloser(log);
        if (!log.Open(LogFileInternals::FileName(log), false)) {
            return false;
        }
        const char* const begin = PutHeadBefore(message.begin, log.m_lineTime);
        *message.end = '\n';
        LogFileInternals::WriteFinished(log,
                                        {begin, static_cast<std::size_t>(message.end + 1 - begin)});
        return true;
    }
};

}  // namespace internal

std::atomic<bool> Log::m_enabled{false};

Log::Log()
    : m_levelNames{"Info", "Warning", "Error", "Critical"},
      m_lineTime(Time::eDate | Time::eTimeOfDay) {
    m_enabled = true;
}

Log::~Log() {
    m_enabled = false;
}

// The object itself stays: a thread may be logging while the process exits.
Log& Log::GetInstance() {
    static Log& instance = internal::LogInternals::MakeInstance();
    static const AtExit atExit;
    return instance;
}

bool Log::Init(const std::string& fileName) {
    Log& log = GetInstance();
    if (fileName.empty()) {
        LogFileInternals::SetFileName(log, fileName);
        return false;
    }
    const auto closer = internal::LogInternals::FileCloser(log);
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
    const internal::CancellationOff cancellationOff;
    const internal::LateReports reports;
    const std::lock_guard<std::mutex> lock(m_mutex);
    internal::LineBuffer room(c_gap,
                              c_levelNameWidth + levelName.size() + sizeof(": ") + text.size());
    char* const begin = room.Text();
    char* end = Put(begin, levelName);
    while (end < begin + c_levelNameWidth) {
        *end++ = ' ';
    }
    end = Put(Put(end, ": "), text);
    const std::string_view whole(begin, static_cast<std::size_t>(end - begin));
    // Lines end at the text's first NUL.
    const RoomyText message{begin, begin + std::min(whole.find('\0'), whole.size()), c_gap};
    TraceFile& trace = TraceFile::GetInstance();
    if (!internal::LogInternals::WriteToFile(*this, message) && !trace.IsActive()) {
        std::cout << whole << '\n';
    }
    if (TraceGateOpen(Low)) {
        internal::TraceFileInternals::WriteLine(trace, Low, "log", __LINE__, message);
    }
}

std::string Log::FileHeader() const {
    return internal::OpeningBlock("Logging started", "");
}

std::string Log::LineHeader() const {
    char room[c_gap];
    char* const end = room + c_gap;
    return {internal::LogInternals::PutHeadBefore(end, m_lineTime), end};
}

}  // namespace quor
