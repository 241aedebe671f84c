#include <quor/detail/errno_keeper.h>
#include <quor/internal/digits.h>
#include <quor/internal/log_file_internals.h>
#include <quor/internal/thread_label.h>
#include <quor/internal/time_text.h>
#include <quor/internal/trace_file_internals.h>

#include <algorithm>
#include <cstring>

namespace quor::internal {
namespace {

constexpr std::size_t c_stampLength = 20;  // "15:53:46.123456789] "
// Room for the head of a line, but for its file's name: thread, time, line number.
constexpr std::size_t c_headRoom = 48;

ShownZone g_zone;  // of the latest stamp; guarded by the trace's mutex

// As "%4d" prints it.
char* PutLineNumberBefore(char* end, int number) {
    std::memset(end - 4, ' ', 4);
    return std::min(PutNumberBefore(end, number), end - 4);
}

// Puts the thread's label in front of `begin`, and leaves room for the stamp in between.
char* PutLabelBefore(char* begin) {
    const ThreadLabel& label = LabelOfThread();
    begin -= c_stampLength + label.length;
    // The whole array, since a fixed size needs no call. The stamp covers what is too much.
    std::memcpy(begin, label.text, c_threadLabelRoom);
    return begin;
}

void PutStampBefore(char* begin, const Time& lineTime) {
    const std::string_view timeOfDay(TimeText::Now(lineTime, g_zone), c_stampLength - 2);
    Put(Put(begin - c_stampLength, timeOfDay), "] ");
}

}  // namespace

// All but the stamp is put together before the mutex is taken.
void TraceFileInternals::WriteLine(TraceFile& trace, TraceLevel_e level, const char* file, int line,
                                   const RoomyText& text) {
    // Threads that go on past a closed gate must not keep the mutex from the trailer.
    if (level <= Off || level > trace.m_level || s_ended) {
        return;
    }
    const bool printFile = trace.m_printFile;
    const bool printLine = trace.m_printLine;
    char* begin = text.begin;
    if (printFile || printLine) {
        begin = PutBefore(begin, ": ");
    }
    if (printLine) {
        begin = PutLineNumberBefore(begin, line);
    }
    if (printFile) {
        const std::string_view source(file);
        if (c_headRoom + source.size() > text.gap) {
            WriteText(level, file, line, {text.begin, text.Size()}, c_headRoom + source.size());
            return;
        }
        begin = PutBefore(begin, source);
    }
    char* const body = begin;
    const bool printHead = LogFileInternals::PrintsLineHeader(trace);
    if (printHead) {
        begin = PutLabelBefore(body);
    }
    *text.end = '\n';

    const Access access(trace);
    if (level > trace.m_level || !LogFileInternals::IsOpen(trace)) {
        return;
    }
    if (printHead) {
        PutStampBefore(body, trace.m_lineTime);
    }
    LogFileInternals::WriteFinished(trace, {begin, static_cast<std::size_t>(text.end + 1 - begin)});
}

// Flat: the lines of TraceWrite() come this way.
__attribute__((flatten)) void TraceFileInternals::WriteText(TraceLevel_e level, const char* file,
                                                            int line, std::string_view text,
                                                            std::size_t gap) {
    const detail::ErrnoKeeper keeper;
    TraceFile& trace = TraceFile::GetInstance();
    if (level > Off && level <= trace.m_level) {
        LineBuffer room(gap, text.size());
        WriteLine(trace, level, file, line, {room.Text(), Put(room.Text(), text), gap});
    }
}

void TraceFileInternals::WriteEntry(TraceFile& trace, std::string_view text) {
    if (!LogFileInternals::IsOpen(trace)) {
        return;
    }
    LineBuffer room(c_headRoom, text.size());
    char* const body = room.Text();
    char* const end = Put(Put(body, text), "\n");
    char* begin = body;
    if (LogFileInternals::PrintsLineHeader(trace)) {
        begin = PutLabelBefore(body);
        PutStampBefore(body, trace.m_lineTime);
    }
    LogFileInternals::WriteFinished(trace, {begin, static_cast<std::size_t>(end - begin)});
}

std::string TraceFileInternals::LineHead(const TraceFile& trace) {
    char room[c_headRoom];
    char* const end = room + c_headRoom;
    char* const begin = PutLabelBefore(end);
    PutStampBefore(end, trace.m_lineTime);
    return {begin, end};
}

}  // namespace quor::internal
