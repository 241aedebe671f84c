#ifndef QUOR_INTERNAL_CALENDAR_TEXT_H
#define QUOR_INTERNAL_CALENDAR_TEXT_H

#include <quor/internal/digits.h>

#include <time.h>

#include <cstddef>
#include <cstdint>

namespace quor::internal {

// Writes ".123456789", without a NUL, and returns the end.
inline char* PutFraction(char* text, long nanoseconds) {
    const auto number = static_cast<std::uint32_t>(nanoseconds);
    const std::uint32_t high = number / 10'000;
    const std::uint32_t low = number % 10'000;
    PutPair(text, high / 10'000);  // a zero, which the point covers, and the first digit
    PutPair(text + 2, high / 100 % 100);
    PutPair(text + 4, high % 100);
    PutPair(text + 6, low / 100);
    text[0] = '.';
    return PutPair(text + 8, low % 100);
}

// Writes `time` in a form with a calendar pattern (Time::Format_e without eUtc), cut to `size`
// characters with its NUL. `fields` are its calendar fields.
void PutCalendar(char* text, std::size_t size, int form, const timespec& time, const tm& fields);

}  // namespace quor::internal

#endif
