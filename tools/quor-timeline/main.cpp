#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "follow.h"
#include "output.h"
#include "pipeline.h"
#include "progress.h"
#include "reader.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

using MakeSink = std::unique_ptr<Sink>(Output&, const Style&);

struct Options {
    std::vector<std::string> m_files{"-"};
    MakeSink* m_makeSink = MakeSummary;
    Selection m_selection;
    std::string m_run;
    std::string m_shortest;
    bool m_isLastRun = false;
    bool m_isFollowing = false;
    bool m_isStrict = false;
    bool m_hasFullNames = false;
    Style m_style;
};

void AddForms(CLI::App& app, Options& options) {
    struct Form {
        const char* m_flag;
        MakeSink* m_makeSink;
        const char* m_help;
    };
    constexpr Form c_forms[] = {
        {"--summary", MakeSummary, "What is stuck, swallowed and slow, as tables (default)"},
        {"--stuck", MakeStuck, "What had not come to its end, with the open stacks"},
        {"--replay", MakeReplay, "The calls in the order of time, indented"},
        {"--folded", MakeFolded, "Folded stacks, for flame graphs"},
        {"--speedscope", MakeSpeedscope, "JSON for speedscope"},
        {"--chrome", MakeChrome, "Chrome trace events, as JSON"},
        {"--jsonl", MakeJsonLines, "A JSON object per line, for databases"},
    };
    CLI::Option_group* const group = app.add_option_group("Output", "What is written");
    for (const Form& form : c_forms) {
        group->add_flag_callback(
            form.m_flag, [&options, form] { options.m_makeSink = form.m_makeSink; }, form.m_help);
    }
    group->require_option(0, 1);
}

void AddSelection(CLI::App& app, Options& options) {
    Selection& selection = options.m_selection;
    app.add_option("--thread", selection.m_threads, "Look at this thread alone, or at several")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--from", selection.m_limits.m_from,
                   "Look at what passed from this moment on: HH:MM:SS[.FRACTION], the first in the "
                   "trace, or with YYYY-MM-DD in front");
    app.add_option("--to", selection.m_limits.m_to, "Look at what passed until then");
    app.add_option("--run", options.m_run, "Look at one run: its number, or last");
    app.add_option("--function", selection.m_function,
                   "Look at the functions whose text matches this regular expression; the time in "
                   "others is their callers'");
    app.add_option("--min-time", options.m_shortest,
                   "Leave out calls that are shorter: 250us, 5ms, 1.5s; their time is their "
                   "callers'");
}

void AddOptions(CLI::App& app, Options& options) {
    app.add_option("FILE", options.m_files,
                   "Trace files, the oldest first, also compressed by gzip; - is standard input, "
                   "as without a file");
    AddForms(app, options);
    AddSelection(app, options);
    Style& style = options.m_style;
    const std::map<std::string, Style::Sort_e> sorts{{"own", Style::eOwn},
                                                     {"total", Style::eTotal},
                                                     {"calls", Style::eCalls},
                                                     {"mean", Style::eMean},
                                                     {"longest", Style::eLongest}};
    app.add_option("--sort", style.m_sort,
                   "Order of the functions: own, total, calls, mean, longest")
        ->transform(CLI::CheckedTransformer(sorts));
    app.add_option("--top", style.m_top, "Show so many functions (20); 0 shows all");
    app.add_option("--last", style.m_last, "Replay only the last calls of each thread");
    app.add_flag("--columns", style.m_hasColumns, "Replay each thread in a column of its own");
    app.add_option("--names", options.m_hasFullNames, "Show functions short or full")
        ->transform(
            CLI::CheckedTransformer(std::map<std::string, bool>{{"short", false}, {"full", true}}));
    app.add_option("--host", style.m_host, "The host that --jsonl names; else this machine");
    app.add_flag("--follow", options.m_isFollowing,
                 "Go on with a file that grows, and draw the tables each second, until Ctrl-C");
    app.add_flag("--strict", options.m_isStrict, "Fail when something was not understood");
}

// What CLI11 cannot check by itself.
void Complete(Options& options) {
    const bool readsInput = std::count(options.m_files.begin(), options.m_files.end(), "-") > 0;
    if (!options.m_shortest.empty()) {
        options.m_selection.m_limits.m_shortest = ParseDuration(options.m_shortest);
    }
    options.m_isLastRun = options.m_run == "last";
    if (!options.m_run.empty() && !options.m_isLastRun) {
        const bool isNumber = options.m_run.size() < 10 &&
                              options.m_run.find_first_not_of("0123456789") == std::string::npos;
        options.m_selection.m_limits.m_run = isNumber ? std::stoi(options.m_run) : 0;
        if (options.m_selection.m_limits.m_run == 0) {
            throw std::invalid_argument("--run " + options.m_run +
                                        ": neither a number from 1 nor last");
        }
    }
    if (options.m_isLastRun && (readsInput || options.m_isFollowing)) {
        throw std::invalid_argument("--run last needs files that are complete");
    }
    if (options.m_isFollowing &&
        (readsInput || (options.m_makeSink != MakeSummary && options.m_makeSink != MakeStuck))) {
        throw std::invalid_argument("--follow needs a file, and --summary or --stuck");
    }
    if (options.m_style.m_host.empty()) {
        char host[256] = "";
        gethostname(host, sizeof(host) - 1);
        options.m_style.m_host = host;
    }
    options.m_style.m_name = options.m_hasFullNames ? FullName : ShortName;
    options.m_style.m_hasColors = isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

void ReadFiles(const std::vector<std::string>& files, Pipeline& pipeline) {
    std::uint64_t size = 0;
    for (const std::string& file : files) {
        size += SizeOf(file);
    }
    Progress progress(size);
    Reading reading;
    reading.m_progress = [&progress](std::uint64_t bytes) {
        progress.Add(bytes);
        return true;
    };
    reading.m_take = [&pipeline](std::string_view text, bool whole) { pipeline.Take(text, whole); };
    for (const std::string& file : files) {
        pipeline.BeginFile(file);
        ReadLines(file, reading);
        pipeline.EndFile();
    }
}

// The wall clock as the lines of a trace show it.
std::int64_t LocalNow() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    localtime_r(&now, &fields);
    return static_cast<std::int64_t>(timegm(&fields)) * c_second;
}

void FollowLast(const std::string& file, Pipeline& pipeline, Output& output) {
    Reading reading;
    reading.m_take = [&pipeline](std::string_view text, bool whole) { pipeline.Take(text, whole); };
    const auto begin = [&pipeline, &file] {
        pipeline.EndFile();
        pipeline.BeginFile(file);
    };
    const bool isTerminal = isatty(STDOUT_FILENO) == 1;
    const auto draw = [&] {
        output << "\033[H\033[2J";
        pipeline.Finish(LocalNow());
        output.Flush();
    };
    Follow(file, reading, begin, [&] {
        if (isTerminal) {
            DrawInChild(draw);
        }
    });
    if (isTerminal) {
        output << "\033[H\033[2J";
    }
}

// True when everything was understood.
bool Report(const Pipeline& pipeline, const Sink& sink) {
    if (pipeline.IsBelowHigh()) {
        std::cerr << "quor-timeline: no calls: the level was below High\n";
    }
    const auto& faults = sink.m_faults;
    if (std::all_of(faults.begin(), faults.end(), [](std::int64_t count) { return count == 0; })) {
        return true;
    }
    std::cerr << "quor-timeline: lines not understood: " << faults[eStrayLine]
              << ", exits without entry: " << faults[eUnmatchedExit]
              << ", calls without exit: " << faults[eCutCall]
              << ", clock set back: " << faults[eClockStep] << '\n';
    return false;
}

bool ShowTrace(Options& options) {
    const Survey survey = TakeSurvey(options.m_files, options.m_isLastRun);
    if (options.m_isLastRun) {
        options.m_selection.m_limits.m_run = std::max(survey.m_runs, 1);
    }
    Output output(std::cout);
    const std::unique_ptr<Sink> sink = options.m_makeSink(output, options.m_style);
    Pipeline pipeline(options.m_selection, survey.m_firstDay, *sink);
    if (options.m_isFollowing) {
        const std::vector<std::string> before(options.m_files.begin(), options.m_files.end() - 1);
        ReadFiles(before, pipeline);
        FollowLast(options.m_files.back(), pipeline, output);
        pipeline.Finish(LocalNow());
    } else {
        ReadFiles(options.m_files, pipeline);
        pipeline.Finish();
    }
    output.Flush();
    return Report(pipeline, *sink);
}

}  // namespace
}  // namespace timeline

int main(int argc, char** argv) try {
    constexpr int c_wrongCommandLine = 105;  // as CLI11 has it for a value that is refused
    std::ios::sync_with_stdio(false);
    CLI::App app("Shows what a trace of the library tells: calls, exceptions, and what is stuck.");
    timeline::Options options;
    timeline::AddOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return std::cout.flush() ? code : 1;
    }
    try {
        timeline::Complete(options);
        return timeline::ShowTrace(options) || !options.m_isStrict ? 0 : 1;
    } catch (const std::invalid_argument& error) {
        std::cerr << "quor-timeline: " << error.what() << std::endl;
        return c_wrongCommandLine;
    }
} catch (const std::exception& error) {
    std::cerr << "quor-timeline: " << error.what() << std::endl;
    return 1;
}
