#ifndef QUOR_INTERNAL_DIGITS_H
#define QUOR_INTERNAL_DIGITS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace quor::internal {

// The texts "00" to "99": one division yields two digits.
struct DigitPairs {
    constexpr DigitPairs() : m_pairs{} {
        for (int number = 0; number < 100; ++number) {
            m_pairs[number][0] = static_cast<char>('0' + number / 10);
            m_pairs[number][1] = static_cast<char>('0' + number % 10);
        }
    }
    char m_pairs[100][2];
};
inline constexpr DigitPairs c_digitPairs;

// Writes two digits and returns the end.
inline char* PutPair(char* text, std::uint32_t number) {
    std::memcpy(text, c_digitPairs.m_pairs[number], 2);
    return text + 2;
}

// Room for any number of 64 bits: "-9223372036854775808".
constexpr std::size_t c_longestNumber = 20;

// Writes a number in front of `end` and returns the beginning.
template <typename Number>
char* PutNumberBefore(char* end, Number number) {
    using Unsigned = std::make_unsigned_t<Number>;
    const bool negative = number < 0;
    auto rest = static_cast<Unsigned>(number);
    rest = negative ? Unsigned(0) - rest : rest;
    char* begin = end;
    for (; rest >= 10; rest /= 100) {
        begin -= 2;
        PutPair(begin, static_cast<std::uint32_t>(rest % 100));
    }
    if (rest != 0 || begin == end) {
        *--begin = static_cast<char>('0' + rest);
    }
    if (negative) {
        *--begin = '-';
    }
    return begin;
}

}  // namespace quor::internal

#endif
