#ifndef QUOR_TIMELINE_TEXT_H
#define QUOR_TIMELINE_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace timeline {

/// `text` with a question mark for each control character.
std::string Printable(std::string_view text);
/// `text` as a JSON string; what is not UTF-8 becomes U+FFFD.
std::string Quoted(std::string_view text);
/// "file" and "line" as members of a JSON object that go on behind others; what a site does not
/// tell is left out. Digits that end the file's name cannot be told from the number behind it: all
/// are the number's.
std::string SiteMembers(std::string_view site);
/// `text` on one line: " | " for each line feed, a question mark for other control characters.
std::string OneLine(std::string_view text);
/// "2026-01-31 15:53:46.123456789".
std::string MomentText(std::int64_t time);
/// "15:53:46.123456789".
std::string TimeOfDayText(std::int64_t time);
/// The last digits of a number that is not negative, zeros in front.
void AppendDigits(std::string& text, std::int64_t number, std::size_t digits);
/// For people: "1.234 us", "59.900 s", "3 h 59 min".
std::string DurationText(std::int64_t nanoseconds);
/// Nanoseconds of "250us", "5ms", "1.5s" or a plain number of seconds. Throws
/// std::invalid_argument.
std::int64_t ParseDuration(const std::string& text);
/// `text` filled up on the left to `width`.
std::string Right(const std::string& text, std::size_t width);
/// The same, on the right.
std::string Left(const std::string& text, std::size_t width);
/// Microseconds with three digits behind the point.
std::string Micro(std::int64_t nanoseconds);

}  // namespace timeline

#endif
