#include <gtest/gtest.h>
#include <quor/any_reference.h>

#include <limits>
#include <memory>
#include <type_traits>

#include "thrown.h"

using namespace quor_test;
using quor::AnyReference;

namespace {

// A temporary is refused, and no template takes over the copy of a reference.
static_assert(!std::is_constructible_v<AnyReference, int>);
static_assert(!std::is_constructible_v<AnyReference, const std::string>);
static_assert(!std::is_assignable_v<AnyReference&, int&>);
static_assert(std::is_constructible_v<AnyReference, const AnyReference>);

template <typename T>
class AnyReferenceTo : public testing::Test {};
using Supported =
    testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned int, long long,
                   unsigned long long, char, float, double, long double, bool, std::string>;
TYPED_TEST_SUITE(AnyReferenceTo, Supported, );

TYPED_TEST(AnyReferenceTo, WritesThroughCopiesAndHolders) {
    TypeParam first{}, second{}, value{};
    if constexpr (std::is_arithmetic_v<TypeParam>) {
        value = std::numeric_limits<TypeParam>::max();
    } else {
        value.assign(1'000'000, 'x');
    }
    AnyReference reference(first);
    EXPECT_EQ(reference.Type(), typeid(TypeParam));
    AnyReference(reference).Assign(value);
    reference.Assign(first);  // of itself
    EXPECT_EQ(first, value);

    reference = AnyReference(second);
    reference = static_cast<const AnyReference&>(reference);
    const AnyReference moved = std::move(reference);  // NOLINT(performance-move-const-arg)
    EXPECT_EQ(second, TypeParam());                   // nothing was written so far
    reference.Assign(value);  // NOLINT(bugprone-use-after-move): it still refers
    EXPECT_EQ(second, value);
    moved.Assign(TypeParam());
    EXPECT_EQ(second, TypeParam());

    using Holder = AnyReference::SpecificPtrHolder<TypeParam>;
    const std::unique_ptr<AnyReference::PtrHolder> clone(Holder(second).Clone());
    EXPECT_EQ(clone->Type(), typeid(TypeParam));
    EXPECT_EQ(&(dynamic_cast<Holder&>(*clone) = value), clone.get());
    EXPECT_EQ(second, value);
}

TEST(AnyReference, RefusesOtherTypesAndConstVariablesUntouched) {
    int number = 3;
    const int fixed = 3;
    const AnyReference toNumber(number), toFixed(fixed);
    const std::string begin = "AnyReference: types differ in Assign ( ";
    EXPECT_EQ(Thrown([&] { toNumber.Assign(5L); }), begin + "int != long).");
    EXPECT_EQ(Thrown([&] { toNumber.Assign(5u); }), begin + "int != unsigned int).");
    EXPECT_EQ(Thrown([&] { toNumber.Assign("5"); }), begin + "int != char [2]).");
    EXPECT_EQ(Thrown([&] { toFixed.Assign(5); }), begin + "difference in constness of type int).");
    EXPECT_EQ(Thrown([&] { AnyReference(toFixed).Assign(5.0); }), begin + "int != double).");
    AnyReference assigned(number);
    assigned = toFixed;
    EXPECT_EQ(Thrown([&] { assigned.Assign(5); }), begin + "difference in constness of type int).");
    EXPECT_TRUE(number == 3 && fixed == 3 && toFixed.Type() == typeid(int));
    EXPECT_EQ(
        Thrown([] { AnyReference::ThrowTypeException("x", typeid(float), typeid(std::string)); }),
        "AnyReference: types differ in x ( float != std::__cxx11::basic_string<char, "
        "std::char_traits<char>, std::allocator<char> >).");
}

}  // namespace
