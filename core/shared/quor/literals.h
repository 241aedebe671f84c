#ifndef QUOR_LITERALS_H
#define QUOR_LITERALS_H

#include <string>

namespace quor {

/// Pairs a number with a text, as one row of a table. A row without a text ends the table:
///
///     const quor::Literal_t c_modes[] = {{0, "idle"}, {1, "drain"}, {0, nullptr}};
///     quor::TextualToNumeric(c_modes, "drain");  // 1
///
/// The functions search from the first row and return the first match. Texts must match exactly,
/// including case and blanks. Results point into the table; nothing is copied. Any number of
/// threads may read a table.
struct Literal_t {
    int numeric;          ///< the number
    const char* textual;  ///< the text, not copied; null in the row that ends the table
};

/// Returns the text of `value`. Throws Exception "Unable to convert literal to text." if there is
/// none.
const char* NumericToTextual(const Literal_t* table, int value);
/// Returns the number of `text`. Throws Exception "Unable to convert text to literal." if there is
/// none.
int TextualToNumeric(const Literal_t* table, const std::string& text);

/// Do the same for an entry that the program itself guarantees to exist. If it is missing they
/// report that through LoggedAssert() and end the process.
/// @{
const char* NumericToTextualAssert(const Literal_t* table, int value);
int TextualToNumericAssert(const Literal_t* table, const std::string& text);
/// @}

}  // namespace quor

#endif
