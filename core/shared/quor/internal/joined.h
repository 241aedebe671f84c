#ifndef QUOR_INTERNAL_JOINED_H
#define QUOR_INTERNAL_JOINED_H

#include <quor/internal/digits.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace quor::internal {

// A text, or a number that prints in decimal, for Joined() alone: the text is not copied.
class Part {
public:
    Part(const char* text) : m_text(text), m_digits{} {}
    Part(const std::string& text) : m_text(text), m_digits{} {}
    Part(long long number);
    Part(int number) : Part(static_cast<long long>(number)) {}
    Part(unsigned number) : Part(static_cast<long long>(number)) {}
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    ~Part() = default;

    std::string_view Text() const { return m_text; }

private:
    std::string_view m_text;
    char m_digits[c_longestNumber];
};

// Returns the parts, one behind the other, in memory that is asked for once. A chain of `+` would
// be kilobytes of code.
std::string Joined(std::initializer_list<Part> parts);

}  // namespace quor::internal

#endif
