#include <quor/trace_file.h>

#include <quor/detail/trace_gate.h>
#include <quor/internal/joined.h>
#include <quor/internal/log_file_internals.h>
#include <quor/internal/numbered_stack.h>
#include <quor/internal/opening_block.h>
#include <quor/internal/standard_output.h>
#include <quor/internal/trace_file_internals.h>
#include <quor/process.h>

#include <cstdio>

namespace quor {

using internal::LogFileInternals;
using Internals = internal::TraceFileInternals;

namespace {

constexpr int c_stackDepth = 64;

std::string OpeningBlock(const char* event) {
    return internal::OpeningBlock(event, internal::Joined({"* Process id    : ", GetPid(), "\n"}));
}

}  // namespace

std::atomic<int> detail::g_traceGate{detail::c_traceGateClosed};

TraceFile::TraceFile()
    : m_level(Off),
      m_active(false),
      m_lineTime(Time::eTimeOfDay | Time::eNanoSec),
      m_printFile(false),
      m_printLine(true),
      m_dumpStack(false) {}

TraceFile::~TraceFile() {
    Close();
}

void TraceFile::Init(const std::string& fileName, const std::string& directory) {
    TraceFile& instance = GetInstance();
    std::string newName(fileName);
    std::string newDirectory(directory);
    const std::lock_guard<std::mutex> lock(instance.m_mutex);
    instance.m_traceFileName.swap(newName);
    instance.m_traceDirectory.swap(newDirectory);
}

void TraceFile::Start(TraceLevel_e level) {
    const Internals::Access access(*this);
    Internals::Start(*this, level);
}

void Internals::Start(TraceFile& trace, TraceLevel_e level) {
    if (!LogFileInternals::IsOpen(trace) && level != Off && !s_ended) {
        const bool opened = trace.Open(NameToOpen(trace), false);
        SetState(trace, level, opened);
    }
}

std::string Internals::NameToOpen(const TraceFile& trace) {
    const std::string& name = trace.m_traceFileName;
    if (name.empty() || name == "-") {
        return {};
    }
    if (name == "+") {
        return GeneratedName(trace);
    }
    return trace.m_traceDirectory.empty() ? name
                                          : internal::Joined({trace.m_traceDirectory, "/", name});
}

void TraceFile::Stop() {
    Internals::FlushBeforeClose(*this);
    const Internals::Access access(*this);
    Internals::Stop(*this);
}

void Internals::Stop(TraceFile& trace) {
    SetState(trace, trace.m_level, false);
    trace.Close();
}

void Internals::FlushBeforeClose(TraceFile& trace) {
    {
        const Access access(trace);
        if (!LogFileInternals::IsOnStandardOutput(trace)) {
            return;
        }
    }
    FlushStandardOutput();
}

// The gate stays as it is in between: a closed one would cost lines.
void TraceFile::Reopen() {
    using Found = LogFileInternals::Found;
    const Internals::Access access(*this);
    const bool paused = LogFileInternals::IsOpen(*this) && !m_active;
    if (Internals::s_ended || m_level == Off || LogFileInternals::FileName(*this).empty() ||
        !(m_active || paused)) {
        return;
    }
    // Built first: if memory is short, nothing changes.
    const std::string trailer = FileTrailer();
    std::string header = FileHeader();
    std::string banner = AppendBanner();
    LogFileInternals::CloseWith(*this, trailer);
    const Found found = LogFileInternals::OpenDescriptor(*this);
    const bool opened =
        found != Found::eNothing && WriteHeader(found == Found::eData ? banner : header);
    Internals::SetState(*this, m_level, opened && !paused);
}

void TraceFile::Pause() {
    const Internals::Access access(*this);
    Internals::WriteEntry(*this, "*** Tracing paused. ***");
    Internals::SetState(*this, m_level, false);
}

void TraceFile::Continue() {
    const Internals::Access access(*this);
    if (!Internals::s_ended) {
        Internals::WriteEntry(*this, "*** Tracing continued. ***");
        Internals::SetState(*this, m_level, true);
    }
}

bool TraceFile::SetLevel(const TraceLevel_e& level) {
    const TraceLevel_e wanted = level;
    if (wanted == Off) {
        Internals::FlushBeforeClose(*this);
    }
    const Internals::Access access(*this);
    if (wanted == m_level) {
        return true;
    }
    if (!m_active) {
        Internals::Start(*this, wanted);
    }
    // Nothing from here to Stop() allocates: it could not be made up for by another call.
    Internals::SetState(*this, wanted, m_active && wanted != Off);
    m_dumpStack = wanted == Off ? m_dumpStack.load() : wanted == Detail;
    char text[48];
    std::snprintf(text, sizeof(text), "*** Trace level changed to %d", wanted);
    Internals::WriteEntry(*this, text);
    if (wanted == Off) {
        Internals::Stop(*this);
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

void Internals::SetState(TraceFile& trace, TraceLevel_e level, bool active) {
    trace.m_level = level;
    active = active && !s_ended;
    trace.m_active = active;
    detail::g_traceGate.store(active ? static_cast<int>(level) : detail::c_traceGateClosed,
                              std::memory_order_relaxed);
}

void TraceFile::Trace(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                      const std::string& text) {
    Internals::WriteText(level, file, line, text.c_str());
}

__attribute__((noinline)) void TraceFile::DumpStack() {
    if (!m_active || !m_dumpStack) {
        return;
    }
    const std::string entry = internal::NumberedStack(GetExecutionStack(c_stackDepth));
    const Internals::Access access(*this);
    if (m_active) {
        Internals::WriteEntry(*this, entry);
    }
}

std::string TraceFile::GeneratedTraceFileName() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return Internals::GeneratedName(*this);
}

std::string Internals::GeneratedName(const TraceFile& trace) {
    const std::string& directory = trace.m_traceDirectory;
    return internal::Joined(
        {directory.empty() ? "." : directory.c_str(), "/", GetProgName(), "_", GetPid(), ".log"});
}

std::string TraceFile::FileHeader() const {
    return OpeningBlock(" Trace started");
}

std::string TraceFile::AppendBanner() const {
    return OpeningBlock(" Trace appended");
}

std::string TraceFile::FileTrailer() const {
    return internal::Joined({"\n", internal::c_rule, "* ***** Trace stopped *****\n\n",  //
                             "* End time      : ", internal::FullTime(), "\n", internal::c_rule});
}

std::string TraceFile::LineHeader() const {
    return Internals::LineHead(*this);
}

}  // namespace quor
