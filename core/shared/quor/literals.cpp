#include <quor/literals.h>

#include <quor/assert.h>
#include <quor/exception.h>

namespace quor {
namespace {

constexpr const char* c_file = "literals";

// Both give the terminating row when there is no match.
const Literal_t& FindNumeric(const Literal_t* row, int value) {
    while (row->textual != nullptr && row->numeric != value) {
        ++row;
    }
    return *row;
}

const Literal_t& FindTextual(const Literal_t* row, const std::string& text) {
    while (row->textual != nullptr && text.compare(row->textual) != 0) {
        ++row;
    }
    return *row;
}

}  // namespace

const char* NumericToTextual(const Literal_t* table, int value) {
    const Literal_t& row = FindNumeric(table, value);
    if (row.textual == nullptr) {
        throw Exception("Unable to convert literal to text.", true);
    }
    return row.textual;
}

int TextualToNumeric(const Literal_t* table, const std::string& text) {
    const Literal_t& row = FindTextual(table, text);
    if (row.textual == nullptr) {
        throw Exception("Unable to convert text to literal.", true);
    }
    return row.numeric;
}

// The signatures are written out, since compilers differ in how they spell them.

const char* NumericToTextualAssert(const Literal_t* table, int value) {
    const Literal_t& row = FindNumeric(table, value);
    if (row.textual == nullptr) {
        LoggedAssert(c_file, __LINE__,
                     "const char* quor::NumericToTextualAssert(const quor::Literal_t*, int)",
                     "Assertion condition: numericToTextUndefined");
    }
    return row.textual;
}

int TextualToNumericAssert(const Literal_t* table, const std::string& text) {
    const Literal_t& row = FindTextual(table, text);
    if (row.textual == nullptr) {
        LoggedAssert(c_file, __LINE__,
                     "int quor::TextualToNumericAssert(const quor::Literal_t*, const std::string&)",
                     "Assertion condition: textualToNumericUndefined");
    }
    return row.numeric;
}

}  // namespace quor
