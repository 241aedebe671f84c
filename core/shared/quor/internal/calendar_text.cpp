#include <quor/internal/calendar_text.h>

#include <quor/time.h>

#include <cstdio>

namespace quor::internal {
namespace {

char* PutPair(char* text, int number) {
    return internal::PutPair(text, static_cast<std::uint32_t>(number));
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
