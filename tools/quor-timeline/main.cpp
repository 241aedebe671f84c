#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <regex>
#include <string>
#include <unordered_map>
#include <vector>

#include "calls.h"
#include "line.h"
#include "output.h"
#include "progress.h"
#include "reader.h"
#include "sinks.h"
#include "window.h"

namespace timeline {
namespace {

struct Options {
    std::vector<std::string> m_files{"-"};
    bool m_chrome = false;
    bool m_speedscope = false;
    bool m_folded = false;
    bool m_summary = false;
    bool m_strict = false;
    std::vector<std::int64_t> m_threads;  // empty: all
    std::string m_from;
    std::string m_to;
    std::string m_function;  // empty: all
};

void AddOptions(CLI::App& app, Options& options) {
    app.add_option("FILE", options.m_files,
                   "Trace files, the oldest first; - is standard input, as without a file");
    CLI::Option_group* const forms = app.add_option_group("Output", "What is written");
    forms->add_flag("--summary", options.m_summary,
                    "Write tables of functions, exceptions and what was not finished (default)");
    forms->add_flag("--speedscope", options.m_speedscope, "Write JSON for speedscope");
    forms->add_flag("--chrome", options.m_chrome, "Write Chrome trace events, for Perfetto");
    forms->add_flag("--folded", options.m_folded, "Write folded stacks, for flame graphs");
    forms->require_option(0, 1);
    app.add_option("--thread", options.m_threads, "Look at this thread alone, or at several")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--from", options.m_from,
                   "Look at what passed from this moment on: HH:MM:SS[.FRACTION], the first in the "
                   "trace, or with YYYY-MM-DD in front");
    app.add_option("--to", options.m_to, "Look at what passed until then");
    app.add_option("--function", options.m_function,
                   "Look at the functions whose text matches this regular expression; the time in "
                   "others is their callers'");
    app.add_flag("--strict", options.m_strict, "Fail when something was not understood");
}

std::unique_ptr<Sink> MakeSink(const Options& options, Output& output) {
    return options.m_chrome       ? MakeChrome(output)
           : options.m_speedscope ? MakeSpeedscope(output)
           : options.m_folded     ? MakeFolded(output)
                                  : MakeSummary(output);
}

// Which lines are looked at.
class Filter {
public:
    explicit Filter(const Options& options)
        : m_threads(options.m_threads),
          m_all(options.m_function.empty()),
          m_function(options.m_function, std::regex::ECMAScript | std::regex::optimize) {}

    bool IsWanted(const Line& line) {
        if (!line.IsOfThread()) {
            return true;
        }
        return IsOfWantedThread(line) &&
               (m_all || line.m_kind == Line::eRecord || IsOfWantedFunction(line.m_text));
    }

private:
    bool IsOfWantedThread(const Line& line) const {
        return m_threads.empty() ||
               std::count(m_threads.begin(), m_threads.end(), line.m_thread) > 0;
    }
    bool IsOfWantedFunction(std::string_view text) {
        const auto [answer, isNew] =
            m_answers.try_emplace(std::string(text.substr(0, c_searchedText)), false);
        if (isNew) {
            answer->second = std::regex_search(answer->first, m_function);
        }
        return answer->second;
    }

    // The C++ library's search takes stack for each character: 30,000 of them were too many.
    static constexpr std::size_t c_searchedText = 4000;

    const std::vector<std::int64_t> m_threads;
    const bool m_all;
    const std::regex m_function;
    std::unordered_map<std::string, bool> m_answers;
};

void ReadFiles(const Options& options, Calls& calls) {
    std::uint64_t size = 0;
    for (const std::string& file : options.m_files) {
        size += SizeOf(file);
    }
    Progress progress(size);
    Filter filter(options);
    LineReader lines;
    Reading reading;
    reading.m_progress = [&progress](std::uint64_t bytes) { progress.Add(bytes); };
    reading.m_take = [&](std::string_view text, bool whole) {
        const Line line = lines.Read(text, whole);
        if (filter.IsWanted(line)) {
            calls.Take(line);
        } else {
            calls.Pass(line);
        }
    };
    for (const std::string& file : options.m_files) {
        ReadLines(file, reading);
        lines.EndFile();
        calls.EndRun();
    }
}

// True when everything was understood.
bool Report(const Calls& calls) {
    if (calls.m_strayLines + calls.m_unmatchedExits + calls.m_cutCalls + calls.m_clockSteps == 0) {
        return true;
    }
    std::cerr << "quor-timeline: lines not understood: " << calls.m_strayLines
              << ", exits without entry: " << calls.m_unmatchedExits
              << ", calls without exit: " << calls.m_cutCalls
              << ", clock set back: " << calls.m_clockSteps << '\n';
    return false;
}

bool Run(const Options& options) {
    Output output(std::cout);
    const std::unique_ptr<Sink> sink = MakeSink(options, output);
    Window window(*sink, options.m_from, options.m_to);
    const bool hasWindow = !options.m_from.empty() || !options.m_to.empty();
    Calls calls(hasWindow ? window : *sink);
    ReadFiles(options, calls);
    sink->Finish();
    output.Flush();
    return Report(calls);
}

}  // namespace
}  // namespace timeline

int main(int argc, char** argv) try {
    std::ios::sync_with_stdio(false);
    CLI::App app("Shows the calls that a trace at level High or Detail holds.");
    timeline::Options options;
    timeline::AddOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    return timeline::Run(options) || !options.m_strict ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "quor-timeline: " << error.what() << std::endl;
    return 1;
}
