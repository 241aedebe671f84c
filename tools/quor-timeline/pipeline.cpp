#include "pipeline.h"

#include <algorithm>

#include "reader.h"

namespace timeline {
namespace {

bool IsLimited(const Limits& limits) {
    return !limits.m_from.empty() || !limits.m_to.empty() || limits.m_run != 0 ||
           limits.m_shortest > 0;
}

// Keeps what a survey is about.
class Surveyor : public Sink {
public:
    void BeginRun(const Run& run) override { m_runs = run.m_number; }

    int m_runs = 0;
};

}  // namespace

Pipeline::Pipeline(const Selection& selection, std::int64_t firstDay, Sink& sink)
    : m_filter(selection.m_threads, selection.m_function),
      m_window(IsLimited(selection.m_limits)
                   ? std::optional<Window>(std::in_place, sink, selection.m_limits)
                   : std::nullopt),
      m_calls(m_window ? *m_window : sink, firstDay) {}

void Pipeline::BeginFile(const std::string& path) {
    m_files.push_back(std::make_unique<const std::string>(path));
    m_position = {m_files.back().get(), 0};
}

void Pipeline::Take(std::string_view text, bool whole) {
    ++m_position.m_line;
    const Line line = m_lines.Read(text, whole);
    if (m_filter.IsWanted(line)) {
        m_calls.Take(line, m_position);
    } else {
        m_calls.Pass(line);
    }
}

// Days are counted up to the first date, which is then a day of the calendar.
Survey TakeSurvey(const std::vector<std::string>& files, bool countRuns) {
    Survey survey;
    if (std::find(files.begin(), files.end(), "-") != files.end()) {
        return survey;
    }
    constexpr std::int64_t c_someDay = 50'000 * c_day;
    Surveyor surveyor;
    Calls calls(surveyor, c_someDay);
    LineReader lines;
    Clock clock;
    std::int64_t seen = 0;
    bool isDated = false;
    Reading reading;
    reading.m_progress = [&](std::uint64_t) { return countRuns || !isDated; };
    reading.m_take = [&](std::string_view text, bool whole) {
        if (isDated && !countRuns) {
            return;
        }
        const Line line = lines.Read(text, whole);
        if (!isDated && line.IsOfThread()) {
            if (seen++ == 0) {
                clock.Set(c_someDay + line.m_timeOfDay);
            }
            clock.Take(line.m_timeOfDay);
        } else if (!isDated && line.m_moment > 0) {
            isDated = true;
            if (seen > 0) {
                clock.Take(line.m_moment % c_day);
                survey.m_firstDay =
                    std::max<std::int64_t>(c_someDay + line.m_moment - clock.Now().m_wall, 0);
            }
        }
        calls.Take(line, {});
    };
    for (const std::string& file : files) {
        ReadLines(file, reading);
        lines.EndFile();
    }
    calls.Finish();
    survey.m_runs = surveyor.m_runs;
    return survey;
}

}  // namespace timeline
