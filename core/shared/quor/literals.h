#ifndef QUOR_LITERALS_H
#define QUOR_LITERALS_H

#include <string>

namespace quor {

/// One row of a table that pairs numbers with texts. The table ends with a row without a text:
///
///     const quor::Literal_t c_modes[] = {{0, "idle"}, {1, "drain"}, {0, nullptr}};
///
/// Rows are searched from the first on, and the first match wins. Numbers are compared for
/// equality, texts exactly, without trimming or folding of case. Nothing is copied: results point
/// into the table. Tables are only read, so any thread may use them.
struct Literal_t {
    int numeric;          ///< the number
    const char* textual;  ///< the text, not copied; null in the row that ends the table
};

/// The text of `value`. Throws Exception "Unable to convert literal to text." when there is none.
const char* NumericToTextual(const Literal_t* table, int value);
/// The number of `text`. Throws Exception "Unable to convert text to literal." when there is none.
int TextualToNumeric(const Literal_t* table, const std::string& text);

/// The same for what the program itself guarantees to be in the table: a miss is reported through
/// LoggedAssert() and ends the process.
/// @{
const char* NumericToTextualAssert(const Literal_t* table, int value);
int TextualToNumericAssert(const Literal_t* table, const std::string& text);
/// @}

}  // namespace quor

#endif
