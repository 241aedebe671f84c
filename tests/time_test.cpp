#include "support.h"

#include <chrono>
#include <climits>
#include <sstream>

namespace quor_test {

constexpr bool c_wide = sizeof(long) == 8;  // the word size of this host
constexpr unsigned long c_minusOne = ULONG_MAX;

std::string Text(const Time& time) {
    std::ostringstream stream;
    stream << time;
    return stream.str();
}

// The left operand of arithmetic keeps its form.
std::string Text(int form, const Time& value) {
    const Time time(form);
    return Text(time - time + value);
}

TEST(Time, NormalisesAndNeverGoesBelowZeroBySubtraction) {
    const struct {
        Time value;
        const char* plain;  // seconds and nanoseconds
    } rows[] = {
        {Time(5, 999'999'999), "5.999999999"},
        {Time(5, 1'000'000'000), "6.000000000"},
        {Time(5, 1'500'000'000), "6.500000000"},
        {Time(5, c_minusOne), "4.999999999"},
        {Time(5, c_minusOne - 999'999'999), "4.000000000"},
        {Time(5, 4'294'967'295), c_wide ? "9.294967295" : "4.999999999"},
        {Time(5, LONG_MAX), c_wide ? "9223372041.854775807" : "7.147483647"},
        {Time(3'000'000'000U), c_wide ? "3000000000.000000000" : "-1294967296.000000000"},
        {Time(1, 600'000'000) + Time(1, 400'000'000), "3.000000000"},
        {Time(1, 0) - Time(0, 500'000'000), "0.500000000"},
        {Time(2, 0) - Time(3, 0), "0.000000000"},
        {Time(3, 100) - Time(3, 200), "0.000000000"},
        {Time(3, 200) - Time(3, 100), "0.000000100"},
        {Time(3, 100) - Time(2, 200), "0.999999900"},
        {Time(3'000'000'000U) - Time(2'999'999'999U), "1.000000000"},
        {Time(1u) - Time(3'000'000'000U), "0.000000000"},
        {Time(LONG_MAX, 0) + Time(1u),
         c_wide ? "-9223372036854775808.00000000" : "-2147483648.000000000"},
        {Time(3u) / 2, "1.500000000"},
        {Time(1u) / 3, "0.333333333"},
        {Time(7, 999'999'999) / 1, "7.999999999"},
        {Time(4'000'000'000U, 4) / 4, "1000000000.000000001"},
        {Time(4'294'967'295U) / 4'294'967'295U, "1.000000000"},
        {Time(static_cast<unsigned long>(4'294'967'297), 0) / 2, "0.500000000"}};  // 1 in 32 bits
    for (const auto& row : rows) {
        EXPECT_EQ(Text(0, row.value), row.plain);
    }
}

TEST(Time, ComparesValuesAsUnsigned32BitNumbersWhateverTheForms) {
    const Time dated(Time::eDate);
    EXPECT_TRUE(Time(7, 5) == (dated - dated) + Time(7, 5));
    EXPECT_FALSE(Time(7, 5) == Time(7, 6) || Time(7, 5) == Time(8, 5));
    EXPECT_TRUE(Time(7, 5) < Time(7, 6));
    EXPECT_FALSE(Time(7, 6) < Time(7, 6) || Time(8, 0) < Time(7, 999'999'999));
    EXPECT_TRUE(Time(1u) < Time(3'000'000'000U) && Time(1u) < Time(c_minusOne, 0));
    EXPECT_TRUE(Time(static_cast<unsigned long>(4'294'967'297), 0) < Time(2u));
    EXPECT_TRUE(Time(0u).IsEpoch());
    EXPECT_FALSE(Time(0, 1).IsEpoch() || Time(1u).IsEpoch());
    EXPECT_EQ(std::chrono::duration<double>(Time(2, 250'000'000)).count(), 2.25);
    EXPECT_EQ(std::chrono::duration<double>(Time(3'000'000'000U)).count(), 3e9);
}

TEST(Time, PrintsEachFormUpTo29Characters) {
    const ScopedZone zone("XYZ-5:30");
    const auto lastYearEnd = static_cast<unsigned long>(67'768'036'191'676'799LL);
    const struct {
        int form;
        Time value;
        const char* text;
    } rows[] = {{0, {1, 500'000'000}, "1.500000000"},
                {1, {86'400, 5}, "86400.000000005"},
                {2, {1, 5}, "05:30:01"},
                {3, {1, 5}, "05:30:01.000000005"},
                {4, {86'399, 5}, "1970-01-02"},
                {5, {1, 5}, "1.000000005"},
                {6, {1, 5}, "1970-01-01 05:30:01"},
                {7, {1, 5}, "1970-01-01 05:30:01.000000005"},
                {9, {1, 5}, "1.000000005"},
                {10, {86'399, 5}, "23:59:59"},
                {11, {1, 500'000'000}, "00:00:01.500000000"},
                {12, {86'399, 5}, "1970-01-01"},
                {14, {951'782'400, 5}, "2000-02-29 00:00:00"},
                {15, {0, 0}, "1970-01-01 00:00:00.000000000"},
                {19, {1, 5}, "1.000000005"},
                {15, {lastYearEnd, 5}, c_wide ? "2147485547-12-31 23:59:59.000" : nullptr},
                {15, {lastYearEnd + 1, 5}, c_wide ? "1900-01-00 00:00:00.000000005" : nullptr},
                {7, {lastYearEnd + 1, 5}, c_wide ? "1900-01-00 00:00:00.000000005" : nullptr}};
    for (const auto& row : rows) {
        if (row.text != nullptr) {
            EXPECT_EQ(Text(row.form, row.value), row.text) << row.form;
        }
    }
}

TEST(Time, BuildsItsTextOncePerChangeOfValueWhateverTheZone) {
    const ScopedZone zone("UTC0");
    Time time(5u);
    const Time& self = time;
    const std::function<void()> changes[] = {[&] { time += Time(1u); }, [&] { time -= Time(2u); },
                                             [&] { time /= 2; }, [&] { time = self; },
                                             [&] { time = Time(9u); }};
    std::string texts = Text(time).substr(7, 2);
    for (const auto& change : changes) {
        change();
        texts += Text(time).substr(7, 2);
    }
    EXPECT_EQ(texts, "5.6.4.2.2.9.");
    ScopedZone::Set("ABC-1");
    EXPECT_EQ(Text(time) + Text(Time(time)), "00:00:09.00000000001:00:09.000000000");
}

TEST(Time, ReadsTheClockWhenBuiltFromASignedForm) {
    FakeClock clock(1'000);
    EXPECT_EQ(Text(Time(15)), "1970-01-01 00:16:40.000000000");
    const Time time = Time::Now(10);
    EXPECT_EQ(Text(time), "00:16:40");
    clock.Advance(1);
    EXPECT_EQ(Text(Time(time)), "00:16:40");
    time.UpdateToCurrent();
    EXPECT_EQ(Text(time), "00:16:41");
    EXPECT_EQ(std::chrono::system_clock::now().time_since_epoch(), std::chrono::seconds(1'001));
}

}  // namespace quor_test
