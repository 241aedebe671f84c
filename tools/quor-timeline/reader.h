#ifndef QUOR_TIMELINE_READER_H
#define QUOR_TIMELINE_READER_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace timeline {

/// What becomes of the lines that are read.
struct Reading {
    /// Takes a line without its line feed; `whole` is false when it had none, at a file's end.
    std::function<void(std::string_view line, bool whole)> m_take;
    /// Told now and then how many bytes more were read from the disk; false stops the reading.
    std::function<bool(std::uint64_t bytes)> m_progress;
};

/// Cuts what arrives in pieces into lines. Of a line longer than a megabyte only the first megabyte
/// is handed over.
class LineCutter {
public:
    /// `reading` must outlive the object.
    explicit LineCutter(const Reading& reading);

    /// Where the next piece is to be put, and how long it may be.
    char* Room() { return m_buffer.data() + m_kept; }
    std::size_t RoomSize() const { return m_buffer.size() - m_kept; }
    void Take(std::size_t size);
    /// The end of a file.
    void End();

private:
    void HandOver(const char* begin, const char* end, bool whole);

    const Reading& m_reading;
    std::vector<char> m_buffer;
    std::size_t m_kept = 0;   // of a line whose end has not come yet
    bool m_skipping = false;  // the rest of a line that was handed over
};

/// Hands over each line of the file, which may be compressed by gzip; "-" is standard input.
/// Throws std::system_error, or std::runtime_error for a damaged compressed file.
void ReadLines(const std::string& path, const Reading& reading);

/// The size of the file in bytes; 0 when nobody can tell.
std::uint64_t SizeOf(const std::string& path);

}  // namespace timeline

#endif
