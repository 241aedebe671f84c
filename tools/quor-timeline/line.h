#ifndef QUOR_TIMELINE_LINE_H
#define QUOR_TIMELINE_LINE_H

#include <array>
#include <cstdint>
#include <string_view>

namespace timeline {

/// What one line of a trace file says. A field is set only for the kinds named beside it.
struct Line {
    enum Kind_e {
        eBlock,    // part of a header, a banner or a trailer, or an empty line
        eMore,     // continues the message or the stack above it; m_text is the whole line
        eStray,    // torn, or of another format
        eBanner,   // "* ***** Trace started *****", or appended
        eStart,    // "* Start time    : "
        eName,     // "* Process name  : "; m_text is the name
        eProcess,  // "* Process id    : "
        eEnd,      // "* End time      : "
        eEnter,    // "==> FUNCTION"; m_text is the function's text
        eExit,     // "<== FUNCTION"
        eMessage   // any other head of an entry; m_text follows site and stamp
    };

    Kind_e m_kind = eBlock;
    bool m_isGlued = false;        // the rest of a torn line stood before this one
    std::int64_t m_thread = 0;     // eEnter, eExit, eMessage
    std::int64_t m_timeOfDay = 0;  // eEnter, eExit, eMessage; nanoseconds
    std::int64_t m_moment = 0;     // eStart, eEnd; nanoseconds since 1970, as if local were UTC
    std::int64_t m_process = 0;    // eProcess
    std::string_view m_site;       // file and line as written; the number may touch the name
    std::string_view m_text;

    bool IsOfThread() const { return m_kind >= eEnter; }
};

/// Tells what the lines of a file are, one after the other.
///
/// A line that is no head belongs to the entry or to the block before it, where there can be one:
/// not at the beginning of a file, behind a block, or behind the empty line that ends a stack.
class LineReader {
public:
    /// `text` is without its line feed; a carriage return at its end is dropped. `whole` is false
    /// for the last line of a file that has no line feed: such a line is torn.
    Line Read(std::string_view text, bool whole);
    void EndFile() { m_place = eNowhere; }

private:
    enum Place_e { eNowhere, eBlock, eEntry, eStack };

    std::int64_t ReadTime(std::string_view text);
    std::size_t ReadStamp(std::string_view text, Line& line);
    std::size_t FindGlued(std::string_view text);
    Line ReadHead(std::string_view text);
    Line ReadRule(std::string_view text);
    Line ReadFact(std::string_view text);
    Line ReadInside(std::string_view text);

    Place_e m_place = eNowhere;
    std::array<char, 8> m_second{};  // "15:53:46", of the last stamp
    std::int64_t m_secondTime = -1;  // the same in nanoseconds of the day
};

constexpr std::int64_t c_second = 1'000'000'000;
constexpr std::int64_t c_day = 86'400 * c_second;

/// "15:53:46.123456789" in nanoseconds of the day, with any number of digits of the second from
/// none to nine; -1 when it is none.
std::int64_t TimeOfDay(std::string_view text);
/// "2026-01-31 15:53:46.123456789" in nanoseconds since 1970, as if local time were UTC; or -1.
std::int64_t ParseMoment(std::string_view text);

inline bool StartsWith(std::string_view text, std::string_view start) {
    return !text.empty() && text[0] == start[0] && text.substr(0, start.size()) == start;
}

}  // namespace timeline

#endif
