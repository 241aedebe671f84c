#include <quor/trace_file.h>

#include <quor/process.h>
#include <quor/ver_info.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

namespace quor {
namespace {

constexpr int c_formatFull = Time::eDate | Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_formatLine = Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_stackDepth = 64;

constexpr std::size_t c_stampLength = 20;  // "15:53:46.123456789] "
constexpr std::size_t c_roomOfNumber = 16;
// Room for all of a line but the file's name and the text.
constexpr std::size_t c_roomOfFrame = 80;

std::string Rule() {
    return std::string(79, '-') + "\n";
}

class ErrnoKeeper {
public:
    ErrnoKeeper() : m_errno(errno) {}
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = m_errno; }

private:
    int m_errno;
};

// As "%4d" prints it.
char* PutLineNumber(char* end, int number) {
    if (number < 0 || number > 9999) {
        return end + std::snprintf(end, c_roomOfNumber, "%4d", number);
    }
    std::memset(end, ' ', 4);
    char* digit = end + 4;
    auto rest = static_cast<unsigned>(number);
    do {
        *--digit = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    return end + 4;
}

// A word that reads 0 in every new process, since the kernel wipes its page on fork, even on one
// that went round the C library. Null where the kernel refuses.
std::atomic<unsigned>* MapProcessWord() {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) {
        return nullptr;
    }
    // An emulator that takes any advice, and follows none, also takes one that does not exist.
    if (madvise(page, size, MADV_WIPEONFORK) != 0 || madvise(page, size, -1) == 0) {
        munmap(page, size);
        return nullptr;
    }
    return new (page) std::atomic<unsigned>(0);
}

// The start of this thread's lines in this process, "[01234: ".
struct LineStart {
    unsigned process;  // what the process word was
    unsigned length;
    char text[c_roomOfNumber];
};

// In the room that the C library sets aside for libraries loaded late, to be read without a call.
__attribute__((tls_model("initial-exec"))) thread_local LineStart t_lineStart{};

// Null until the first line, and where the kernel refuses.
std::atomic<std::atomic<unsigned>*> g_processWord(nullptr);

__attribute__((noinline)) void RenewLineStart() {
    static std::atomic<unsigned> processes(0);  // grows from parent to child, as fork copies it
    static std::atomic<unsigned>* const word = MapProcessWord();
    g_processWord = word;
    unsigned process = 0;
    if (word != nullptr) {
        const unsigned next = ++processes;
        process = word->compare_exchange_strong(process, next) ? next : process;
    }
    LineStart& start = t_lineStart;
    start.length =
        static_cast<unsigned>(std::snprintf(start.text, sizeof(start.text), "[%05d: ", GetTid()));
    start.process = process;
}

// A thread asks the kernel for its id only once in each process: a system call is dear. A child
// that shares this memory (CLONE_VM) needs a thread area of its own, as the C library wants too.
const LineStart& LineStartOfThread() {
    const std::atomic<unsigned>* const word = g_processWord;
    if (word == nullptr || t_lineStart.process == 0 || t_lineStart.process != word->load()) {
        RenewLineStart();
    }
    return t_lineStart;
}

// "[01234: ", and a gap for the stamp and its bracket. All of the array is copied: a fixed size
// needs no call.
char* PutHeader(char* end) {
    const LineStart& start = LineStartOfThread();
    std::memcpy(end, start.text, sizeof(start.text));
    return end + start.length + c_stampLength;
}

// What this thread has to say on std::cerr once the last of its guards is gone.
struct Reports {
    unsigned guards;
    bool due;
};
__attribute__((tls_model("initial-exec"))) thread_local Reports t_reports{};

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

// Each of a thread's guards is within the one before it.
TraceFile::ReportsLater::ReportsLater() {
    ++t_reports.guards;
}

TraceFile::ReportsLater::~ReportsLater() {
    if (--t_reports.guards == 0 && t_reports.due) {
        t_reports.due = false;
        GetInstance().ReportFailure();
    }
}

// Holds m_mutex, and reports when it is free again.
struct TraceFile::Access {
    explicit Access(TraceFile& trace) : m_lock(trace.m_mutex) {}

    ReportsLater m_reportsLater;
    std::lock_guard<std::mutex> m_lock;
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
    static TraceFile& instance = MakeInstance();
    return instance;
}

TraceFile& TraceFile::MakeInstance() {
    auto& instance = *new TraceFile;
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
    const Access access(*this);
    StartLocked(level);
}

void TraceFile::StartLocked(TraceLevel_e level) {
    if (IsOpen() || level == Off || m_ended) {
        return;
    }
    SetState(level, false);
    SetState(level, OpenChosenFile());
}

bool TraceFile::IsOnStandardOutput() const {
    return m_traceFileName.empty() || m_traceFileName == "-";
}

bool TraceFile::OpenChosenFile() {
    if (IsOnStandardOutput()) {
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
    const Access access(*this);
    StopLocked();
}

void TraceFile::StopLocked() {
    SetState(m_level, false);
    CloseLocked();
}

void TraceFile::CloseLocked() {
    t_reports.due |= !CloseSilently();
}

__attribute__((noinline)) void TraceFile::ReportFailure() noexcept {
    try {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::string fileName = FileName();
        lock.unlock();
        ReportLostTrailer(fileName);
    } catch (...) {
        // A want of memory, or the host's stream, must not do more harm than the full disk.
    }
}

void TraceFile::Error(int /*errorCode*/) {
    CloseLocked();
}

// The gate stays as it is in between: a closed one would cost lines.
void TraceFile::Reopen() {
    const Access access(*this);
    const bool paused = IsOpen() && !m_active;
    if (m_ended || IsOnStandardOutput() || !(m_active || paused)) {
        return;
    }
    CloseLocked();
    const bool opened = OpenChosenFile();
    SetState(m_level, opened && !paused);
}

void TraceFile::End() {
    const Access access(*this);
    m_ended = true;
    StopLocked();
}

void TraceFile::Pause() {
    const Access access(*this);
    WriteEntry("*** Tracing paused. ***");
    SetState(m_level, false);
}

void TraceFile::Continue() {
    const Access access(*this);
    if (m_ended) {
        return;
    }
    WriteEntry("*** Tracing continued. ***");
    SetState(m_level, true);
}

bool TraceFile::SetLevel(const TraceLevel_e& level) {
    const TraceLevel_e wanted = level;
    const Access access(*this);
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
    TraceLine(level, file, line, text.c_str());
}

void TraceFile::TraceLine(TraceLevel_e level, const char* file, int line, const char* text) {
    const ErrnoKeeper keeper;
    TraceFile& trace = GetInstance();
    if (level <= Off || level > trace.m_level) {
        return;
    }
    const bool printFile = trace.m_printFile;
    const bool printLine = trace.m_printLine;
    const std::string_view source(printFile ? file : "");
    const std::string_view message(text);
    LineRoom room(c_roomOfFrame + source.size() + message.size());
    char* const header = room.Begin();
    char* const body = trace.PrintsLineHeader() ? PutHeader(header) : header;
    char* end = body;
    if (printFile) {
        end = Put(end, source);
    }
    if (printLine) {
        end = PutLineNumber(end, line);
    }
    if (printFile || printLine) {
        end = Put(end, ": ");
    }
    end = Put(Put(end, message), "\n");

    const Access access(trace);
    if (level > trace.m_level || !trace.IsOpen()) {
        return;
    }
    if (body != header) {
        trace.PutStamp(body);
    }
    trace.WriteFinished({header, static_cast<std::size_t>(end - header)});
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
    const Access access(*this);
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
    char header[c_roomOfFrame];
    char* const end = PutHeader(header);
    PutStamp(end);
    return {header, end};
}

void TraceFile::PutStamp(char* end) const {
    const std::string_view timeOfDay(m_lineTime.CurrentText(m_lineZone), c_stampLength - 2);
    Put(Put(end - c_stampLength, timeOfDay), "] ");
}

}  // namespace quor
