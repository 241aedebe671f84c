#include <quor/internal/calendar_text.h>

#include <quor/time.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace quor::internal {
namespace {

// The texts "00" to "99": one division yields two digits.
struct DigitPairs {
    constexpr DigitPairs() : m_pairs{} {
        for (int number = 0; number < 100; ++number) {
            m_pairs[number][0] = static_cast<char>('0' + number / 10);
            m_pairs[number][1] = static_cast<char>('0' + number % 10);
        }
    }
    char m_pairs[100][2];
};
constexpr DigitPairs c_digitPairs;

char* PutPair(char* text, std::uint32_t number) {
    std::memcpy(text, c_digitPairs.m_pairs[number], 2);
    return text + 2;
}

char* PutPair(char* text, int number) {
    return PutPair(text, static_cast<std::uint32_t>(number));
}

char* PutDate(char* text, long year, const tm& fields) {
    text = PutPair(text, static_cast<int>(year / 100));
    text = PutPair(text, static_cast<int>(year % 100));
    *text++ = '-';
    text = PutPair(text, fields.tm_mon + 1);
    *text++ = '-';
    return PutPair(text, fields.tm_mday);
}

char* PutTimeOfDay(char* text, const tm& fields) {
    text = PutPair(text, fields.tm_hour);
    *text++ = ':';
    text = PutPair(text, fields.tm_min);
    *text++ = ':';
    return PutPair(text, fields.tm_sec);
}

// A text with a year of four digits or none; it fits in every form.
void PutCommon(char* text, int form, long year, const timespec& time, const tm& fields) {
    if ((form & Time::eDate) != 0) {
        text = PutDate(text, year, fields);
    }
    if ((form & Time::eDate) != 0 && (form & Time::eTimeOfDay) != 0) {
        *text++ = ' ';
    }
    if ((form & Time::eTimeOfDay) != 0) {
        text = PutTimeOfDay(text, fields);
    }
    if ((form & Time::eNanoSec) != 0) {
        text = PutFraction(text, time.tv_nsec);
    }
    *text = '\0';
}

}  // namespace

char* PutFraction(char* text, long nanoseconds) {
    const auto number = static_cast<std::uint32_t>(nanoseconds);
    PutPair(text, number / 100'000'000);  // a zero, which the point covers, and the first digit
    PutPair(text + 2, number / 1'000'000 % 100);
    PutPair(text + 4, number / 10'000 % 100);
    PutPair(text + 6, number / 100 % 100);
    text[0] = '.';
    return PutPair(text + 8, number % 100);
}

void PutCalendar(char* text, std::size_t size, int form, const timespec& time, const tm& fields) {
    // Wider than int: the year of a far 64-bit time does not wrap.
    const long year = fields.tm_year + 1900L;
    if ((form & Time::eDate) == 0 || (year >= 1000 && year <= 9999)) {
        PutCommon(text, form, year, time, fields);
        return;
    }
    const char* const format = (form & Time::eTimeOfDay) == 0 ? "%4ld-%02d-%02d"
                               : (form & Time::eNanoSec) == 0
                                   ? "%4ld-%02d-%02d %02d:%02d:%02d"
                                   : "%4ld-%02d-%02d %02d:%02d:%02d.%09ld";
    std::snprintf(text, size, format, year, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                  fields.tm_min, fields.tm_sec, time.tv_nsec);
}

}  // namespace quor::internal
