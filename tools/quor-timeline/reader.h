#ifndef QUOR_TIMELINE_READER_H
#define QUOR_TIMELINE_READER_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace timeline {

/// What becomes of the lines that are read.
struct Reading {
    /// Takes a line without its line feed; `whole` is false when it had none, at a file's end.
    std::function<void(std::string_view line, bool whole)> m_take;
    /// Told now and then how many bytes more were read.
    std::function<void(std::uint64_t bytes)> m_progress;
};

/// Hands over each line of the file; "-" is standard input. Of a line longer than a megabyte only
/// the first megabyte is handed over. Throws std::system_error.
void ReadLines(const std::string& path, const Reading& reading);

/// The size of the file in bytes; 0 when nobody can tell.
std::uint64_t SizeOf(const std::string& path);

}  // namespace timeline

#endif
