#include "line.h"

namespace timeline {
namespace {

constexpr std::size_t c_stampLength = 18;  // "15:53:46.123456789"
constexpr std::size_t c_dateLength = 10;   // "2026-01-31"

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// The number in `text`, all of which are digits; -1 otherwise.
std::int64_t Number(std::string_view text) {
    std::int64_t number = text.empty() ? -1 : 0;
    for (const char digit : text) {
        if (!IsDigit(digit) || number < 0) {
            return -1;
        }
        number = number * 10 + (digit - '0');
    }
    return number;
}

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// "15:53:46.123456789" in nanoseconds; -1 when it is none.
std::int64_t TimeOfDay(std::string_view text) {
    if (text.size() != c_stampLength || text[2] != ':' || text[5] != ':' || text[8] != '.') {
        return -1;
    }
    const std::int64_t hours = Number(text.substr(0, 2));
    const std::int64_t minutes = Number(text.substr(3, 2));
    const std::int64_t seconds = Number(text.substr(6, 2));
    const std::int64_t nanoseconds = Number(text.substr(9));
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 60 ||
        nanoseconds < 0) {
        return -1;
    }
    return ((hours * 60 + minutes) * 60 + seconds) * c_second + nanoseconds;
}

// Days since 1970-01-01 of a date of the Gregorian calendar, counted in years that begin in March.
std::int64_t DaysSinceEpoch(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t shifted = month <= 2 ? year - 1 : year;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return shifted * 365 + shifted / 4 - shifted / 100 + shifted / 400 + dayOfYear - 719'468;
}

// "2026-01-31 15:53:46.123456789" in nanoseconds since 1970, as if local time were UTC; or -1.
std::int64_t Moment(std::string_view text) {
    if (text.size() != c_dateLength + 1 + c_stampLength || text[4] != '-' || text[7] != '-') {
        return -1;
    }
    const std::int64_t year = Number(text.substr(0, 4));
    const std::int64_t month = Number(text.substr(5, 2));
    const std::int64_t day = Number(text.substr(8, 2));
    const std::int64_t time = TimeOfDay(text.substr(c_dateLength + 1));
    if (year < 1970 || year > 2200 || month < 1 || month > 12 || day < 1 || time < 0) {
        return -1;
    }
    return DaysSinceEpoch(year, month, day) * c_day + time;
}

Line ReadBlockLine(std::string_view text) {
    constexpr std::string_view c_start = "* Start time    : ";
    constexpr std::string_view c_process = "* Process id    : ";
    Line line;
    if (text == "* ***** Trace started *****" || text == "* ***** Trace appended *****") {
        line.m_kind = Line::eBanner;
    } else if (StartsWith(text, c_start)) {
        line.m_time = Moment(text.substr(c_start.size()));
        line.m_kind = line.m_time < 0 ? Line::eOther : Line::eStart;
    } else if (StartsWith(text, c_process)) {
        line.m_thread = static_cast<long>(Number(text.substr(c_process.size())));
        line.m_kind = line.m_thread < 0 ? Line::eOther : Line::eProcess;
    }
    return line;
}

// Splits "[file][line]: text". A site ends in a digit, unless both flags are off: then there is
// none.
void SplitSite(Line& line, std::string_view rest) {
    const std::size_t colon = rest.find(": ");
    if (colon != std::string_view::npos && colon > 0 && IsDigit(rest[colon - 1])) {
        line.m_site = rest.substr(0, colon);
        line.m_site.remove_prefix(line.m_site.find_first_not_of(' '));
        line.m_text = rest.substr(colon + 2);
    } else {
        line.m_text = rest;
    }
}

}  // namespace

Line ReadLine(std::string_view text) {
    Line line;
    if (text.empty() || text[0] != '[') {
        return text.empty() || text[0] != '*' ? Line() : ReadBlockLine(text);
    }
    const std::size_t colon = text.find(": ");
    if (colon == std::string_view::npos || colon < 6 || colon > 20 ||
        text.size() < colon + 2 + c_stampLength + 2 ||
        text.substr(colon + 2 + c_stampLength, 2) != "] ") {
        line.m_kind = Line::eBroken;
        return line;
    }
    line.m_thread = static_cast<long>(Number(text.substr(1, colon - 1)));
    line.m_time = TimeOfDay(text.substr(colon + 2, c_stampLength));
    if (line.m_thread < 0 || line.m_time < 0) {
        line.m_kind = Line::eBroken;
        return line;
    }
    constexpr std::string_view c_enter = "==> ";
    constexpr std::string_view c_exit = "<== ";
    constexpr std::string_view c_place = "** in: ";
    SplitSite(line, text.substr(colon + 2 + c_stampLength + 2));
    line.m_kind = StartsWith(line.m_text, c_enter)   ? Line::eEnter
                  : StartsWith(line.m_text, c_exit)  ? Line::eExit
                  : StartsWith(line.m_text, c_place) ? Line::eThrown
                                                     : Line::eRecord;
    if (line.m_kind == Line::eEnter || line.m_kind == Line::eExit) {
        line.m_text.remove_prefix(c_enter.size());
    } else if (line.m_kind == Line::eThrown) {
        line.m_text.remove_prefix(c_place.size());
    }
    return line;
}

}  // namespace timeline
