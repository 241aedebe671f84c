// Whatever a file holds, calls nest, time goes on, and what is written is JSON.
#include <sys/mman.h>
#include <unistd.h>

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "calls.h"
#include "fuzz.h"
#include "output.h"
#include "reader.h"
#include "window.h"

namespace {

class Nesting : public timeline::Sink {
public:
    void Enter(std::int64_t thread, const timeline::Call& call) override {
        Require(call.m_begin >= m_last[thread]);
        m_last[thread] = call.m_begin;
        m_open[thread].push_back(call);
    }
    void Leave(std::int64_t thread, const timeline::Call& call) override {
        Require(!m_open[thread].empty());
        const timeline::Call& entered = m_open[thread].back();
        Require(entered.m_function == call.m_function && entered.m_site == call.m_site);
        Require(entered.m_begin == call.m_begin && call.m_end >= m_last[thread]);
        Require(call.m_inner >= 0 && call.m_inner <= call.m_end - call.m_begin);
        m_last[thread] = call.m_end;
        m_open[thread].pop_back();
    }
    void EndRun() override {
        for (const auto& [thread, open] : m_open) {
            Require(open.empty());
        }
        m_last.clear();
    }

private:
    std::map<std::int64_t, std::vector<timeline::Call>> m_open;
    std::map<std::int64_t, std::int64_t> m_last;
};

struct Text {
    std::string m_text;
    bool m_whole;
};
using Texts = std::vector<Text>;

Texts ReadFile(const std::string& path) {
    Texts texts;
    timeline::ReadLines(path, {[&texts](std::string_view text, bool whole) {
                                   texts.push_back({std::string(text), whole});
                               },
                               [](std::uint64_t) {}});
    return texts;
}

void Read(const Texts& texts, timeline::Sink& sink) {
    timeline::LineReader lines;
    timeline::Calls calls(sink);
    for (const Text& text : texts) {
        calls.Take(lines.Read(text.m_text, text.m_whole));
    }
    calls.EndRun();
    sink.Finish();
}

// With and without a window of time.
void ReadTwice(const Texts& texts, timeline::Sink& sink, timeline::Sink& sinkOfWindow) {
    Read(texts, sink);
    timeline::Window window(sinkOfWindow, "00:00:00.5", "00:00:02");
    Read(texts, window);
}

using MakeSink = std::unique_ptr<timeline::Sink>(timeline::Output&);

void CheckOutput(const Texts& texts, MakeSink* make, bool isJson) {
    std::ostringstream stream[2];
    timeline::Output output[] = {timeline::Output(stream[0]), timeline::Output(stream[1])};
    ReadTwice(texts, *make(output[0]), *make(output[1]));
    for (int form = 0; form < 2; ++form) {
        output[form].Flush();
        Require(!isJson || nlohmann::json::accept(stream[form].str()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const int file = memfd_create("trace", MFD_CLOEXEC);
    Require(write(file, data, size) == static_cast<ssize_t>(size));
    const Texts texts = ReadFile("/proc/self/fd/" + std::to_string(file));
    close(file);
    Nesting nesting;
    Nesting nestingOfWindow;
    ReadTwice(texts, nesting, nestingOfWindow);
    CheckOutput(texts, timeline::MakeChrome, true);
    CheckOutput(texts, timeline::MakeSpeedscope, true);
    CheckOutput(texts, timeline::MakeFolded, false);
    CheckOutput(texts, timeline::MakeSummary, false);
    return 0;
}
