#include <quor/trace_file.h>

#include <quor/process.h>
#include <quor/ver_info.h>

#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace quor {
namespace {

constexpr int c_formatFull = Time::eDate | Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_formatLine = Time::eTimeOfDay | Time::eNanoSec;
constexpr int c_stackDepth = 64;

constexpr std::size_t c_secondLength = 8;  // "15:53:46"
constexpr std::size_t c_stampLength = 18;  // "15:53:46.123456789"
// Room for all of a line but the file's name and the text: two numbers, which take 16 characters
// while they are written, the stamp and the punctuation.
constexpr std::size_t c_roomOfFrame = 80;

std::string Rule() {
    return std::string(79, '-') + "\n";
}

// Text of a known greatest size, on the stack unless it is long.
class LineBuffer {
public:
    explicit LineBuffer(std::size_t room)
        : m_heap(room > sizeof(m_stack) ? new char[room] : nullptr),
          m_begin(m_heap != nullptr ? m_heap.get() : m_stack),
          m_end(m_begin) {}
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;
    ~LineBuffer() = default;

    void Append(std::string_view text) {
        std::memcpy(m_end, text.data(), text.size());
        m_end += text.size();
    }
    // In decimal, padded on the left.
    template <char Padding>
    void Append(int number, int width);
    // `length` characters out of a whole array: a copy of a fixed size needs no call.
    template <std::size_t Size>
    void AppendFixed(const char (&text)[Size], std::size_t length) {
        std::memcpy(m_end, text, Size);
        m_end += length;
    }
    // Leaves a gap for what is known later.
    char* Skip(std::size_t size) {
        char* const gap = m_end;
        m_end += size;
        return gap;
    }

    std::string_view Text() const { return {m_begin, static_cast<std::size_t>(m_end - m_begin)}; }

private:
    char m_stack[640];
    std::unique_ptr<char[]> m_heap;
    char* m_begin;
    char* m_end;
};

// The texts "00" to "99": two digits are had for one division.
struct DigitPairs {
    constexpr DigitPairs() : m_pairs{} {
        for (unsigned number = 0; number < 100; ++number) {
            m_pairs[number][0] = static_cast<char>('0' + number / 10);
            m_pairs[number][1] = static_cast<char>('0' + number % 10);
        }
    }
    void Put(char* text, unsigned number) const { std::memcpy(text, m_pairs[number], 2); }

    char m_pairs[100][2];
};
constexpr DigitPairs c_digitPairs;

// Writes the digits of `number` to the left of `end`; gives where they begin. A zero may stand in
// front of them.
char* DigitsBefore(char* end, unsigned number) {
    for (; number >= 100; number /= 100) {
        c_digitPairs.Put(end -= 2, number % 100);
    }
    c_digitPairs.Put(end -= 2, number);
    return number < 10 ? end + 1 : end;
}

// Writes twice so many digits, zeros in front included.
template <int Pairs>
void DigitsOfFixedWidth(char* text, unsigned number) {
    if constexpr (Pairs > 1) {
        DigitsOfFixedWidth<Pairs - 1>(text, number / 100);
    }
    c_digitPairs.Put(text + 2 * (Pairs - 1), number % 100);
}

template <char Padding>
void LineBuffer::Append(int number, int width) {
    constexpr std::size_t c_copied = 16;  // any number; a fixed size needs no call
    char digits[2 * c_copied];
    std::memset(digits, Padding, sizeof(digits));
    char* const end = digits + c_copied;
    const bool negative = number < 0;
    char* begin = DigitsBefore(
        end, negative ? 0U - static_cast<unsigned>(number) : static_cast<unsigned>(number));
    begin[-1] = Padding;  // not the zero in front of a single digit
    if (negative) {
        *--begin = '-';
    }
    begin = std::min(begin, end - width);
    std::memcpy(m_end, begin, c_copied);
    m_end += end - begin;
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

// The start of this thread's lines in this process.
struct LineStart {
    unsigned process;  // what the process word was
    unsigned length;
    char text[16];  // "[01234: "
};

void SetLineStart(LineStart& start, unsigned process) {
    LineBuffer text(sizeof(start.text));
    text.Append("[");
    text.Append<'0'>(GetTid(), 5);
    text.Append(": ");
    start.length = static_cast<unsigned>(text.Text().copy(start.text, sizeof(start.text)));
    start.process = process;
}

// A thread asks the kernel for its id only once in each process: a system call is dear. A child
// that shares this memory (CLONE_VM) needs a thread area of its own, as the C library wants too.
const LineStart& LineStartOfThread() {
    static std::atomic<unsigned>* const processWord = MapProcessWord();
    static std::atomic<unsigned> processes(0);  // grows from parent to child, as fork copies it
    static thread_local LineStart startOfThread{};
    LineStart& start = startOfThread;  // looked up once
    unsigned process = processWord != nullptr ? processWord->load() : 0;
    if (process != 0 && process == start.process) {
        return start;
    }
    if (process == 0 && processWord != nullptr) {
        const unsigned next = ++processes;
        process = processWord->compare_exchange_strong(process, next) ? next : process;
    }
    SetLineStart(start, process);
    return start;
}

// What the C library shows of the time zone. It is not locked against tzset() in another thread,
// which at worst makes a kept second look out of date. Zones that differ in nothing but the days
// on which summer time begins and ends look alike.
class ZoneView {
public:
    static ZoneView Current() {
        ZoneView view;
        view.m_names[0] = __atomic_load_n(&tzname[0], __ATOMIC_RELAXED);
        view.m_names[1] = __atomic_load_n(&tzname[1], __ATOMIC_RELAXED);
        view.m_offset = __atomic_load_n(&timezone, __ATOMIC_RELAXED);
        view.m_summerTime = __atomic_load_n(&daylight, __ATOMIC_RELAXED);
        return view;
    }
    // The names are never freed, and equal names are one.
    bool operator==(const ZoneView& other) const {
        return m_names[0] == other.m_names[0] && m_names[1] == other.m_names[1] &&
               m_offset == other.m_offset && m_summerTime == other.m_summerTime;
    }

private:
    const char* m_names[2]{};
    long m_offset = 0;
    int m_summerTime = 0;
};

// The latest second that a line was stamped with. To break a second down costs more than the rest
// of the line, so it is done once as long as second and zone stay the same.
struct KeptSecond {
    void Keep(time_t second, const ZoneView& zone, const char* timeOfDay) {
        m_second = second;
        m_zone = zone;
        std::memcpy(m_text, timeOfDay, c_secondLength);
    }

    time_t m_second = 0;
    ZoneView m_zone;  // at first that of no zone
    char m_text[c_secondLength]{};
};
KeptSecond g_keptSecond;  // guarded by the trace file's mutex

// "[01234: ", the gap for the stamp, "] "; gives the gap.
char* AppendHeader(LineBuffer& line) {
    const LineStart& start = LineStartOfThread();
    line.AppendFixed(start.text, start.length);
    char* const stamp = line.Skip(c_stampLength);
    line.Append("] ");
    return stamp;
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
    TraceLine(level, file, line, {}, text.c_str());
}

void TraceFile::TraceLine(TraceLevel_e level, const char* file, int line, std::string_view mark,
                          const char* text) {
    if (level <= Off || level > m_level) {
        return;
    }
    bool printHeader = true;
    GetPrintLineHeader(printHeader);
    const bool printFile = m_printFile;
    const bool printLine = m_printLine;
    const std::string_view source(printFile ? file : "");
    const std::string_view message(text);
    LineBuffer entry(c_roomOfFrame + source.size() + mark.size() + message.size());
    char* const stamp = printHeader ? AppendHeader(entry) : nullptr;
    if (printFile) {
        entry.Append(source);
    }
    if (printLine) {
        entry.Append<' '>(line, 4);
    }
    if (printFile || printLine) {
        entry.Append(": ");
    }
    if (!mark.empty()) {
        entry.Append(mark);
    }
    entry.Append(message);
    entry.Append("\n");

    const std::lock_guard<std::mutex> lock(m_mutex);
    if (level > m_level || !IsOpen()) {
        return;
    }
    if (stamp != nullptr) {
        Stamp(stamp);
    }
    WriteFinished(entry.Text());
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
    LineBuffer header(c_roomOfFrame);
    Stamp(AppendHeader(header));
    return std::string(header.Text());
}

void TraceFile::Stamp(char* stamp) const {
    m_lineTime.UpdateToCurrent();
    const timespec& now = m_lineTime.m_time;
    // Read before the conversion: a change in its middle is seen next time.
    const ZoneView zone = ZoneView::Current();
    if (now.tv_sec != g_keptSecond.m_second || !(zone == g_keptSecond.m_zone)) {
        g_keptSecond.Keep(now.tv_sec, zone, m_lineTime.Text());
    }
    std::memcpy(stamp, g_keptSecond.m_text, c_secondLength);
    // Ten digits, the first of which the point covers.
    DigitsOfFixedWidth<5>(stamp + c_secondLength, static_cast<unsigned>(now.tv_nsec));
    stamp[c_secondLength] = '.';
}

}  // namespace quor
