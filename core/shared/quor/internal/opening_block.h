#ifndef QUOR_INTERNAL_OPENING_BLOCK_H
#define QUOR_INTERNAL_OPENING_BLOCK_H

#include <string>

namespace quor::internal {

// The rule of 79 hyphens around the blocks of log and trace, with its line feed.
constexpr const char* c_rule =
    "-------------------------------------------------------------------------------\n";

// "2020-01-31 08:00:00.123456789", the present in local time.
std::string FullTime();

// The block that opens a log or trace: its title, what runs here since when, and `lastFact`, a line
// of its own or nothing.
std::string OpeningBlock(const char* title, const std::string& lastFact);

}  // namespace quor::internal

#endif
