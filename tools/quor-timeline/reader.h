#ifndef QUOR_TIMELINE_READER_H
#define QUOR_TIMELINE_READER_H

#include <functional>
#include <string>
#include <string_view>

namespace timeline {

/// Calls `take` for each line of the file, without its line feed; "-" is standard input. A line
/// longer than a megabyte is handed over in pieces. Throws std::system_error.
void ReadLines(const std::string& path, const std::function<void(std::string_view)>& take);

}  // namespace timeline

#endif
