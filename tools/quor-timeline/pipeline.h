#ifndef QUOR_TIMELINE_PIPELINE_H
#define QUOR_TIMELINE_PIPELINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calls.h"
#include "filter.h"
#include "line.h"
#include "names.h"
#include "sinks.h"
#include "window.h"

namespace timeline {

/// Which part of a trace is looked at.
struct Selection {
    std::vector<std::string> m_threads;  // empty: all
    std::string m_function;              // empty: all
    Limits m_limits;
};

/// The way of a line from a file to a sink.
class Pipeline {
public:
    /// `sink` must outlive the object. `firstDay` is that of lines before the first banner, in
    /// nanoseconds since 1970. Throws std::invalid_argument.
    Pipeline(const Selection& selection, std::int64_t firstDay, Sink& sink);

    void BeginFile(const std::string& path);
    void Take(std::string_view text, bool whole);
    void EndFile() { m_lines.EndFile(); }
    /// The end of all files; see Calls::Finish().
    void Finish(std::int64_t now = 0) { m_calls.Finish(now); }

    bool IsBelowHigh() const { return m_calls.IsBelowHigh(); }

private:
    Filter m_filter;
    std::optional<Window> m_window;  // only where something is left out: it takes time
    LineReader m_lines;
    Calls m_calls;
    std::vector<std::unique_ptr<const std::string>> m_files;
    Position m_position;
};

/// What can be known of a trace only once all of it was read.
struct Survey {
    std::int64_t m_firstDay = 0;  // for Pipeline
    int m_runs = 0;
};

/// Reads the files for this, up to the first date unless the runs are to be counted. Standard input
/// cannot be read twice: a survey of it says nothing.
Survey TakeSurvey(const std::vector<std::string>& files, bool countRuns);

}  // namespace timeline

#endif
