// The input is read as a text, and its first bytes as fields of a date. In UTC a date is a sum of
// days, reckoned here without a calendar.
#include <quor/create_time.h>
#include <quor/exception.h>

#include <cstdio>
#include <sstream>

#include "fuzz.h"

namespace {

// What the time that `text` names prints as, or the error.
std::string Read(const std::string& text, quor::Time& time) {
    try {
        time = quor::CreateTime(text);
    } catch (const quor::Exception& exception) {
        return exception.what();
    }
    std::ostringstream printed;
    printed << time;
    return printed.str();
}

void CheckFields(const std::uint8_t* data) {
    const int year = (data[0] * 256 + data[1]) % 10'000;
    const int month = data[2] % 12 + 1;
    const int day = data[3] % 31 + 1;
    const int second = data[6] % 62;
    char text[80];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d:%02d", year, month, day,
                  data[4] % 24, data[5] % 60, second);
    // Years begin in March, and are counted from 400 before the year 0.
    const int march = year + 400 - (month < 3 ? 1 : 0);
    const long long days = march * 365 + march / 4 - march / 100 + march / 400 +
                           (153 * ((month + 9) % 12) + 2) / 5 + day - 1 - 865'565;
    const long long seconds = days * 86'400 + data[4] % 24 * 3'600LL + data[5] % 60 * 60LL + second;
    const auto held = static_cast<time_t>(seconds);
    quor::Time time(0u);
    const bool failed = Read(text, time).rfind("time overflows\n", 0) == 0;
    Require(failed ? held != seconds || held == -1
                   : time == quor::Time(static_cast<unsigned long>(seconds), 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool utc = setenv("TZ", "UTC0", 1) == 0;
    Require(utc);
    quor::Time time(0u);
    const std::string printed = Read(std::string(data, data + size), time);
    if (printed.size() == 19 && printed[0] != 'i') {  // up to the year 9999, no "invalid ..."
        quor::Time again(0u);
        Require(Read(printed, again) == printed && again == time);
    }
    if (size >= 7) {
        CheckFields(data);
    }
    return 0;
}
