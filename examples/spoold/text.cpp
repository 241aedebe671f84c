#include "text.h"

#include <cerrno>
#include <system_error>

namespace spoold {

std::string Quoted(const std::string& text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string quoted = "'";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= ' ' && byte <= '~' && byte != '\\') {
            quoted += character;
        } else {
            quoted += "\\x";
            quoted += digits[byte / 16];
            quoted += digits[byte % 16];
        }
    }
    return quoted + "'";
}

std::string SystemError(const std::string& what) {
    const int error = errno;
    std::string text = what + ": " + std::generic_category().message(error);
    if (error == EMFILE || error == ENFILE || error == ENOMEM || error == ENOBUFS) {
        throw Shortage(text);
    }
    return text;
}

}  // namespace spoold
