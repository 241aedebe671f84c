#include "line.h"

#include <algorithm>

namespace timeline {
namespace {

constexpr std::size_t c_stampLength = 18;  // "15:53:46.123456789"
constexpr std::size_t c_dateLength = 10;   // "2026-01-31"
constexpr std::size_t c_ruleLength = 79;
constexpr std::size_t c_longestId = 18;  // digits of a thread's id

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

// A rule begins or ends a block. It may follow what a killed process left of its last line.
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

// Takes "==> " and "<== " from the text.
void SplitMark(Line& line) {
    constexpr std::string_view c_enter = "==> ";
    constexpr std::string_view c_exit = "<== ";
    line.m_kind = StartsWith(line.m_text, c_enter)  ? Line::eEnter
                  : StartsWith(line.m_text, c_exit) ? Line::eExit
                                                    : Line::eMessage;
    if (line.m_kind != Line::eMessage) {
        line.m_text.remove_prefix(c_enter.size());
    }
}

Line Stray() {
    Line line;
    line.m_kind = Line::eStray;
    return line;
}

// True for what begins as a head does, but may be torn or hold an impossible time.
bool BeginsAsHead(std::string_view text) {
    const std::size_t digits = text.find_first_not_of("0123456789", 1);
    return digits == std::string_view::npos || (digits >= 6 && text[digits] == ':');
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

std::int64_t ParseMoment(std::string_view text) {
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
    if (!text.empty() && text.back() == '\r') {
        text.remove_suffix(1);
    }
    if (!text.empty() && text[0] == '[') {
        return ReadHead(text);
    }
    return EndsInRule(text) ? ReadRule(text) : ReadInside(text);
}

// "15:53:46.123456789" in nanoseconds of the day, or -1. Most lines are of the same second as the
// one before.
std::int64_t LineReader::ReadTime(std::string_view text) {
    const std::string_view second = text.substr(0, m_second.size());
    if (second != std::string_view(m_second.data(), m_second.size())) {
        m_secondTime = TimeOfDay(second);
        std::copy(second.begin(), second.end(), m_second.begin());
    }
    const std::int64_t nanoseconds = text[second.size()] == '.' ? Number(text.substr(9)) : -1;
    return m_secondTime < 0 || nanoseconds < 0 ? -1 : m_secondTime + nanoseconds;
}

// The stamp at the beginning of a head, "[01234: 15:53:46.123456789] "; returns its length, or 0.
std::size_t LineReader::ReadStamp(std::string_view text, Line& line) {
    const std::size_t colon = text.substr(0, c_longestId + 2).find(':');
    const std::size_t length = colon + 2 + c_stampLength + 2;
    if (text.empty() || text[0] != '[' || colon == std::string_view::npos || colon < 6 ||
        text.size() < length || text[colon + 1] != ' ' || text.substr(length - 2, 2) != "] ") {
        return 0;
    }
    line.m_thread = Number(text.substr(1, colon - 1));
    line.m_timeOfDay = ReadTime(text.substr(colon + 2, c_stampLength));
    return line.m_thread < 0 || line.m_timeOfDay < 0 ? 0 : length;
}

// Where in the text another head begins: behind what is left of a torn line. npos when none does.
std::size_t LineReader::FindGlued(std::string_view text) {
    Line line;
    std::size_t at = text.find('[');
    while (at != std::string_view::npos && ReadStamp(text.substr(at), line) == 0) {
        at = text.find('[', at + 1);
    }
    return at;
}

Line LineReader::ReadHead(std::string_view text) {
    Line line;
    for (;;) {
        const std::size_t stamp = ReadStamp(text, line);
        if (stamp > 0) {
            SplitSite(line, text.substr(stamp));
            SplitMark(line);
            m_place = StartsWith(line.m_text, "0. ") ? eStack : eEntry;
            if (line.m_kind == Line::eMessage) {
                return line;
            }
        }
        const std::string_view rest = stamp > 0 ? line.m_text : text;
        if (EndsInRule(rest)) {
            return stamp > 0 ? Stray() : ReadRule(text);
        }
        const std::size_t glued = FindGlued(rest);
        if (glued == std::string_view::npos) {
            return stamp > 0                                   ? line
                   : m_place == eNowhere || BeginsAsHead(text) ? Stray()
                                                               : ReadInside(text);
        }
        text = rest.substr(glued);
        line = Line();
        line.m_isGlued = true;
    }
}

Line LineReader::ReadRule(std::string_view text) {
    m_place = m_place == eBlock ? eNowhere : eBlock;
    return text.size() == c_ruleLength ? Line() : Stray();
}

Line LineReader::ReadFact(std::string_view text) {
    constexpr std::size_t c_labelLength = 18;
    const std::string_view label = text.substr(0, c_labelLength);
    Line line;
    line.m_text = text.substr(label.size());
    if (label == "* Start time    : " || label == "* End time      : ") {
        line.m_kind = label[2] == 'S' ? Line::eStart : Line::eEnd;
        line.m_moment = ParseMoment(line.m_text);
    } else if (label == "* Process name  : ") {
        line.m_kind = Line::eName;
    } else if (label == "* Process id    : ") {
        line.m_kind = Line::eProcess;
        line.m_process = Number(line.m_text);
    }
    return line.m_moment < 0 || line.m_process < 0 ? Stray() : line;
}

Line LineReader::ReadInside(std::string_view text) {
    Line line;
    if (text == "* ***** Trace started *****" || text == "* ***** Trace appended *****") {
        line.m_kind = Line::eBanner;
        m_place = eBlock;
    } else if (m_place == eBlock) {
        return ReadFact(text);
    } else if (m_place == eNowhere) {
        line.m_kind = text.empty() ? Line::eBlock : Line::eStray;
    } else {
        line.m_kind = Line::eMore;
        line.m_text = text;
        m_place = m_place == eStack && text.empty() ? eNowhere : m_place;
    }
    return line;
}

}  // namespace timeline
