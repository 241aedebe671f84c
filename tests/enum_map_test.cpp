#include <gtest/gtest.h>
#include <quor/enum_map.h>

#include "thrown.h"

using namespace quor_test;
using namespace std::string_literals;
using quor::BiMap;
using quor::EnumRow;

namespace {

enum class Color : long long { eRed = -1, eBlue = 7 };
constexpr EnumRow<Color> c_colors[] = {{Color::eRed, "red"}, {Color::eBlue, "blue"}};

}  // namespace

template <>
const BiMap<Color> quor::EnumMap<Color>::items{c_colors};

namespace {

using Colors = quor::EnumMap<Color>;
using Levels = quor::EnumMap<quor::TraceLevel_e>;

TEST(EnumMap, LooksUpValuesAndNamesExactly) {
    EXPECT_STREQ(Colors::ToName(Color::eRed), "red");
    EXPECT_STREQ(Colors::ToName(-1), "red");
    EXPECT_EQ(Colors::ToValue("blue"), Color::eBlue);
    for (const std::string& name : {"medium"s, "Medium "s, "Medium\0"s, ""s}) {
        EXPECT_STREQ(Thrown([&] { Levels::ToValue(name); }).c_str(),
                     ("no enumeration value has the name \"" + name + "\"").c_str());
    }
    const std::string miss = "no name for the enumeration value ";
    EXPECT_EQ(Thrown([] { Levels::ToName(5); }), miss + "5");
    EXPECT_EQ(Thrown([] { Levels::ToName(0x1'0000'0001); }), miss + "4294967297");
    EXPECT_EQ(Thrown([] { Colors::ToName(Color{-0x1'0000'0002}); }), miss + "-4294967298");
}

TEST(BiMap, KeepsFirstRowsAndRefusesTwoNamesOfAValueOrTwoValuesOfAName) {
    constexpr EnumRow<Color> names[] = {{Color::eRed, "red"}, {Color::eRed, "rouge"}};
    constexpr EnumRow<Color> values[] = {{Color::eRed, "red"}, {Color::eBlue, "red"}};
    constexpr EnumRow<Color> both[] = {names[0], names[1], values[1]};
    EXPECT_EQ(Thrown([&] { BiMap<Color>{names}; }), "invalid enum description table");
    EXPECT_EQ(Thrown([&] { BiMap<Color>{values}; }), "invalid enum description table");
    const BiMap<Color> map(both);
    EXPECT_STREQ(map.ValueToName().at(Color::eRed), "red");
    EXPECT_STREQ(map.IntToName().at(-1), "red");
    EXPECT_EQ(map.NameToValue().at("red"), Color::eRed);
    EXPECT_EQ(map.NameToValue().at("rouge"), Color::eRed);
}

}  // namespace
