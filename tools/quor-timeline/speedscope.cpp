#include <unordered_map>
#include <utility>
#include <vector>

#include "event_lists.h"
#include "line.h"
#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

// A frame is a function together with the site of its entry.
class Speedscope : public Sink {
public:
    Speedscope(Output& output, const Style& style) : m_output(output), m_name(style.m_name) {}

    void BeginRun(const Run& run) override {
        m_process = run.m_process == 0 ? "" : run.m_name + " " + std::to_string(run.m_process);
        m_threads.Clear();
    }
    void Enter(const Thread& thread, const Call& call) override {
        Profile& profile = ProfileOf(thread, call.m_begin);
        const std::uint32_t frame = Frame(call, true);
        profile.m_open.push_back(
            {m_lists.Append(profile.m_events, {call.m_begin.m_elapsed, frame, 1}), frame});
    }
    void Leave(const Thread& thread, const Call& call) override {
        Profile& profile = ProfileOf(thread, call.m_begin);
        auto [entry, frame] = profile.m_open.back();
        profile.m_open.pop_back();
        if (call.HasNoExit()) {
            frame = Frame(call, false);
            m_lists.Change(profile.m_events, entry, {call.m_begin.m_elapsed, frame, 1});
        }
        m_lists.Append(profile.m_events, {call.m_end.m_elapsed, frame, 0});
        profile.m_end = call.m_end.m_elapsed;
        if (profile.m_worker.size() != thread.m_worker.size()) {
            profile.m_worker = thread.m_worker;
        }
    }
    void Finish() override {
        m_output << "{\"$schema\":\"https://www.speedscope.app/file-format-schema.json\","
                    "\"exporter\":\"quor-timeline\",\"shared\":{\"frames\":[";
        WriteFrames();
        m_output << "\n]},\"profiles\":[";
        const char* separator = "";
        for (const Profile& profile : m_profiles) {
            m_output << separator;
            WriteProfile(profile);
            separator = ",";
        }
        m_output << "\n]}\n";
    }

private:
    struct Profile {
        std::string m_name;
        std::string m_worker;
        Moment m_begin;
        std::int64_t m_end;
        EventLists::List m_events;
        // Entries whose exits are yet to come, and their frames.
        std::vector<std::pair<off_t, std::uint32_t>> m_open;
    };
    struct Number {
        std::size_t m_profile = SIZE_MAX;  // none yet
    };
    struct FrameKey {
        const Name* m_function;
        const Name* m_site;
        bool m_hasExit;
        bool operator==(const FrameKey& other) const {
            return m_function == other.m_function && m_site == other.m_site &&
                   m_hasExit == other.m_hasExit;
        }
    };
    struct Hash {
        std::size_t operator()(const FrameKey& key) const {
            return (key.m_function->m_number * 31 + key.m_site->m_number) * 2 +
                   (key.m_hasExit ? 1 : 0);
        }
    };

    std::uint32_t Frame(const Call& call, bool hasExit) {
        const auto next = static_cast<std::uint32_t>(m_frames.size());
        const FrameKey key{call.m_function, call.m_site, hasExit};
        const auto [frame, isNew] = m_numbers.try_emplace(key, next);
        if (isNew) {
            m_frames.push_back(key);
        }
        return frame->second;
    }
    Profile& ProfileOf(const Thread& thread, const Moment& begin) {
        std::size_t& number = m_threads[thread].m_profile;
        if (number == Number().m_profile) {
            number = m_profiles.size();
            m_profiles.push_back({(m_process.empty() ? "" : m_process + ", ") + "thread " +
                                      std::to_string(thread.m_id),
                                  {},
                                  begin,
                                  begin.m_elapsed,
                                  {},
                                  {}});
        }
        return m_profiles[number];
    }
    void WriteFrames() {
        const char* separator = "";
        for (const FrameKey& frame : m_frames) {
            const std::string members = SiteMembers(frame.m_site->m_text);
            const std::string name = m_name(frame.m_function->m_text);
            m_output << separator
                     << "\n{\"name\":" << Quoted(name + (frame.m_hasExit ? "" : " (no exit)"))
                     << (members.empty() ? "" : ",") << members << "}";
            separator = ",";
        }
    }
    // Readers take a time for a double: counted from the profile's beginning it has nanoseconds for
    // a hundred days.
    void WriteProfile(const Profile& profile) {
        m_output << "\n{\"type\":\"evented\",\"name\":"
                 << Quoted(profile.m_name + (profile.m_worker.empty() ? "" : " ") +
                           profile.m_worker + ", from " + MomentText(profile.m_begin.m_wall))
                 << ",\"unit\":\"nanoseconds\",\"startValue\":0,\"endValue\":"
                 << profile.m_end - profile.m_begin.m_elapsed << ",\"events\":[";
        bool isFirst = true;
        m_lists.ForEach(profile.m_events, [&](const EventLists::Event& event) {
            const std::string_view head = event.m_isEntry != 0 ? ",\n{\"type\":\"O\",\"frame\":"
                                                               : ",\n{\"type\":\"C\",\"frame\":";
            m_output << head.substr(isFirst ? 1 : 0) << event.m_frame
                     << ",\"at\":" << event.m_time - profile.m_begin.m_elapsed << "}";
            isFirst = false;
        });
        m_output << "\n]}";
    }

    Output& m_output;
    const NameFnc m_name;
    EventLists m_lists;
    std::string m_process;
    ByThread<Number> m_threads;  // of this run
    std::vector<Profile> m_profiles;
    std::unordered_map<FrameKey, std::uint32_t, Hash> m_numbers;
    std::vector<FrameKey> m_frames;
};

}  // namespace

std::unique_ptr<Sink> MakeSpeedscope(Output& output, const Style& style) {
    return std::make_unique<Speedscope>(output, style);
}

}  // namespace timeline
