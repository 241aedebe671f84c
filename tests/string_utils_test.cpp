#include <gtest/gtest.h>
#include <quor/string_utils.h>

#include <limits>

#include "thrown.h"

using namespace quor_test;
using namespace std::string_literals;
using namespace quor;
using Strings = std::vector<std::string>;

namespace {

TEST(StringUtils, EqualToleratesAPartOfTheLargerSignedValue) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double max = std::numeric_limits<double>::max();
    constexpr double ulp = 0x1p-53, seven = 7 * ulp / 1e-15;  // seven * 1e-15 is 7 * ulp
    using Row = std::tuple<double, double, bool>;
    for (const auto& [a, b, equal] :
         {Row(1, 1 + 1e-16, true), Row(1, 1 + 8e-16, true), Row(1, 1 + 1e-14, false),
          Row(0, 0, true), Row(0, -0.0, true), Row(0, 1e-300, false),
          Row(seven + 4 * ulp, seven - 3 * ulp, true),
          Row(-seven - 4 * ulp, -seven + 3 * ulp, false), Row(-2e-308, -2e-308, true),
          Row(infinity, infinity, true), Row(-infinity, -infinity, true),
          Row(infinity, -infinity, false), Row(infinity, max, false), Row(-infinity, -max, false),
          Row(max, -max, false), Row(nan, nan, false), Row(nan, infinity, false),
          Row(nan, 1, false)}) {
        EXPECT_TRUE(Equal(a, b) == equal && Equal(b, a) == equal) << a << ' ' << b;
    }
}

TEST(StringUtils, JoinsSplitsAndTrims) {
    EXPECT_EQ(StringVecIntoString({"a", "b", "c"}, ", "), "a, b, c");
    EXPECT_EQ(StringVecIntoString({"", "\xff\0"s, ""}, "-"), "-\xff\0-"s);
    EXPECT_EQ(StringVecIntoString({"a"}, ", ") + StringVecIntoString({}, ", "), "a");
    EXPECT_EQ(TokenizeString(",a,,b,", ","), (Strings{"a", "b"}));
    EXPECT_EQ(TokenizeString("\xe4\xff, \xe4", ", \xff"), (Strings{"\xe4", "\xe4"}));
    EXPECT_EQ(TokenizeString("a,b", ""), Strings{"a,b"});
    EXPECT_TRUE(TokenizeString(",,", ",").empty() && TokenizeString("", ",").empty());
    using Row = std::pair<const char*, const char*>;
    for (const auto& [text, trimmed] :
         {Row(nullptr, ""), Row("", ""), Row("x", "x"), Row("\t\n", ""),
          Row("\v\f\r\n\t a b ", "a b"), Row("\xa0\x85 ", "\xa0\x85")}) {
        EXPECT_EQ(TrimString(text), trimmed);
    }
}

TEST(StringUtils, ReadsBooleanWordsExactly) {
    EXPECT_TRUE(ToBool("1") && ToBool("true") && !ToBool("0") && !ToBool("false"));
    for (const std::string& text : {"TRUE"s, "False"s, " true"s, "yes"s, ""s, "1\0"s, "00"s}) {
        EXPECT_EQ(Thrown([&] { ToBool(text); }), "Invalid cast from string to boolean.");
    }
}

TEST(StringUtils, DumpsLinesOfHexDigits) {
    const auto dump = [](const std::string& data, unsigned int perLine, bool ascii) {
        return HexDump(data.data(), static_cast<unsigned int>(data.size()), perLine, ascii);
    };
    EXPECT_EQ(dump("ABCDEF", 4, false), "00000: 41 42 43 44 \n00004: 45 46       \n");
    EXPECT_EQ(dump("ABCDEF", 4, true), "00000: 41 42 43 44  ABCD\n00004: 45 46        EF\n");
    EXPECT_EQ(dump("\x7f\x80\xff \t~!\0z"s, 9, true),
              "00000: 7F 80 FF 20 09 7E 21 00 7A  .....~!.z\n");
    EXPECT_EQ(HexDump(nullptr, 0, 16, true), "");
    for (const unsigned int perLine : {0u, 24u, 25u, ~0u}) {
        EXPECT_EQ(dump(std::string(30, 'x'), perLine, false).find('\n'), 79u) << perLine;
        EXPECT_EQ(dump(std::string(30, 'x'), perLine, true).find('\n'), 80u) << perLine;
    }
    EXPECT_EQ(dump(std::string(30, 'x'), 19, true).find('\n'), 80u);
    const Strings lines = TokenizeString(dump(std::string(100'017, 'A'), 16, false).c_str(), "\n");
    EXPECT_EQ(lines[2].substr(0, 7), "00032: ");
    EXPECT_EQ(lines.back(), "100016: 41 " + std::string(45, ' '));
}

}  // namespace
