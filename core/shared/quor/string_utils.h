#ifndef QUOR_STRING_UTILS_H
#define QUOR_STRING_UTILS_H

#include <string>
#include <vector>

/// @file
/// Small functions on text and numbers, for configuration and diagnostics. They keep no state and
/// are safe to call from any thread. Bytes from 0x80 on are ordinary input; the C library decides
/// in the current locale whether a byte is white space or printable. Apart from the exceptions
/// named below, they throw only std::bad_alloc and std::length_error.

namespace quor {

/// Returns whether |a - b| <= 1e-15 * |max(a, b)|; for two negative numbers that is the one nearer
/// zero. Equal values are equal, including infinities. An infinity equals nothing else, and NaN
/// equals nothing.
bool Equal(double a, double b);

/// Returns the items with `separator` between neighbours. `separator` must not be null.
std::string StringVecIntoString(std::vector<std::string> items, const char* separator);

/// Returns true for "1" and "true", false for "0" and "false". Throws Exception "Invalid cast from
/// string to boolean." for any other text.
bool ToBool(const std::string& text);

/// Returns `text` without leading and trailing white space; an empty string if `text` is null.
std::string TrimString(const char* text);

/// Returns a dump of `size` bytes, with `bytesPerLine` of them on each line:
///
///     00000: 41 42 43 44  ABCD
///     00004: 45 46        EF
///
/// A line starts with the decimal offset of its first byte. `ascii` adds the column on the right,
/// with a dot for each byte that isgraph(3) rejects, which includes the blank. A line holds 1 to 24
/// bytes, or up to 18 with that column; any other `bytesPerLine` means the maximum. `data` may be
/// null if `size` is 0.
std::string HexDump(const void* data, unsigned int size, unsigned int bytesPerLine, bool ascii);

/// Splits `text` at any of the characters of `delimiters` and returns the pieces that are not
/// empty. Neither pointer may be null.
std::vector<std::string> TokenizeString(const char* text, const char* delimiters);

}  // namespace quor

#endif
