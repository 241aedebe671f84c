#ifndef QUOR_TIME_H
#define QUOR_TIME_H

#include <time.h>

#include <chrono>
#include <iosfwd>

#if defined(__i386__) && defined(_TIME_BITS) && _TIME_BITS == 64
#error "libzelvarquor is built with a 32-bit time_t: compile without -D_TIME_BITS=64"
#endif

namespace quor {

namespace internal {
struct TimeText;
}

/// Holds a point in time (since 1970-01-01 00:00:00 UTC) or a duration, in seconds and nanoseconds,
/// with a text form and a cache of the text.
///
///     const quor::Time start = quor::Time::Now(11);  // UTC time of day with nanoseconds
///     Work();
///     std::cout << quor::Time::Now(11) - start;      // 00:00:01.500000000
///
/// Subtraction stops at zero. Comparison with `<`, subtraction's test for zero, division and the
/// conversion to double read the seconds as unsigned 32-bit numbers on every platform; sums,
/// differences and `==` use the whole time_t.
///
/// No operation allocates or throws. The caller must guard an object that threads share: refreshing
/// and printing change even a const one.
class Time {
public:
    /// Parts of the text, combined with `|`. In use are 3 (default, trace lines), 6 (log lines), 7
    /// (file headers and trailers) and 11 (stop watch). A combination without a calendar pattern
    /// (0, 1, 5) prints plain seconds and nanoseconds.
    enum Format_e {
        eNanoSec = 1,    ///< nine digits of nanoseconds after a point
        eTimeOfDay = 2,  ///< hours, minutes, seconds
        eDate = 4,       ///< year, month, day
        eUtc = 8         ///< UTC instead of local time
    };

    /// Makes a value in form 3. `nanoseconds` is read as a signed `long` and carried into the
    /// seconds, so it may exceed a second or be negative.
    Time(unsigned long seconds, unsigned long nanoseconds);
    /// Makes a value of whole seconds in form 3. Mind the signed overload below: `Time(5u)`, not
    /// `Time(5)`.
    explicit Time(unsigned int seconds);
    /// Reads the real-time clock; `format` is the form.
    explicit Time(int format);
    /// Copy the value and the form, not the cached text.
    /// @{
    Time(const Time& other);
    Time& operator=(const Time& other);
    /// @}
    ~Time() = default;

    /// Reads the real-time clock; `format` is the form.
    static Time Now(int format);

    /// In all arithmetic the left operand keeps its form.
    Time& operator+=(const Time& other);
    /// Stops at 0 s 0 ns.
    Time& operator-=(const Time& other);
    /// Is exact to the truncated nanosecond. `divisor` must not be 0.
    Time& operator/=(unsigned long divisor);

    /// Returns whether the value is 0 s 0 ns.
    bool IsEpoch() const;
    /// Converts to seconds.
    operator std::chrono::duration<double>() const;

    /// Reads the real-time clock; keeps the form.
    void UpdateToCurrent() const;
    /// Builds the cached text. Printing calls this once per change of value, so a text that was
    /// printed also outlives a change of the time zone.
    void ToText() const;

private:
    friend struct internal::TimeText;
    friend bool operator==(const Time& left, const Time& right);
    friend bool operator<(const Time& left, const Time& right);

    void Normalise();

    int m_format;              // Format_e flags
    mutable timespec m_time;   // tv_nsec in 0 .. 999,999,999 after every operation
    mutable bool m_textStale;  // m_text is to be rebuilt
    mutable char m_text[30];
};

/// Work as the member operators do; the result has the form of `left`.
/// @{
Time operator+(Time left, const Time& right);
Time operator-(Time left, const Time& right);
Time operator/(Time left, unsigned long divisor);
/// @}

/// Compare values, whatever the forms.
/// @{
bool operator==(const Time& left, const Time& right);
bool operator<(const Time& left, const Time& right);
/// @}

/// Prints the text of `time`, at most 29 characters, whatever the stream's locale.
std::ostream& operator<<(std::ostream& stream, const Time& time);

}  // namespace quor

#endif
