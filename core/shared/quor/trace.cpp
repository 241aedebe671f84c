#define QUOR_TRACE_FNC_INLINE_
#include <quor/trace.h>

#include <quor/detail/errno_keeper.h>
#include <quor/internal/trace_file_internals.h>

#include <cstring>

namespace quor {

TraceLevel_e TraceActiveLevel() {
    TraceLevel_e level = Off;
    TraceFile::GetInstance().GetLevel(level);
    return level;
}

void TraceWrite(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                const std::string& text) {
    internal::TraceFileInternals::WriteText(level, file, line, text.c_str());
}

// Scopes end in destructors and in the last handlers of threads, where an exception would end the
// process: a line is not worth that.
void TraceFnc::Write(const char* arrow, const char* function, const char* file, int line) noexcept {
    const detail::ErrnoKeeper keeper;
    try {
        const std::string_view scope(function);
        internal::LineBuffer room(internal::c_lineGap, std::strlen(arrow) + scope.size());
        char* const text = room.Text();
        internal::TraceFileInternals::WriteLine(
            TraceFile::GetInstance(), High, file, line,
            {text, internal::Put(internal::Put(text, arrow), scope), internal::c_lineGap});
    } catch (...) {
    }
}

}  // namespace quor
