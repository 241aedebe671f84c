#include <gtest/gtest.h>
#include <pthread.h>
#include <quor/any.h>

#include <iomanip>
#include <map>
#include <memory>
#include <sstream>
#include <thread>
#include <tuple>

#include "thrown.h"

using namespace quor_test;
using namespace std::string_literals;
using quor::Any;
template <typename T>
using Array = std::vector<T>;

namespace {

static_assert(!std::is_constructible_v<Any, std::unique_ptr<int>>);  // not copyable
static_assert(!std::is_constructible_v<Any, int (&)[3]>);            // would be a pointer
static_assert(std::is_nothrow_move_constructible_v<Any> && std::is_nothrow_move_assignable_v<Any>);

std::string Printed(const Any& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

TEST(Any, PrintsAndCountsTheSixteenTypes) {
    using Row = std::tuple<Any, const char*, std::size_t>;
    constexpr std::size_t scalar = 99;
    using ULongLong = unsigned long long;
    for (const auto& [value, text, size] :
         {Row(true, "1", scalar), Row(-42, "-42", scalar), Row(42u, "42", scalar),
          Row(-42LL, "-42", scalar), Row(~0ULL, "18446744073709551615", scalar),
          Row(2.125, "2.125", scalar), Row(1.5f, "1.5", scalar), Row("a b"s, "a b", scalar),
          Row("a b", "a b", scalar), Row(Array<bool>{true, false, true}, "1,0,1", 3),
          Row(Array<int>{1, -2}, "1,-2", 2), Row(Array<unsigned int>{1}, "1", 1),
          Row(Array<long long>{-1, 2}, "-1,2", 2),
          Row(Array<ULongLong>{~0ULL}, "18446744073709551615", 1),
          Row(Array<double>{.5, 2}, "0.5,2", 2), Row(Array<double>{}, "", 0),
          Row(Array<float>{.5f}, "0.5", 1), Row(Array<std::string>{"x", "", "y z"}, "x,,y z", 3)}) {
        EXPECT_EQ(Printed(value), text);
        EXPECT_EQ(value.IsArray(), size != scalar) << text;
        EXPECT_EQ(value.Size(), size != scalar ? size : 1) << text;
    }
}

TEST(Any, RefusesToPrintEverythingElse) {
    const auto print = [](auto& stream, const auto& value) -> decltype(stream << value) {};
    using Print = decltype(print);
    static_assert(!std::is_invocable_v<Print, std::ostream&, Array<int>>);
    static_assert(!std::is_invocable_v<Print, std::ostream&, Array<Any>>);
    for (const Any& value : {Any(), Any('c'), Any(short{1}), Any(1L), Any(1UL), Any(1.0L),
                             Any(Array<long>{1}), Any(Array<short>{1})}) {
        std::ostringstream stream;
        EXPECT_EQ(Thrown([&] { quor::operator<<(stream, value); }), "Unsupported value type");
        EXPECT_TRUE(stream.str().empty() && !value.IsArray() && value.Size() == 1)
            << value.Value().type().name();
    }
}

TEST(Any, PrintsAsTheStreamIsSet) {
    std::ostringstream stream;
    stream << std::fixed << std::setprecision(2) << std::boolalpha << std::hex << std::setfill('.')
           << Any(2.0) << ' ' << Any(Array<float>{1, 2}) << ' ' << Any(Array<bool>{false, true})
           << ' ' << std::setw(4) << Any(Array<int>{255, 1}) << ' ' << std::setw(3) << Any("x");
    EXPECT_EQ(stream.str(), "2.00 1.00,2.00 false,true ..ff,1 ..x");
}

TEST(Any, GivesOnlyExactlyTheTypeThatItHolds) {
    std::ostringstream stream;
    Any(Array<short>{7, 8}).PrintArray<short>(stream);
    EXPECT_EQ(stream.str(), "7,8");
    EXPECT_EQ(Any(short{7}).Get<short>(), 7);
    const std::string refusal = "Invalid value type";
    EXPECT_EQ(Thrown([] { Any().Get<int>(); }), refusal);
    EXPECT_EQ(Thrown([] { Any(1).Get<unsigned int>(); }), refusal);
    EXPECT_EQ(Thrown([] { Any(Array<float>{1}).Get<Array<double>>(); }), refusal);
    EXPECT_EQ(Thrown([&] { Any(true).PrintArray<bool>(stream); }), refusal);
}

TEST(Any, TurnsEveryFailedCopyIntoItsOwnException) {
    const Any strings(Array<std::string>(3));
    {
        const ScopedValue<int, int> outOfMemory(Hooks::allocations, 0);
        EXPECT_THROW(strings.Get<Array<std::string>>(), quor::Exception);
        EXPECT_THROW(strings.Size(), quor::Exception);
        EXPECT_THROW(strings.Print(std::cout), quor::Exception);
    }
    static int onCopy = 0;
    struct Hostile {
        Hostile() = default;
        Hostile(const Hostile&) {
            onCopy == 1 ? throw 5 : onCopy == 2 ? pthread_exit(nullptr) : void();
        }
    };
    const Any value{Hostile()};
    onCopy = 1;
    EXPECT_EQ(Thrown([&] { value.Get<Hostile>(); }), "Invalid value type");
    onCopy = 2;  // the end of a thread is no failure: stopping it would end the process
    std::thread([&] { value.Get<Hostile>(), onCopy = 0; }).join();
    EXPECT_EQ(onCopy, 2);
}

TEST(Any, IsAValue) {
    const Array<int> million(1'000'000, 7);
    Any value = std::string(1'000'000, 'x');
    Any copy(value);  // a non-const one is copied, not wrapped
    EXPECT_EQ(copy.Get<std::string>(), value.Get<std::string>());
    copy = million;
    EXPECT_EQ(Printed(value).size(), 1'000'000u);
    copy = boost::any_cast<const Array<int>&>(copy.Value());  // a part of itself
    Any& self = copy;
    copy = self;
    copy = std::move(self);
    EXPECT_EQ(copy.Get<Array<int>>(), million);
    value = std::move(copy);
    EXPECT_EQ(Any(std::move(value)).Size(), million.size());
    // NOLINTNEXTLINE(bugprone-use-after-move)
    EXPECT_TRUE(copy.Empty() && value.Empty() && copy.Size() == 1);
    value = "text";
    value = Any(value.Value());  // a boost::any gives its value
    EXPECT_EQ(value.Get<std::string>(), "text");
    std::map<std::string, std::tuple<Any>> nested;  // asks whether Any can be made of itself
    nested.try_emplace("text", value);
    EXPECT_EQ(Printed(std::get<0>(nested["text"])), "text");
    value = {};
    EXPECT_TRUE(value.Empty());
}

}  // namespace
