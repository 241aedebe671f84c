#include <quor/time.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <type_traits>

namespace quor {
namespace {

constexpr long c_nanosecondsPerSecond = 1'000'000'000;
constexpr signed char c_otherZone = 127;

using UnsignedSeconds = std::make_unsigned_t<time_t>;

const Time c_epoch(0, 0);

std::uint32_t As32Bits(long number) {
    return static_cast<std::uint32_t>(number);
}

// Sums of seconds may pass the ends of time_t; they wrap, which signed arithmetic must not.
time_t AddSeconds(time_t left, time_t right) {
    return static_cast<time_t>(static_cast<UnsignedSeconds>(left) +
                               static_cast<UnsignedSeconds>(right));
}

time_t SubtractSeconds(time_t left, time_t right) {
    return static_cast<time_t>(static_cast<UnsignedSeconds>(left) -
                               static_cast<UnsignedSeconds>(right));
}

bool IsCalendarForm(int form) {
    switch (form) {
        case Time::eDate | Time::eTimeOfDay | Time::eNanoSec:
        case Time::eDate | Time::eTimeOfDay:
        case Time::eTimeOfDay | Time::eNanoSec:
        case Time::eTimeOfDay:
        case Time::eDate:
            return true;
        default:
            return false;
    }
}

// A calendar time that cannot be broken down prints as all zero fields.
tm BreakDown(time_t seconds, bool utc) {
    tm fields{};
    const tm* result = utc ? gmtime_r(&seconds, &fields) : localtime_r(&seconds, &fields);
    return result != nullptr ? fields : tm{};
}

// The text of a moment depends on the zone through its UTC offset alone, which fits into the byte
// that is left when it counts quarters of an hour, as all zones in use do. Texts of any other zone
// are built at every use.
signed char ZoneMark(const tm& fields) {
    constexpr long c_quarter = 900;
    const long quarters = fields.tm_gmtoff / c_quarter;
    const bool fits = fields.tm_gmtoff % c_quarter == 0 && std::labs(quarters) < c_otherZone;
    return fits ? static_cast<signed char>(quarters) : c_otherZone;
}

// The texts "00" to "99": two digits are had for one division.
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

char* PutFraction(char* text, long nanoseconds) {
    const auto number = static_cast<std::uint32_t>(nanoseconds);
    PutPair(text, number / 100'000'000);  // a zero, which the point covers, and the first digit
    PutPair(text + 2, number / 1'000'000 % 100);
    PutPair(text + 4, number / 10'000 % 100);
    PutPair(text + 6, number / 100 % 100);
    text[0] = '.';
    return PutPair(text + 8, number % 100);
}

// The texts of all years that are in use; they fit whatever the form.
void PutCalendar(char* text, int form, long year, const timespec& time, const tm& fields) {
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

// A calendar text with any other year; what does not fit is cut.
template <std::size_t Size>
void PrintCalendar(char (&text)[Size], int form, long year, const timespec& time,
                   const tm& fields) {
    const char* const format = (form & Time::eTimeOfDay) == 0 ? "%4ld-%02d-%02d"
                               : (form & Time::eNanoSec) == 0
                                   ? "%4ld-%02d-%02d %02d:%02d:%02d"
                                   : "%4ld-%02d-%02d %02d:%02d:%02d.%09ld";
    std::snprintf(text, Size, format, year, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                  fields.tm_min, fields.tm_sec, time.tv_nsec);
}

}  // namespace

Time::Time(unsigned long seconds, unsigned long nanoseconds)
    : m_format(eTimeOfDay | eNanoSec),
      m_time{static_cast<time_t>(seconds), static_cast<long>(nanoseconds)},
      m_textStale(true),
      m_text{},
      m_textZone(0) {
    Normalise();
}

Time::Time(unsigned int seconds) : Time(seconds, 0) {}

Time::Time(int format)
    : m_format(format), m_time{0, 0}, m_textStale(true), m_text{}, m_textZone(0) {
    UpdateToCurrent();
}

Time::Time(const Time& other)
    : m_format(other.m_format), m_time(other.m_time), m_textStale(true), m_text{}, m_textZone(0) {}

Time& Time::operator=(const Time& other) {
    if (this != &other) {
        m_format = other.m_format;
        // One by one: a processor has to wait when it reads at once what was just written apart.
        m_time.tv_sec = other.m_time.tv_sec;
        m_time.tv_nsec = other.m_time.tv_nsec;
        m_textStale = true;
    }
    return *this;
}

Time Time::Now(int format) {
    return Time(format);
}

// Carries by division, not second by second: a 64-bit count of nanoseconds would take seconds.
void Time::Normalise() {
    if (m_time.tv_nsec >= 0 && m_time.tv_nsec < c_nanosecondsPerSecond) {
        return;
    }
    long carry = m_time.tv_nsec / c_nanosecondsPerSecond;
    long rest = m_time.tv_nsec % c_nanosecondsPerSecond;
    if (rest < 0) {
        rest += c_nanosecondsPerSecond;
        --carry;
    }
    m_time.tv_sec = AddSeconds(m_time.tv_sec, carry);
    m_time.tv_nsec = rest;
}

Time& Time::operator+=(const Time& other) {
    m_time.tv_nsec += other.m_time.tv_nsec;
    m_time.tv_sec = AddSeconds(m_time.tv_sec, other.m_time.tv_sec);
    Normalise();
    m_textStale = true;
    return *this;
}

Time& Time::operator-=(const Time& other) {
    if (As32Bits(m_time.tv_sec) < As32Bits(other.m_time.tv_sec)) {
        m_time = {0, 0};
    } else {
        m_time.tv_sec = SubtractSeconds(m_time.tv_sec, other.m_time.tv_sec);
        m_time.tv_nsec -= other.m_time.tv_nsec;
        if (m_time.tv_sec == 0 && m_time.tv_nsec < 0) {
            m_time.tv_nsec = 0;
        }
        Normalise();
    }
    m_textStale = true;
    return *this;
}

Time& Time::operator/=(unsigned long divisor) {
    const std::uint32_t seconds = As32Bits(m_time.tv_sec);
    const std::uint64_t rest = seconds % divisor;
    const auto nanoseconds =
        rest * c_nanosecondsPerSecond + static_cast<std::uint64_t>(m_time.tv_nsec);
    m_time.tv_sec = static_cast<time_t>(seconds / divisor);
    m_time.tv_nsec = static_cast<long>(nanoseconds / divisor);
    m_textStale = true;
    return *this;
}

bool Time::IsEpoch() const {
    return *this == c_epoch;
}

Time::operator std::chrono::duration<double>() const {
    return std::chrono::duration<double>(As32Bits(m_time.tv_sec) + As32Bits(m_time.tv_nsec) / 1e9);
}

void Time::UpdateToCurrent() const {
    clock_gettime(CLOCK_REALTIME, &m_time);
    m_textStale = true;
}

void Time::ToText() const {
    const int form = m_format & ~eUtc;
    m_textStale = false;
    if (!IsCalendarForm(form)) {
        std::snprintf(m_text, sizeof(m_text), "%ld.%09ld", static_cast<long>(m_time.tv_sec),
                      m_time.tv_nsec);
        return;
    }
    const tm fields = BreakDown(m_time.tv_sec, (m_format & eUtc) != 0);
    // Wider than int: the year of a far 64-bit time does not wrap.
    const long year = fields.tm_year + 1900L;
    if ((form & eDate) != 0 && (year < 1000 || year > 9999)) {
        PrintCalendar(m_text, form, year, m_time, fields);
    } else {
        PutCalendar(m_text, form, year, m_time, fields);
    }
    m_textZone = ZoneMark(fields);
}

bool Time::IsZoneOfTextCurrent() const {
    if ((m_format & eUtc) != 0 || !IsCalendarForm(m_format)) {
        return true;
    }
    return m_textZone != c_otherZone && ZoneMark(BreakDown(m_time.tv_sec, false)) == m_textZone;
}

const char* Time::Text() const {
    if (m_textStale || !IsZoneOfTextCurrent()) {
        ToText();
    }
    return m_text;
}

// To break a second down costs more than all the rest of a line. The zone is read without the C
// library's lock: a tzset() in another thread at worst makes the text look out of date.
const char* Time::CurrentText(Zone& zone) const {
    Zone now;
    now.m_names[0] = __atomic_load_n(&tzname[0], __ATOMIC_RELAXED);
    now.m_names[1] = __atomic_load_n(&tzname[1], __ATOMIC_RELAXED);
    now.m_offset = __atomic_load_n(&timezone, __ATOMIC_RELAXED);
    now.m_summerTime = __atomic_load_n(&daylight, __ATOMIC_RELAXED);
    const bool sameZone = now.m_names[0] == zone.m_names[0] && now.m_names[1] == zone.m_names[1] &&
                          now.m_offset == zone.m_offset && now.m_summerTime == zone.m_summerTime;
    const bool usable = sameZone && !m_textStale;
    const time_t second = m_time.tv_sec;
    if (!sameZone) {
        zone = now;  // before the conversion: a change in its middle is seen next time
    }
    clock_gettime(CLOCK_REALTIME, &m_time);
    if (__builtin_expect(!usable || m_time.tv_sec != second, 0)) {
        ToText();
    } else if ((m_format & eNanoSec) != 0) {
        PutFraction(m_text + sizeof("15:53:46") - 1, m_time.tv_nsec);
    }
    return m_text;
}

Time operator+(Time left, const Time& right) {
    left += right;
    return left;
}

Time operator-(Time left, const Time& right) {
    left -= right;
    return left;
}

Time operator/(Time left, unsigned long divisor) {
    left /= divisor;
    return left;
}

bool operator==(const Time& left, const Time& right) {
    return left.m_time.tv_sec == right.m_time.tv_sec && left.m_time.tv_nsec == right.m_time.tv_nsec;
}

bool operator<(const Time& left, const Time& right) {
    const std::uint32_t leftSeconds = As32Bits(left.m_time.tv_sec);
    const std::uint32_t rightSeconds = As32Bits(right.m_time.tv_sec);
    if (leftSeconds != rightSeconds) {
        return leftSeconds < rightSeconds;
    }
    return As32Bits(left.m_time.tv_nsec) < As32Bits(right.m_time.tv_nsec);
}

std::ostream& operator<<(std::ostream& stream, const Time& time) {
    return stream << time.Text();
}

}  // namespace quor
