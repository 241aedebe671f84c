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

// Room for any value of every field, so that only the last step cuts.
constexpr std::size_t c_longestText = 160;

int PrintCalendar(char (&text)[c_longestText], int form, const tm& fields) {
    int length = 0;
    if ((form & Time::eDate) != 0) {
        // Wider than int: the year of a far 64-bit time does not wrap.
        length = std::snprintf(text, sizeof(text), "%4ld-%02d-%02d%s", fields.tm_year + 1900L,
                               fields.tm_mon + 1, fields.tm_mday,
                               (form & Time::eTimeOfDay) != 0 ? " " : "");
    }
    if ((form & Time::eTimeOfDay) != 0) {
        length += std::snprintf(text + length, sizeof(text) - static_cast<std::size_t>(length),
                                "%02d:%02d:%02d", fields.tm_hour, fields.tm_min, fields.tm_sec);
    }
    return length;
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
        m_time = other.m_time;
        m_textStale = true;
    }
    return *this;
}

Time Time::Now(int format) {
    return Time(format);
}

// Carries by division, not second by second: a 64-bit count of nanoseconds would take seconds.
void Time::Normalise() {
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
    const bool calendar = IsCalendarForm(form);
    const tm fields = calendar ? BreakDown(m_time.tv_sec, (m_format & eUtc) != 0) : tm{};
    char text[c_longestText];
    int length = 0;
    if (calendar) {
        length = PrintCalendar(text, form, fields);
    } else {
        length = std::snprintf(text, sizeof(text), "%ld", static_cast<long>(m_time.tv_sec));
    }
    if (!calendar || (form & eNanoSec) != 0) {
        std::snprintf(text + length, sizeof(text) - static_cast<std::size_t>(length), ".%09ld",
                      m_time.tv_nsec);
    }
    const std::size_t kept = strnlen(text, sizeof(m_text) - 1);
    std::memcpy(m_text, text, kept);
    m_text[kept] = '\0';
    m_textZone = ZoneMark(fields);
    m_textStale = false;
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
