#ifndef QUOR_CREATE_TIME_H
#define QUOR_CREATE_TIME_H

#include <quor/time.h>

#include <string>

namespace quor {

/// Reads a local date and time such as "2026-01-31 08:00:00" and returns it in the form that prints
/// the same text (form 6 of Time). What follows the seconds is ignored.
///
/// Fields past the end of their month or minute are carried on ("2026-02-31" is March 3rd). An hour
/// that the change to summer time leaves out, or that the change back repeats, is read as the C
/// library decides.
///
/// Throws Exception "invalid time format" when the text does not match, and "time overflows ..."
/// when the C library cannot hold the time: on 32-bit hosts from 2038-01-19 on, and everywhere the
/// last second before 1970 in UTC. Any thread, as long as none changes the time zone.
Time CreateTime(const std::string& text);

}  // namespace quor

#endif
