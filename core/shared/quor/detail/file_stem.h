#ifndef QUOR_DETAIL_FILE_STEM_H
#define QUOR_DETAIL_FILE_STEM_H

#include <cstddef>

namespace quor::detail {

// The base name of a source file without its extension, computed by the compiler from __FILE__.
template <std::size_t Size>
struct FileStem {
    explicit constexpr FileStem(const char (&path)[Size]) : m_text{} {
        std::size_t begin = 0;
        for (std::size_t index = 0; path[index] != '\0'; ++index) {
            begin = path[index] == '/' ? index + 1 : begin;
        }
        std::size_t length = 0;
        std::size_t end = 0;
        for (; path[begin + length] != '\0'; ++length) {
            m_text[length] = path[begin + length];
            end = path[begin + length] == '.' && length > 0 ? length : end;
        }
        m_text[end > 0 ? end : length] = '\0';
    }

    char m_text[Size];
};

}  // namespace quor::detail

#define QUOR_FILE_STEM_()                                                                \
    ([]() noexcept -> const char* {                                                      \
        static constexpr ::quor::detail::FileStem<sizeof(__FILE__)> quorStem_(__FILE__); \
        return quorStem_.m_text;                                                         \
    }())

#endif
