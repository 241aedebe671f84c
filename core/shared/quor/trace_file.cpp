#include <quor/trace_file.h>

#include <quor/process.h>
#include <quor/ver_info.h>

#include <cstdio>
#include <vector>

namespace quor {
namespace {

constexpr int c_formatFull = Time::eDate | Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_formatLine = Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_stackDepth = 64;

std::string Rule() {
    return std::string(79, '-') + "\n";
}

}  // namespace

std::atomic<int> TraceFile::m_gate{TraceFile::c_gateClosed};

// Ends the trace among the static objects of the process.
struct TraceFile::AtExit {
    explicit AtExit(TraceFile& traceFile) : m_traceFile(traceFile) {}
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    ~AtExit() { m_traceFile.End(); }

    TraceFile& m_traceFile;
};

TraceFile::TraceFile()
    : m_level(Off),
      m_active(false),
      m_lineTime(c_formatLine),
      m_printFile(false),
      m_printLine(true),
      m_dumpStack(false),
      m_ended(false) {}

TraceFile::~TraceFile() {
    Close();
}

// The object itself stays: a thread may wait for its mutex while the process exits.
TraceFile& TraceFile::GetInstance() {
    static TraceFile& instance = *new TraceFile;
    static const AtExit atExit(instance);
    return instance;
}

void TraceFile::Init(const std::string& fileName, const std::string& directory) {
    TraceFile& instance = GetInstance();
    const std::lock_guard<std::mutex> lock(instance.m_mutex);
    instance.m_traceFileName = fileName;
    instance.m_traceDirectory = directory;
}

void TraceFile::Start(TraceLevel_e level) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    StartLocked(level);
}

void TraceFile::StartLocked(TraceLevel_e level) {
    if (IsOpen() || level == Off || m_ended) {
        return;
    }
    SetState(level, false);
    SetState(level, OpenChosenFile());
}

bool TraceFile::OpenChosenFile() {
    if (m_traceFileName.empty() || m_traceFileName == "-") {
        return Open();
    }
    if (m_traceFileName == "+") {
        return Open(GeneratedNameLocked(), false);
    }
    if (m_traceDirectory.empty()) {
        return Open(m_traceFileName, false);
    }
    return Open(m_traceDirectory + "/" + m_traceFileName, false);
}

void TraceFile::Stop() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    StopLocked();
}

void TraceFile::StopLocked() {
    SetState(m_level, false);
    Close();
}

void TraceFile::End() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ended = true;
    StopLocked();
}

void TraceFile::Pause() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    WriteEntry("*** Tracing paused. ***");
    SetState(m_level, false);
}

void TraceFile::Continue() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_ended) {
        return;
    }
    WriteEntry("*** Tracing continued. ***");
    SetState(m_level, true);
}

bool TraceFile::SetLevel(const TraceLevel_e& level) {
    const TraceLevel_e wanted = level;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (wanted == m_level) {
        return true;
    }
    if (!m_active) {
        StartLocked(wanted);
    }
    SetState(wanted, m_active);
    WriteEntry("*** Trace level changed to " + std::to_string(wanted));
    if (wanted == Off) {
        StopLocked();
    } else {
        m_dumpStack = wanted == Detail;
    }
    return true;
}

bool TraceFile::GetLevel(TraceLevel_e& level) const {
    level = m_level;
    return true;
}

bool TraceFile::SetPrintFile(const bool& value) {
    m_printFile = value;
    return true;
}

bool TraceFile::GetPrintFile(bool& value) const {
    value = m_printFile;
    return true;
}

bool TraceFile::SetPrintLine(const bool& value) {
    m_printLine = value;
    return true;
}

bool TraceFile::GetPrintLine(bool& value) const {
    value = m_printLine;
    return true;
}

bool TraceFile::SetDumpStack(const bool& value) {
    m_dumpStack = value;
    return true;
}

bool TraceFile::GetDumpStack(bool& value) const {
    value = m_dumpStack;
    return true;
}

void TraceFile::SetState(TraceLevel_e level, bool active) {
    m_level = level;
    m_active = active;
    m_gate.store(active ? static_cast<int>(level) : c_gateClosed, std::memory_order_relaxed);
}

void TraceFile::WriteEntry(const std::string& text) {
    Write(text.c_str(), static_cast<unsigned int>(text.size()));
}

void TraceFile::Trace(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                      const std::string& text) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (level <= Off || level > m_level || !IsOpen()) {
        return;
    }
    const bool printFile = m_printFile;
    const bool printLine = m_printLine;
    std::string entry;
    if (printFile) {
        entry += file;
    }
    if (printLine) {
        char number[16];
        std::snprintf(number, sizeof(number), "%4d", line);
        entry += number;
    }
    if (printFile || printLine) {
        entry += ": ";
    }
    entry += text;
    WriteEntry(entry);
}

__attribute__((noinline)) void TraceFile::DumpStack() {
    if (!m_active || !m_dumpStack) {
        return;
    }
    std::string entry;
    int index = 0;
    for (const std::string& frame : GetExecutionStack(c_stackDepth)) {
        entry += std::to_string(index++) + ". " + frame + "\n";
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_active) {
        WriteEntry(entry);
    }
}

std::string TraceFile::GeneratedTraceFileName() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return GeneratedNameLocked();
}

std::string TraceFile::GeneratedNameLocked() const {
    return (m_traceDirectory.empty() ? "." : m_traceDirectory) + "/" + GetProgName() + "_" +
           std::to_string(GetPid()) + ".log";
}

std::string TraceFile::OpeningBlock(const char* event) const {
    return Rule() + "* ***** Trace " + event + " *****\n\n" +         //
           "* Version       : " + VerInfo::VersionString() + "\n" +   //
           "* Start time    : " + Time(c_formatFull).Text() + "\n" +  //
           "* Process name  : " + GetProgName() + "\n" +              //
           "* Process id    : " + std::to_string(GetPid()) + "\n" +   //
           Rule() + "\n";
}

std::string TraceFile::FileHeader() const {
    return OpeningBlock("started");
}

std::string TraceFile::AppendBanner() const {
    return OpeningBlock("appended");
}

std::string TraceFile::FileTrailer() const {
    return "\n" + Rule() + "* ***** Trace stopped *****\n\n" +  //
           "* End time      : " + Time(c_formatFull).Text() + "\n" + Rule();
}

std::string TraceFile::LineHeader() const {
    m_lineTime.UpdateToCurrent();
    char header[64];
    std::snprintf(header, sizeof(header), "[%05ld: %s] ", static_cast<long>(GetTid()),
                  m_lineTime.Text());
    return header;
}

}  // namespace quor
