#ifndef QUOR_TIMELINE_LINE_H
#define QUOR_TIMELINE_LINE_H

#include <cstdint>
#include <string_view>

namespace timeline {

/// What one line of a trace file is.
struct Line {
    enum Kind_e {
        eOther,    // part of an entry of several lines, of a block, or of another format
        eBroken,   // begins as the head of an entry does, and is none
        eBanner,   // "* ***** Trace started *****", or appended
        eStart,    // "* Start time    : "; m_time is the moment, local
        eProcess,  // "* Process id    : "; m_thread is the id
        eEnter,    // m_text is what stands in the place of "==> FUNCTION": the function's text
        eExit,     // the same for "<== "
        eThrown,   // m_text is the place of a thrown exception
        eRecord    // any other head of an entry; m_text is what stands behind the stamp
    };

    Kind_e m_kind = eOther;
    long m_thread = 0;
    std::int64_t m_time = 0;  // nanoseconds; of the day, but in eStart
    std::string_view m_site;  // file and line as they stand; the number may touch the name
    std::string_view m_text;
};

/// Looks at one line, without its line feed. A head that is not laid out to the digit is eBroken.
Line ReadLine(std::string_view text);

constexpr std::int64_t c_second = 1'000'000'000;
constexpr std::int64_t c_day = 86'400 * c_second;

}  // namespace timeline

#endif
