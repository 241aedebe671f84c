#ifndef QUOR_TIME_H
#define QUOR_TIME_H

#include <time.h>

#include <chrono>
#include <iosfwd>
#include <string>

#if defined(__i386__) && defined(_TIME_BITS) && _TIME_BITS == 64
#error "libzelvarquor is built with a 32-bit time_t: compile without -D_TIME_BITS=64"
#endif

namespace quor {

/// A point in time (since 1970-01-01 00:00:00 UTC) or a duration, in seconds and nanoseconds, with
/// a choice of text form and a cache of that text.
///
/// A value never goes below zero by subtraction. No operation allocates, none throws. Nothing is
/// locked: refreshing and printing change even a const object, so an object shared between threads
/// is guarded by its owner. Seconds are compared, subtracted and divided as unsigned 32-bit numbers
/// on every platform.
class Time {
public:
    /// Parts of the text, combined with `|`. In use: 3 (default, trace lines), 6 (log lines),
    /// 7 (file headers and trailers), 11 (stop watch). A combination without a calendar pattern
    /// (0, 1, 5) prints plain seconds and nanoseconds.
    enum Format_e {
        eNanoSec = 1,    ///< nine digits of nanoseconds after a point
        eTimeOfDay = 2,  ///< hours, minutes, seconds
        eDate = 4,       ///< year, month, day
        eUtc = 8         ///< break down in UTC instead of local time
    };

    /// A value in form 3. `nanoseconds` is read as a signed `long` and carried into the seconds,
    /// so it may exceed a second or be negative.
    Time(unsigned long seconds, unsigned long nanoseconds);
    /// A value of whole seconds in form 3. Mind the signed overload below: `Time(5u)`, not
    /// `Time(5)`.
    explicit Time(unsigned int seconds);
    /// The current real time, in the form `format`.
    explicit Time(int format);
    /// Takes value and form; the text is built anew when it is wanted.
    /// @{
    Time(const Time& other);
    Time& operator=(const Time& other);
    /// @}
    ~Time() = default;

    /// The current real time, in the form `format`.
    static Time Now(int format);

    /// The left operand keeps its own form in all arithmetic.
    Time& operator+=(const Time& other);
    /// Saturates at 0 s 0 ns.
    Time& operator-=(const Time& other);
    /// Exact to the truncated nanosecond. `divisor` must not be 0.
    Time& operator/=(unsigned long divisor);

    /// True for 0 s 0 ns.
    bool IsEpoch() const;
    /// Seconds as a double.
    operator std::chrono::duration<double>() const;

    /// Reads the real-time clock; the form stays.
    void UpdateToCurrent() const;
    /// Builds the text now. Printing does so by itself when the value or the time zone changed.
    void ToText() const;

private:
    friend class Log;
    friend class TraceFile;
    friend bool operator==(const Time& left, const Time& right);
    friend bool operator<(const Time& left, const Time& right);
    friend std::ostream& operator<<(std::ostream& stream, const Time& time);
    friend Time CreateTime(const std::string& text);

    /// What the C library shows of the time zone. Zones that differ in nothing but the days on
    /// which summer time begins and ends look alike.
    struct Zone {
        const char* m_names[2] = {};  // never freed, and equal names are one
        long m_offset = 0;
        int m_summerTime = 0;
    };

    void Normalise();
    const char* Text() const;
    /// Reads the clock and gives the text, for the stamps of lines (forms 3 and 6): as long as the
    /// second and the zone, kept in `zone`, stay the same, only the nanoseconds are written.
    __attribute__((visibility("hidden"))) const char* CurrentText(Zone& zone) const;
    bool IsZoneOfTextCurrent() const;

    int m_format;              // Format_e flags
    mutable timespec m_time;   // tv_nsec in 0 .. 999,999,999 after every operation
    mutable bool m_textStale;  // m_text is to be rebuilt
    mutable char m_text[30];
    mutable signed char m_textZone;  // UTC offset in m_text, in quarters of an hour
};

/// As the member operators; the result has the form of `left`.
/// @{
Time operator+(Time left, const Time& right);
Time operator-(Time left, const Time& right);
Time operator/(Time left, unsigned long divisor);
/// @}

/// Compares values; the forms do not count.
/// @{
bool operator==(const Time& left, const Time& right);
bool operator<(const Time& left, const Time& right);
/// @}

/// Prints the text of `time` in its form, at most 29 characters, whatever the stream's locale.
std::ostream& operator<<(std::ostream& stream, const Time& time);

}  // namespace quor

#endif
