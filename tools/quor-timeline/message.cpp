#include "message.h"

#include "line.h"

namespace timeline {
namespace {

struct Mark {
    std::string_view m_mark;
    Message::Kind_e m_kind;
};

constexpr Mark c_marks[] = {
    {"** Thrown quor::Exception: ", Message::eThrown},
    {"\n*** Please use this output when reporting a bug.\n\n*** ASSERTION FAILURE: ",
     Message::eAssertion},
    {"Critical: ", Message::eCritical},
    {"Error   : ", Message::eError},
    {"Warning : ", Message::eWarning},
    {"Info    : ", Message::eInfo},
    {"WARNING: ", Message::eOwnWarning},
    {"*** Trac", Message::eLevel},
};

constexpr std::string_view c_in = "** in: ";
constexpr std::string_view c_constructor = "(quor::Exception::Exception(";

bool IsOfExceptionModule(std::string_view site) {
    const std::string_view file = site.substr(0, site.find_last_not_of("0123456789 ") + 1);
    return file.empty() || file == "exception";
}

std::string_view WithoutAddress(std::string_view place) {
    const std::size_t address = place.rfind(" [0x");
    return address != std::string_view::npos && place.back() == ']' ? place.substr(0, address)
                                                                    : place;
}

// "file:5 in function: f()\n*** REASON: why\n\n0. stack..." on one line, without the stack.
std::string AssertionText(std::string_view text) {
    constexpr std::string_view c_reason = "\n*** REASON: ";
    const std::size_t reason = text.find(c_reason);
    std::string line(text.substr(0, text.find('\n')));
    if (reason != std::string_view::npos) {
        const std::string_view why = text.substr(reason + c_reason.size());
        line += ": " + std::string(why.substr(0, why.find('\n')));
    }
    return line;
}

}  // namespace

Message::Kind_e TakeKind(std::string_view site, std::string& text) {
    for (const Mark& mark : c_marks) {
        if (!StartsWith(text, mark.m_mark)) {
            continue;
        }
        if (mark.m_kind == Message::eThrown && !IsOfExceptionModule(site)) {
            return Message::eText;
        }
        text.erase(0, mark.m_kind == Message::eLevel ? 4 : mark.m_mark.size());
        if (mark.m_kind == Message::eAssertion) {
            text = AssertionText(text);
        } else if (mark.m_kind == Message::eLevel && text.size() > 4 &&
                   text.compare(text.size() - 4, 4, " ***") == 0) {
            text.resize(text.size() - 4);
        }
        return mark.m_kind;
    }
    return Message::eText;
}

bool IsSwallowed(const Message& message) {
    // The log repeats an assertion, whose own message counts already.
    return message.m_kind == Message::eThrown || message.m_kind == Message::eAssertion ||
           message.m_kind == Message::eError || message.m_kind == Message::eOwnWarning ||
           (message.m_kind == Message::eCritical &&
            !StartsWith(message.m_text, "\n*** Please use"));
}

std::string_view KindName(Message::Kind_e kind) {
    constexpr std::string_view c_names[] = {"message",  "exception", "assertion",
                                            "Critical", "Error",     "Warning",
                                            "Info",     "WARNING",   "level"};
    return c_names[kind];
}

std::string_view FindPlace(std::string_view text) {
    if (StartsWith(text, c_in)) {
        return WithoutAddress(text.substr(c_in.size(), text.find('\n') - c_in.size()));
    }
    if (!StartsWith(text, "0. ")) {
        return {};
    }
    const std::size_t constructor = text.find(c_constructor);
    const std::size_t line = text.find('\n', constructor);
    const std::size_t frame = text.find(". ", line);
    if (constructor == std::string_view::npos || frame == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = text.substr(frame + 2);
    return WithoutAddress(rest.substr(0, rest.find('\n')));
}

std::string PlaceName(std::string_view place, NameFnc name) {
    place.remove_prefix(place.rfind('/', place.find('(')) + 1);
    const std::size_t open = place.find('(');
    const std::string_view function = open == std::string_view::npos || place.back() != ')'
                                          ? std::string_view()
                                          : place.substr(open + 1, place.size() - open - 2);
    // "main+0x1b" is a symbol without a signature, "+0x1b" not even that.
    return name == FullName || function.empty() || function[0] == '+' ? FullName(place)
                                                                      : name(function);
}

}  // namespace timeline
