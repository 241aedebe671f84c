#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "calls.h"
#include "line.h"
#include "reader.h"
#include "sinks.h"

namespace timeline {
namespace {

struct Options {
    std::vector<std::string> m_files{"-"};
    bool m_chrome = false;
    bool m_folded = false;
    bool m_strict = false;
    std::vector<long> m_threads;  // empty: all
};

void AddOptions(CLI::App& app, Options& options) {
    app.add_option("FILE", options.m_files, "Trace files; - is standard input, as without a file");
    CLI::Option* chrome =
        app.add_flag("--chrome", options.m_chrome, "Write Chrome trace events, for Perfetto");
    app.add_flag("--folded", options.m_folded, "Write folded stacks, for flame graphs")
        ->excludes(chrome);
    app.add_flag("--strict", options.m_strict, "Fail when something was not understood");
    app.add_option("--thread", options.m_threads, "Look at this thread alone, or at several")
        ->delimiter(',')
        ->allow_extra_args(false);
}

std::unique_ptr<Sink> MakeSink(const Options& options) {
    return options.m_chrome   ? MakeChrome(std::cout)
           : options.m_folded ? MakeFolded(std::cout)
                              : MakeSummary(std::cout);
}

bool IsWanted(const Options& options, const Line& line) {
    const bool isOfThread =
        line.m_kind == Line::eEnter || line.m_kind == Line::eExit || line.m_kind == Line::eThrown;
    return !isOfThread || options.m_threads.empty() ||
           std::count(options.m_threads.begin(), options.m_threads.end(), line.m_thread) > 0;
}

// True when everything was understood.
bool Run(const Options& options) {
    const std::unique_ptr<Sink> sink = MakeSink(options);
    Calls calls(*sink);
    for (const std::string& file : options.m_files) {
        ReadLines(file, [&](std::string_view text) {
            const Line line = ReadLine(text);
            if (IsWanted(options, line)) {
                calls.Take(line);
            }
        });
        calls.EndRun();
    }
    sink->Finish();
    std::cout.flush();
    const bool whole =
        calls.m_brokenLines + calls.m_unmatchedExits + calls.m_cutCalls + calls.m_clockSteps == 0;
    if (!whole) {
        std::cerr << "quor-timeline: lines not understood: " << calls.m_brokenLines
                  << ", exits without entry: " << calls.m_unmatchedExits
                  << ", calls without exit: " << calls.m_cutCalls
                  << ", clock set back: " << calls.m_clockSteps << '\n';
    }
    return whole;
}

}  // namespace
}  // namespace timeline

int main(int argc, char** argv) try {
    CLI::App app("Shows the calls that a trace at level High or Detail holds.");
    timeline::Options options;
    timeline::AddOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    return timeline::Run(options) || !options.m_strict ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "quor-timeline: " << error.what() << std::endl;
    return 1;
}
