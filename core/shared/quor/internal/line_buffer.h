#ifndef QUOR_INTERNAL_LINE_BUFFER_H
#define QUOR_INTERNAL_LINE_BUFFER_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace quor::internal {

// Copies `text` to `end` and returns the new end.
inline char* Put(char* end, std::string_view text) {
    std::memcpy(end, text.data(), text.size());
    return end + text.size();
}

// Copies `text` in front of `begin` and returns the new beginning.
inline char* PutBefore(char* begin, std::string_view text) {
    begin -= text.size();
    std::memcpy(begin, text.data(), text.size());
    return begin;
}

// A text in the middle of a writable room: `gap` characters in front of it, into which the head of
// a line goes, and one behind it for the line feed.
struct RoomyText {
    std::size_t Size() const { return static_cast<std::size_t>(end - begin); }

    char* begin;
    char* end;
    std::size_t gap;
};

// The gap of a text that becomes a line of the trace: enough but for very long file names.
constexpr std::size_t c_lineGap = 96;

// The room in which a line is put together, on the stack unless the line is long. Throws
// std::bad_alloc.
class LineBuffer {
public:
    LineBuffer(std::size_t gap, std::size_t textSize)
        : m_heap(gap + textSize + 1 > sizeof(m_stack) ? new char[gap + textSize + 1] : nullptr),
          m_text((m_heap != nullptr ? m_heap.get() : m_stack) + gap) {}
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;
    ~LineBuffer() = default;

    // Where the text goes.
    char* Text() { return m_text; }

private:
    char m_stack[640];
    const std::unique_ptr<char[]> m_heap;
    char* const m_text;
};

}  // namespace quor::internal

#endif
