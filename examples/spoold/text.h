#ifndef SPOOLD_TEXT_H
#define SPOOLD_TEXT_H

#include <string>

namespace spoold {

/// `text` in single quotes, with everything but printable ASCII (and the backslash) as "\xNN".
/// Names come from outside: unescaped, a line feed in one could forge a line of the log.
std::string Quoted(const std::string& text);

/// `what`, a colon and the system's text for errno.
std::string SystemError(const std::string& what);

}  // namespace spoold

#endif
