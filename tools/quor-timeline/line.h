#ifndef QUOR_TIMELINE_LINE_H
#define QUOR_TIMELINE_LINE_H

#include <cstdint>
#include <string_view>

namespace timeline {

/// What one line of a trace file is.
struct Line {
    enum Kind_e {
        eInside,   // part of a block, or of an entry of several lines
        eStray,    // torn, or of another format
        eBanner,   // "* ***** Trace started *****", or appended
        eStart,    // "* Start time    : "; m_time is the moment, local
        eName,     // "* Process name  : "; m_text is the name
        eProcess,  // "* Process id    : "; m_thread is the id
        eEnter,    // m_text is what stands in the place of "==> FUNCTION": the function's text
        eExit,     // the same for "<== "
        eThrown,   // m_text is the place of a thrown exception
        eRecord    // any other head of an entry; m_text is what stands behind site and stamp
    };

    Kind_e m_kind = eInside;
    std::int64_t m_thread = 0;
    std::int64_t m_time = 0;  // nanoseconds; of the day, but in eStart
    std::string_view m_site;  // file and line as they stand; the number may touch the name
    std::string_view m_text;

    bool IsOfThread() const { return m_kind >= eEnter; }
};

/// Tells what the lines of a file are, one after the other.
///
/// A line that is no head belongs to the entry or to the block before it, where there can be one:
/// not at the beginning of a file, behind a block, or behind the empty line that ends a stack.
class LineReader {
public:
    /// `text` is without its line feed. `whole` says that it had one: the last line of a file that
    /// has none is torn.
    Line Read(std::string_view text, bool whole);
    void EndFile() { m_place = eNowhere; }

private:
    enum Place_e { eNowhere, eBlock, eEntry, eStack };

    Line ReadHead(std::string_view text);
    Line ReadRule(std::string_view text);
    Line ReadInside(std::string_view text);

    Place_e m_place = eNowhere;
};

constexpr std::int64_t c_second = 1'000'000'000;
constexpr std::int64_t c_day = 86'400 * c_second;

/// "15:53:46.123456789" in nanoseconds of the day, with any number of digits of the second from
/// none to nine; -1 when it is none.
std::int64_t TimeOfDay(std::string_view text);
/// "2026-01-31 15:53:46.123456789" in nanoseconds since 1970, as if local time were UTC; or -1.
std::int64_t Moment(std::string_view text);

}  // namespace timeline

#endif
