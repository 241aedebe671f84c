#include <quor/internal/joined.h>

#include <iterator>

namespace quor::internal {

Part::Part(long long number) : m_digits{} {
    const char* const begin = PutNumberBefore(std::end(m_digits), number);
    m_text = {begin, static_cast<std::size_t>(std::end(m_digits) - begin)};
}

std::string Joined(std::initializer_list<Part> parts) {
    std::size_t size = 0;
    for (const Part& part : parts) {
        size += part.Text().size();
    }
    std::string text;
    text.reserve(size);
    for (const Part& part : parts) {
        text += part.Text();
    }
    return text;
}

}  // namespace quor::internal
