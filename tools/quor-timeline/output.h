#ifndef QUOR_TIMELINE_OUTPUT_H
#define QUOR_TIMELINE_OUTPUT_H

#include <charconv>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace timeline {

/// Gathers what goes to a stream: a stream's own formatting takes more than the reading does.
class Output {
public:
    /// `stream` must outlive the object.
    explicit Output(std::ostream& stream) : m_stream(stream), m_buffer(c_size) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    Output& operator<<(std::string_view text) {
        while (text.size() > Room()) {
            const std::size_t part = Room();
            Append(text.substr(0, part));
            text.remove_prefix(part);
            Flush();
        }
        Append(text);
        return *this;
    }
    Output& operator<<(std::int64_t number) {
        if (Room() < c_longestNumber) {
            Flush();
        }
        char* const begin = m_buffer.data() + m_used;
        m_used += static_cast<std::size_t>(
            std::to_chars(begin, begin + c_longestNumber, number).ptr - begin);
        return *this;
    }
    /// Throws std::runtime_error when the stream takes no more.
    void Flush() {
        m_stream.write(m_buffer.data(), static_cast<std::streamsize>(m_used));
        m_used = 0;
        if (!m_stream.flush()) {
            throw std::runtime_error("the output cannot be written");
        }
    }

private:
    static constexpr std::size_t c_size = 1 << 16;
    static constexpr std::size_t c_longestNumber = 20;

    std::size_t Room() const { return c_size - m_used; }
    void Append(std::string_view text) {
        std::memcpy(m_buffer.data() + m_used, text.data(), text.size());
        m_used += text.size();
    }

    std::ostream& m_stream;
    std::vector<char> m_buffer;
    std::size_t m_used = 0;
};

}  // namespace timeline

#endif
