#ifndef QUOR_TIMELINE_FOLLOW_H
#define QUOR_TIMELINE_FOLLOW_H

#include <functional>
#include <string>

#include "reader.h"

namespace timeline {

/// Hands over the lines of a file that grows, until SIGINT or SIGTERM comes; what is there then is
/// handed over first. When the file is renamed or replaced, goes on with the new one of its name.
/// Calls `begin` for each of these files, and `draw` about once a second while there is nothing to
/// read. Throws std::system_error.
void Follow(const std::string& path, const Reading& reading, const std::function<void()>& begin,
            const std::function<void()>& draw);

/// Calls `draw` in a child process, which starts from a copy of all there is, and waits for it.
void DrawInChild(const std::function<void()>& draw);

}  // namespace timeline

#endif
