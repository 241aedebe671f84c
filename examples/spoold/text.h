#ifndef SPOOLD_TEXT_H
#define SPOOLD_TEXT_H

#include <stdexcept>
#include <string>

namespace spoold {

/// `text` in single quotes, with everything but printable ASCII (and the backslash) as "\xNN".
/// Names come from outside: unescaped, a line feed in one could forge a line of the log.
std::string Quoted(const std::string& text);

/// The process ran out of descriptors or memory, which says nothing about the file in hand.
class Shortage : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// `what`, a colon and the system's text for errno. Throws that text as Shortage when errno tells
/// of one, so that no caller takes it for a fault of a file.
std::string SystemError(const std::string& what);

}  // namespace spoold

#endif
