#ifndef QUOR_INTERNAL_CALENDAR_TEXT_H
#define QUOR_INTERNAL_CALENDAR_TEXT_H

#include <time.h>

#include <cstddef>

namespace quor::internal {

// Writes ".123456789" to `text`, without a NUL, and returns the end.
char* PutFraction(char* text, long nanoseconds);

// Writes `time` in a form with a calendar pattern (Time::Format_e without eUtc), cut to `size`
// characters with its NUL. `fields` are its calendar fields.
void PutCalendar(char* text, std::size_t size, int form, const timespec& time, const tm& fields);

}  // namespace quor::internal

#endif
