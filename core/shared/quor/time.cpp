#include <quor/time.h>

#include <quor/internal/calendar_text.h>
#include <quor/internal/time_text.h>

#include <cstdint>
#include <cstdio>
#include <ostream>
#include <type_traits>

namespace quor {
namespace {

constexpr long c_nanosecondsPerSecond = 1'000'000'000;

using UnsignedSeconds = std::make_unsigned_t<time_t>;

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

}  // namespace

Time::Time(unsigned long seconds, unsigned long nanoseconds)
    : m_format(eTimeOfDay | eNanoSec),
      m_time{static_cast<time_t>(seconds), static_cast<long>(nanoseconds)},
      m_textStale(true),
      m_text{} {
    Normalise();
}

Time::Time(unsigned int seconds) : Time(seconds, 0) {}

Time::Time(int format) : m_format(format), m_time{0, 0}, m_textStale(true), m_text{} {
    UpdateToCurrent();
}

Time::Time(const Time& other)
    : m_format(other.m_format), m_time(other.m_time), m_textStale(true), m_text{} {}

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
    return m_time.tv_sec == 0 && m_time.tv_nsec == 0;
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
    internal::PutCalendar(m_text, sizeof(m_text), form, m_time, fields);
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
    return stream << internal::TimeText::Of(time);
}

namespace internal {

const char* TimeText::Of(const Time& time) {
    if (time.m_textStale) {
        time.ToText();
    }
    return time.m_text;
}

// The zone is read without the C library's lock: a tzset() in another thread at worst makes the
// text look out of date.
const char* TimeText::Now(const Time& time, ShownZone& zone) {
    ShownZone now{};
    now.names[0] = __atomic_load_n(&tzname[0], __ATOMIC_RELAXED);
    now.names[1] = __atomic_load_n(&tzname[1], __ATOMIC_RELAXED);
    now.offset = __atomic_load_n(&timezone, __ATOMIC_RELAXED);
    now.summerTime = __atomic_load_n(&daylight, __ATOMIC_RELAXED);
    const bool sameZone = now.names[0] == zone.names[0] && now.names[1] == zone.names[1] &&
                          now.offset == zone.offset && now.summerTime == zone.summerTime;
    const bool usable = sameZone && !time.m_textStale;
    const time_t second = time.m_time.tv_sec;
    if (!sameZone) {
        zone = now;  // before the conversion: a change in its middle is seen next time
    }
    clock_gettime(CLOCK_REALTIME, &time.m_time);
    if (__builtin_expect(!usable || time.m_time.tv_sec != second, 0)) {
        time.ToText();
    } else if ((time.m_format & Time::eNanoSec) != 0) {
        PutFraction(time.m_text + sizeof("15:53:46") - 1, time.m_time.tv_nsec);
    }
    return time.m_text;
}

}  // namespace internal

}  // namespace quor
