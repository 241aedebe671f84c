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
/// "2026-01-31 15:53:46.123456789".
std::string MomentText(std::int64_t time);

}  // namespace timeline

#endif
