#include "text.h"

#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>

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

std::string Quoted(std::string_view text) {
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
    char text[80];
    const std::size_t length = std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &fields);
    std::snprintf(text + length, sizeof(text) - length, ".%09lld",
                  static_cast<long long>(time % c_second));
    return text;
}

}  // namespace timeline
