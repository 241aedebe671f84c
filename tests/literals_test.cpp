#include <gtest/gtest.h>
#include <quor/literals.h>

#include <csignal>

#include "thrown.h"

using namespace quor_test;
using namespace std::string_literals;
using namespace quor;

namespace {

const Literal_t c_table[] = {{0, "Off"}, {1, "Low"}, {1, "Again"}, {3, "Low"}, {9, nullptr}};
const Literal_t* const c_empty = c_table + 4;

TEST(Literals, ConvertByTheFirstRowThatMatchesOrThrow) {
    for (const auto& [number, text] : {std::pair{0, "Off"}, {1, "Low"}}) {
        EXPECT_STREQ(NumericToTextual(c_table, number), text);
        EXPECT_STREQ(NumericToTextualAssert(c_table, number), text);
        EXPECT_EQ(TextualToNumeric(c_table, text), number);
        EXPECT_EQ(TextualToNumericAssert(c_table, text), number);
    }
    for (const std::string& text : {"low"s, "Low "s, ""s, "Low\0"s}) {
        EXPECT_EQ(Thrown([&] { TextualToNumeric(c_table, text); }),
                  "Unable to convert text to literal.");
    }
    const std::string refusal = "Unable to convert literal to text.";
    EXPECT_EQ(Thrown([&] { NumericToTextual(c_table, 9); }), refusal);
    EXPECT_EQ(Thrown([&] { NumericToTextual(c_empty, 0); }), refusal);
}

TEST(LiteralsDeathTest, AssertThatARowMatches) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(NumericToTextualAssert(c_table, 7), testing::KilledBySignal(SIGABRT),
                "FAILURE: literals:[0-9]+ in function: const char\\* "
                "quor::NumericToTextualAssert\\(const quor::Literal_t\\*, int\\)\n"
                "\\*\\*\\* REASON: Assertion condition: numericToTextUndefined\n");
    EXPECT_EXIT(TextualToNumericAssert(c_empty, "Low"), testing::KilledBySignal(SIGABRT),
                "FAILURE: literals:[0-9]+ in function: int "
                "quor::TextualToNumericAssert\\(const quor::Literal_t\\*, const std::string&\\)\n"
                "\\*\\*\\* REASON: Assertion condition: textualToNumericUndefined\n");
}

}  // namespace
