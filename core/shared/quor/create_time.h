#ifndef QUOR_CREATE_TIME_H
#define QUOR_CREATE_TIME_H

#include <quor/time.h>

#include <string>

namespace quor {

/// Converts a local date and time to a Time that prints in the same form (form 6).
///
///     const quor::Time begin = quor::CreateTime("2026-01-31 08:00:00");
///
/// The text is read as strptime(3) reads "%Y-%m-%d %H:%M:%S". So leading zeros may be missing,
/// blanks may precede a number, and the blank between day and hour may be missing; whatever follows
/// the seconds is ignored, even further digits.
///
/// Days past the end of their month, and seconds 60 and 61, carry over: "2026-02-31" is March 3rd.
/// Years below 1000 print padded with blanks. The C library decides about an hour that the change
/// to summer time skips or the change back repeats.
///
/// Throws Exception "invalid time format" if the text does not match, and "time overflows ..." if
/// the C library cannot represent the time: everywhere the last second before 1970 in UTC, which
/// mktime(3) uses for its errors, and with a 32-bit time_t also everything before 1901-12-13
/// 20:45:52 UTC and after 2038-01-19 03:14:07 UTC.
///
/// Safe to call from any thread while no thread changes the time zone.
Time CreateTime(const std::string& text);

}  // namespace quor

#endif
