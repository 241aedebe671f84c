#ifndef QUOR_TIMELINE_MESSAGE_H
#define QUOR_TIMELINE_MESSAGE_H

#include <string>
#include <string_view>

#include "clock.h"
#include "names.h"

namespace timeline {

/// One message of the trace that is neither entry nor exit. The texts live as long as the call that
/// hands it over.
struct Message {
    enum Kind_e {
        eText,    // the program's own words
        eThrown,  // an exception that reported itself; m_place is where it was thrown
        eAssertion,
        eCritical,  // of the log, like the next three
        eError,
        eWarning,
        eInfo,
        eOwnWarning,  // of workers and controllers: "WARNING: ..."
        eLevel        // "Trace level changed to 3", "Tracing paused." and "... continued."
    };

    Kind_e m_kind = eText;
    Moment m_moment;
    const Name* m_site = nullptr;
    std::string_view m_text;   // without what m_kind says; of several lines, if it has them
    std::string_view m_place;  // without the load address
};

/// Tells the kind of a message by its text, and takes from the text what marks the kind. `site` is
/// "file line" as in the trace: only the library's own module reports exceptions.
Message::Kind_e TakeKind(std::string_view site, std::string& text);
/// True for a kind that says that something failed, but went on.
bool IsSwallowed(const Message& message);
/// What a kind is called in outputs: "exception", "Error".
std::string_view KindName(Message::Kind_e kind);

/// The place in "** in: PROGRAM(FUNCTION) [0x5624fe7b830b]", or in a stack dump the frame that
/// built the exception; empty when the text is neither.
std::string_view FindPlace(std::string_view text);
/// A place as tables show it: "spoold(Drain(int))" by its full name, "Drain" by its short one.
std::string PlaceName(std::string_view place, NameFnc name);

}  // namespace timeline

#endif
