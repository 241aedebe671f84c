#include <quor/create_time.h>

#include <quor/exception.h>

namespace quor {
namespace {

const char* const c_timeFormat = "%Y-%m-%d %H:%M:%S";

}  // namespace

Time CreateTime(const std::string& text) {
    tm fields{};
    if (strptime(text.c_str(), c_timeFormat, &fields) == nullptr) {
        throw Exception("invalid time format", true);
    }
    fields.tm_isdst = -1;  // strptime leaves it at winter time
    const time_t seconds = mktime(&fields);
    if (seconds == -1) {
        throw Exception(
            "time overflows\n"
            "maximum time is 2038-01-19 for (32bit OS)\n"
            "                2106-02-07 for (64bit OS)",
            true);
    }
    // The left operand determines the form.
    const Time now(Time::eDate | Time::eTimeOfDay);
    return (now - now) + Time(static_cast<unsigned long>(seconds), 0);
}

}  // namespace quor
