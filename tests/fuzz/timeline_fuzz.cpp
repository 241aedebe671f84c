// Whatever a file holds, calls nest, time goes on, and what is written is JSON.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "output.h"
#include "pipeline.h"
#include "reader.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class Nesting : public timeline::Sink {
public:
    void Enter(const timeline::Thread& thread, const timeline::Call& call) override {
        Require(call.m_begin.m_elapsed >= m_last[thread.m_id]);
        m_last[thread.m_id] = call.m_begin.m_elapsed;
        m_open[thread.m_id].push_back(call);
    }
    void Leave(const timeline::Thread& thread, const timeline::Call& call) override {
        Require(!m_open[thread.m_id].empty());
        const timeline::Call& entered = m_open[thread.m_id].back();
        Require(entered.m_function == call.m_function && entered.m_site == call.m_site);
        Require(entered.m_begin.m_elapsed == call.m_begin.m_elapsed);
        Require(call.m_end.m_elapsed >= m_last[thread.m_id]);
        Require(call.m_inner >= 0 && call.Own() >= 0);
        m_last[thread.m_id] = call.m_end.m_elapsed;
        m_open[thread.m_id].pop_back();
    }
    void EndRun(const timeline::Run& /*run*/) override {
        for (const auto& [thread, open] : m_open) {
            Require(open.empty());
        }
        m_last.clear();
    }

private:
    std::map<std::int64_t, std::vector<timeline::Call>> m_open;
    std::map<std::int64_t, std::int64_t> m_last;
};

// All, and some of it: by thread and function, by time, and calls that last.
const timeline::Selection c_selections[] = {
    {},
    {{"00100", "101"}, "In", {}},
    {{}, "", {"00:00:00.5", "00:00:02", 0, 0}},
    {{}, "", {"", "", 2, 1000}},
};

using timeline::Style;

Style Columns() {
    Style style;
    style.m_hasColumns = true;
    style.m_hasColors = true;
    style.m_last = 3;
    style.m_name = timeline::FullName;
    return style;
}

struct Trace {
    struct Text {
        std::string m_text;
        bool m_whole;
    };
    std::vector<Text> m_texts;
    timeline::Survey m_survey;
};

Trace ReadFile(const std::string& path) {
    Trace trace;
    try {
        timeline::ReadLines(path, {[&trace](std::string_view text, bool whole) {
                                       trace.m_texts.push_back({std::string(text), whole});
                                   },
                                   [](std::uint64_t) { return true; }});
        trace.m_survey = timeline::TakeSurvey({path}, true);
    } catch (const std::runtime_error&) {  // compressed, and damaged
    }
    return trace;
}

void Read(const Trace& trace, const timeline::Selection& selection, timeline::Sink& sink) {
    timeline::Pipeline pipeline(selection, trace.m_survey.m_firstDay, sink);
    pipeline.BeginFile("trace");
    for (const Trace::Text& text : trace.m_texts) {
        pipeline.Take(text.m_text, text.m_whole);
    }
    pipeline.EndFile();
    pipeline.Finish();
}

enum Form_e { eText, eJson, eJsonLines };

using MakeSink = std::unique_ptr<timeline::Sink>(timeline::Output&, const Style&);

void CheckOutput(const Trace& trace, MakeSink* make, Form_e form, const Style& style = {}) {
    for (const timeline::Selection& selection : c_selections) {
        std::ostringstream stream;
        timeline::Output output(stream);
        Read(trace, selection, *make(output, style));
        output.Flush();
        std::istringstream lines(stream.str());
        for (std::string line; form == eJsonLines && std::getline(lines, line);) {
            Require(nlohmann::json::accept(line));
        }
        Require(form != eJson || nlohmann::json::accept(stream.str()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const int file = memfd_create("trace", MFD_CLOEXEC);
    Require(write(file, data, size) == static_cast<ssize_t>(size));
    const Trace trace = ReadFile("/proc/self/fd/" + std::to_string(file));
    close(file);
    for (const timeline::Selection& selection : c_selections) {
        Nesting nesting;
        Read(trace, selection, nesting);
    }
    CheckOutput(trace, timeline::MakeChrome, eJson);
    CheckOutput(trace, timeline::MakeSpeedscope, eJson);
    CheckOutput(trace, timeline::MakeJsonLines, eJsonLines);
    CheckOutput(trace, timeline::MakeFolded, eText);
    CheckOutput(trace, timeline::MakeSummary, eText);
    CheckOutput(trace, timeline::MakeReplay, eText);
    CheckOutput(trace, timeline::MakeReplay, eText, Columns());
    return 0;
}
