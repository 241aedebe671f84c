#include <gtest/gtest.h>
#include <quor/create_time.h>

#include "thrown.h"

using namespace quor_test;
using quor::CreateTime;
using testing::PrintToString;

namespace {

TEST(CreateTime, GivesTheLocalTimeThatTheTextNames) {
    const ScopedZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const struct {
        const char* text;
        unsigned long seconds;
        const char* printed;
    } rows[] = {{"2020-02-29 23:59:59", 1'583'017'199, "2020-02-29 23:59:59"},
                {"2020-07-31 08:00:00", 1'596'175'200, "2020-07-31 08:00:00"},  // summer time
                {"2020-02-29 23:59:59 trailing", 1'583'017'199, "2020-02-29 23:59:59"},
                {"2021-  1- 1   1: 1:61", 1'609'459'321, "2021-01-01 01:02:01"},
                {"2026-02-31 00:00:00", 1'772'492'400, "2026-03-03 00:00:00"},
                {"1970-01-01 00:59:58", -2UL, "1970-01-01 00:59:58"},
                {"2038-01-19 04:14:07", 2'147'483'647, "2038-01-19 04:14:07"}};
    for (const auto& row : rows) {
        EXPECT_EQ(CreateTime(row.text), quor::Time(row.seconds, 0)) << row.text;
        EXPECT_EQ(PrintToString(CreateTime(row.text)), row.printed);
    }
    // The hour that comes twice reads as itself, the one that is left out as a neighbour.
    EXPECT_EQ(PrintToString(CreateTime("2020-10-25 02:30:00")), "2020-10-25 02:30:00");
    const std::string skipped = PrintToString(CreateTime("2020-03-29 02:30:00"));
    EXPECT_TRUE(skipped == "2020-03-29 01:30:00" || skipped == "2020-03-29 03:30:00") << skipped;
}

TEST(CreateTime, RefusesWhatItCannotReadOrHold) {
    const ScopedZone zone("UTC");
    for (const char* text : {"29.02.2020", "", "2020-02-29 23:59", "2020-13-01 00:00:00", "\xff"}) {
        EXPECT_EQ(Thrown([&] { CreateTime(text); }), "invalid time format") << text;
    }
    const std::string overflow =
        "time overflows\nmaximum time is 2038-01-19 for (32bit OS)\n"
        "                2106-02-07 for (64bit OS)";
    EXPECT_EQ(Thrown([] { CreateTime("1969-12-31 23:59:59"); }), overflow);
    EXPECT_EQ(Thrown([] { CreateTime("2040-01-01 00:00:00"); }),
              sizeof(time_t) == 4 ? overflow : c_nothing);
}

}  // namespace
