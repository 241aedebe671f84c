#include "text.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "line.h"

namespace timeline {

std::string Printable(std::string_view text) {
    std::string printable(text);
    for (char& character : printable) {
        const auto byte = static_cast<unsigned char>(character);
        character = byte < ' ' || byte == 0x7F ? '?' : character;
    }
    return printable;
}

std::string OneLine(std::string_view text) {
    std::string line;
    for (const char character : text) {
        line += character == '\n' ? std::string(" | ") : Printable({&character, 1});
    }
    return line;
}

std::string Quoted(std::string_view text) {
    const auto isPlain = [](char character) {
        return character >= ' ' && character < 0x7F && character != '"' && character != '\\';
    };
    if (std::all_of(text.begin(), text.end(), isPlain)) {  // as most are: a tenth of the time
        return '"' + std::string(text) + '"';
    }
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string SiteMembers(std::string_view site) {
    const std::size_t number = site.find_last_not_of("0123456789") + 1;
    const std::size_t file = site.substr(0, number).find_last_not_of(' ') + 1;
    // A number that JSON cannot hold begins with a zero or is longer than any line number.
    const std::string_view line = site.substr(number);
    const bool isNumber = !line.empty() && line[0] != '0' && line.size() <= 15;
    const std::string_view name = isNumber ? site.substr(0, file) : site;
    return (name.empty() ? "" : "\"file\":" + Quoted(name)) +
           (name.empty() || !isNumber ? "" : ",") +
           (isNumber ? "\"line\":" + std::string(line) : "");
}

std::string MomentText(std::int64_t time) {
    const auto seconds = static_cast<std::time_t>(time / c_second);
    std::tm fields{};
    gmtime_r(&seconds, &fields);
    char text[40];
    std::strftime(text, sizeof(text), "%Y-%m-%d ", &fields);
    return text + TimeOfDayText(time);
}

std::string TimeOfDayText(std::int64_t time) {
    const std::int64_t seconds = time / c_second % 86'400;
    std::string text;
    AppendDigits(text, seconds / 3600, 2);
    text += ':';
    AppendDigits(text, seconds / 60 % 60, 2);
    text += ':';
    AppendDigits(text, seconds % 60, 2);
    text += '.';
    AppendDigits(text, time % c_second, 9);
    return text;
}

void AppendDigits(std::string& text, std::int64_t number, std::size_t digits) {
    text.append(digits, '0');
    for (std::size_t at = text.size(); number > 0 && digits > 0; --digits, number /= 10) {
        text[--at] = static_cast<char>('0' + number % 10);
    }
}

std::string DurationText(std::int64_t nanoseconds) {
    struct Unit {
        std::int64_t m_size;
        const char* m_name;
    };
    constexpr Unit c_units[] = {
        {c_second, " s"}, {c_second / 1000, " ms"}, {c_second / 1'000'000, " us"}, {1, " ns"}};
    const std::int64_t minutes = nanoseconds / (60 * c_second);
    if (minutes >= 60) {
        return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
    }
    if (minutes > 0) {
        return std::to_string(minutes) + " min " + std::to_string(nanoseconds / c_second % 60) +
               " s";
    }
    const Unit* unit = c_units;
    while (nanoseconds < unit->m_size && unit->m_size > 1) {
        ++unit;
    }
    const std::string whole = std::to_string(nanoseconds / unit->m_size);
    if (unit->m_size == 1) {
        return whole + unit->m_name;
    }
    std::string text = whole + ".";
    AppendDigits(text, nanoseconds % unit->m_size * 1000 / unit->m_size, 3);
    return text + unit->m_name;
}

std::int64_t ParseDuration(const std::string& text) {
    constexpr double c_longest = 1e6;  // seconds
    std::size_t used = 0;
    double number = -1;
    try {
        number = std::stod(text, &used);
    } catch (const std::logic_error&) {  // what it is then is said below
        used = 0;
    }
    const std::string unit = text.substr(used);
    const double scale = unit.empty() || unit == "s" ? 1e9
                         : unit == "ms"              ? 1e6
                         : unit == "us"              ? 1e3
                         : unit == "ns"              ? 1
                                                     : 0;
    if (used == 0 || scale == 0 || !(number >= 0 && number <= c_longest)) {
        throw std::invalid_argument(text + ": no duration such as 250us, 5ms or 1.5s");
    }
    return static_cast<std::int64_t>(number * scale);
}

std::string Right(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string Left(const std::string& text, std::size_t width) {
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ');
}

std::string Micro(std::int64_t nanoseconds) {
    std::string text = std::to_string(nanoseconds / 1000) + ".";
    AppendDigits(text, nanoseconds % 1000, 3);
    return text;
}

}  // namespace timeline
