#include "line.h"

#include <cstring>

namespace timeline {
namespace {

constexpr std::size_t c_stampLength = 18;  // "15:53:46.123456789"
constexpr std::size_t c_dateLength = 10;   // "2026-01-31"
constexpr std::size_t c_ruleLength = 79;

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// The number in `text`, all of which are digits, at most 18 of them; -1 otherwise.
std::int64_t Number(std::string_view text) {
    if (text.empty() || text.size() > 18) {
        return -1;
    }
    std::int64_t number = 0;
    unsigned wrong = 0;
    for (const char character : text) {
        const unsigned digit = static_cast<unsigned char>(character) - unsigned{'0'};
        wrong |= static_cast<unsigned>(digit > 9);
        number = number * 10 + static_cast<int>(digit);
    }
    return wrong == 0 ? number : -1;
}

// -1 when they are none.
std::int64_t TwoDigits(const char* text) {
    return IsDigit(text[0]) && IsDigit(text[1]) ? (text[0] - '0') * 10 + (text[1] - '0') : -1;
}

inline bool StartsWith(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && std::memcmp(text.data(), start.data(), start.size()) == 0;
}

// A rule ends a block or begins one. It stands behind what a killed process left of its last line.
bool EndsInRule(std::string_view text) {
    return text.size() >= c_ruleLength &&
           text.find_first_not_of('-', text.size() - c_ruleLength) == std::string_view::npos;
}

// The digits of a fraction of a second, with their point or without anything; -1 when it is none.
std::int64_t Fraction(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    std::int64_t nanoseconds = text[0] == '.' && text.size() <= 10 ? Number(text.substr(1)) : -1;
    for (std::size_t digits = text.size() - 1; digits < 9 && nanoseconds > 0; ++digits) {
        nanoseconds *= 10;
    }
    return nanoseconds;
}

// Days since 1970-01-01 of a date of the Gregorian calendar, counted in years that begin in March.
std::int64_t DaysSinceEpoch(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t shifted = month <= 2 ? year - 1 : year;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return shifted * 365 + shifted / 4 - shifted / 100 + shifted / 400 + dayOfYear - 719'468;
}

// Splits "[file][line]: text". A site ends in a digit, or is a file's name alone, without a blank;
// when both flags are off there is none.
void SplitSite(Line& line, std::string_view rest) {
    const std::size_t colon = rest.find(": ");
    if (colon == std::string_view::npos || colon == 0 ||
        (!IsDigit(rest[colon - 1]) && rest.find(' ') < colon)) {
        line.m_text = rest;
        return;
    }
    line.m_site = rest.substr(0, colon);
    line.m_site.remove_prefix(line.m_site.find_first_not_of(' '));
    line.m_text = rest.substr(colon + 2);
}

// Takes "==> " and its like from the text.
void SplitMark(Line& line) {
    constexpr std::string_view c_enter = "==> ";
    constexpr std::string_view c_exit = "<== ";
    constexpr std::string_view c_place = "** in: ";
    line.m_kind = StartsWith(line.m_text, c_enter)   ? Line::eEnter
                  : StartsWith(line.m_text, c_exit)  ? Line::eExit
                  : StartsWith(line.m_text, c_place) ? Line::eThrown
                                                     : Line::eRecord;
    if (line.m_kind != Line::eRecord) {
        line.m_text.remove_prefix(line.m_kind == Line::eThrown ? c_place.size() : c_enter.size());
        line.m_kind = EndsInRule(line.m_text) ? Line::eStray : line.m_kind;
    }
}

Line Stray() {
    Line line;
    line.m_kind = Line::eStray;
    return line;
}

}  // namespace

std::int64_t TimeOfDay(std::string_view text) {
    if (text.size() < 8 || text[2] != ':' || text[5] != ':') {
        return -1;
    }
    const std::int64_t hours = TwoDigits(&text[0]);
    const std::int64_t minutes = TwoDigits(&text[3]);
    const std::int64_t seconds = TwoDigits(&text[6]);
    const std::int64_t nanoseconds = Fraction(text.substr(8));
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 60 ||
        nanoseconds < 0) {
        return -1;
    }
    return ((hours * 60 + minutes) * 60 + seconds) * c_second + nanoseconds;
}

std::int64_t Moment(std::string_view text) {
    if (text.size() <= c_dateLength || text[4] != '-' || text[7] != '-' ||
        text[c_dateLength] != ' ') {
        return -1;
    }
    const std::int64_t year = Number(text.substr(0, 4));
    const std::int64_t month = Number(text.substr(5, 2));
    const std::int64_t day = Number(text.substr(8, 2));
    const std::int64_t time = TimeOfDay(text.substr(c_dateLength + 1));
    if (year < 1970 || year > 2200 || month < 1 || month > 12 || day < 1 || day > 31 || time < 0) {
        return -1;
    }
    return DaysSinceEpoch(year, month, day) * c_day + time;
}

Line LineReader::Read(std::string_view text, bool whole) {
    if (!whole) {
        return Stray();
    }
    if (!text.empty() && text[0] == '[') {
        return ReadHead(text);
    }
    return EndsInRule(text) ? ReadRule(text) : ReadInside(text);
}

Line LineReader::ReadHead(std::string_view text) {
    const std::size_t colon = text.find(": ");
    if (colon == std::string_view::npos || colon < 6 || colon > 20 ||
        text.size() < colon + 2 + c_stampLength + 2 ||
        text.substr(colon + 2 + c_stampLength, 2) != "] ") {
        return EndsInRule(text) ? ReadRule(text) : Stray();
    }
    Line line;
    line.m_thread = Number(text.substr(1, colon - 1));
    line.m_time = TimeOfDay(text.substr(colon + 2, c_stampLength));
    if (line.m_thread < 0 || line.m_time < 0) {
        return Stray();
    }
    SplitSite(line, text.substr(colon + 2 + c_stampLength + 2));
    SplitMark(line);
    m_place = StartsWith(line.m_text, "0. ") ? eStack : eEntry;
    return line;
}

Line LineReader::ReadRule(std::string_view text) {
    m_place = m_place == eBlock ? eNowhere : eBlock;
    return text.size() == c_ruleLength ? Line() : Stray();
}

Line LineReader::ReadInside(std::string_view text) {
    constexpr std::string_view c_start = "* Start time    : ";
    constexpr std::string_view c_name = "* Process name  : ";
    constexpr std::string_view c_process = "* Process id    : ";
    Line line;
    if (text == "* ***** Trace started *****" || text == "* ***** Trace appended *****") {
        line.m_kind = Line::eBanner;
        m_place = eBlock;
    } else if (m_place == eBlock && StartsWith(text, c_start)) {
        line.m_time = Moment(text.substr(c_start.size()));
        line.m_kind = line.m_time < 0 ? Line::eStray : Line::eStart;
    } else if (m_place == eBlock && StartsWith(text, c_name)) {
        line.m_text = text.substr(c_name.size());
        line.m_kind = Line::eName;
    } else if (m_place == eBlock && StartsWith(text, c_process)) {
        line.m_thread = Number(text.substr(c_process.size()));
        line.m_kind = line.m_thread < 0 ? Line::eStray : Line::eProcess;
    } else if (m_place == eNowhere && !text.empty()) {
        line.m_kind = Line::eStray;
    } else if (m_place == eStack && text.empty()) {
        m_place = eNowhere;
    }
    return line;
}

}  // namespace timeline
