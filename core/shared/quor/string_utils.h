#ifndef QUOR_STRING_UTILS_H
#define QUOR_STRING_UTILS_H

#include <string>
#include <vector>

/// @file
/// Small text and number chores of configuration and diagnostics. No function keeps state: any
/// thread. Bytes from 0x80 on are ordinary input; what is blank or printable is the C library's
/// answer in the current locale. Besides what is said below only std::bad_alloc and
/// std::length_error are thrown.

namespace quor {

/// Whether `a` and `b` differ by at most 1e-15 of the larger of the two by sign: so two negative
/// numbers are measured by the one nearer zero. Equal values are equal, infinities too; an infinity
/// equals nothing else, NaN nothing at all.
bool Equal(double a, double b);

/// The items with `separator` between neighbours. `separator` must not be null.
std::string StringVecIntoString(std::vector<std::string> items, const char* separator);

/// True for "1" and "true", false for "0" and "false". Any other text throws Exception "Invalid
/// cast from string to boolean."
bool ToBool(const std::string& text);

/// `text` without the white space at its ends; empty for a null pointer.
std::string TrimString(const char* text);

/// A dump of `size` bytes, a line for every `bytesPerLine` of them:
///
///     00000: 41 42 43 44  ABCD
///     00004: 45 46        EF
///
/// A line starts with the decimal offset of its first byte. The column at the right is there when
/// `ascii` is set, with a point for every byte that isgraph(3) denies, blanks too. Lines hold 1 to
/// 24 bytes, with the column at most 18; 0 and more than 24 mean the most. `data` may be null when
/// `size` is 0.
std::string HexDump(const void* data, unsigned int size, unsigned int bytesPerLine, bool ascii);

/// The pieces of `text` between any of the characters of `delimiters`, none of them empty. Neither
/// pointer may be null.
std::vector<std::string> TokenizeString(const char* text, const char* delimiters);

}  // namespace quor

#endif
