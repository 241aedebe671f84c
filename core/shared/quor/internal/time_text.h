#ifndef QUOR_INTERNAL_TIME_TEXT_H
#define QUOR_INTERNAL_TIME_TEXT_H

#include <quor/time.h>

namespace quor::internal {

// What the C library shows of the time zone. Zones that differ only in the days on which summer
// time begins and ends look alike.
struct ShownZone {
    const char* names[2];  // never freed, and equal names are one
    long offset;
    int summerTime;
};

// Reaches the text that a Time caches, without a stream.
struct TimeText {
    // The text, built if the value has changed.
    static const char* Of(const Time& time);

    // Sets a time of form 3 or 6 to the present, and returns its text. As long as the second and
    // the zone stay the same only the nanoseconds are written: to break down a second costs more
    // than the rest of a line. `zone` is where the caller keeps the zone of the text.
    static const char* Now(const Time& time, ShownZone& zone);
};

}  // namespace quor::internal

#endif
