#include <map>
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
    explicit Speedscope(Output& output) : m_output(output) {}

    void Run(const Process& process) override {
        m_process = process.m_name + " " + std::to_string(process.m_id);
    }
    void Enter(std::int64_t thread, const Call& call) override {
        Append(thread, {call.m_begin, Frame(call), 1});
    }
    void Leave(std::int64_t thread, const Call& call) override {
        Append(thread, {call.m_end, Frame(call), 0});
    }
    void EndRun() override {
        m_threads.clear();
        m_process.clear();
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
        std::int64_t m_begin;
        std::int64_t m_end;
        EventLists::List m_events;
    };
    using FrameKey = std::pair<const std::string*, const std::string*>;
    struct Hash {
        std::size_t operator()(const FrameKey& key) const {
            const std::hash<const void*> hash;
            return hash(key.first) * 31 + hash(key.second);
        }
    };

    std::uint32_t Frame(const Call& call) {
        const auto next = static_cast<std::uint32_t>(m_frames.size());
        const FrameKey key(call.m_function, call.m_site);
        const auto [frame, isNew] = m_numbers.try_emplace(key, next);
        if (isNew) {
            m_frames.push_back(key);
        }
        return frame->second;
    }
    void Append(std::int64_t thread, const EventLists::Event& event) {
        const auto [number, isNew] = m_threads.try_emplace(thread, m_profiles.size());
        if (isNew) {
            const std::string process = m_process.empty() ? "" : m_process + ", ";
            m_profiles.push_back(
                {process + "thread " + std::to_string(thread), event.m_time, event.m_time, {}});
        }
        Profile& profile = m_profiles[number->second];
        profile.m_end = event.m_time;
        m_lists.Append(profile.m_events, event);
    }
    void WriteFrames() {
        const char* separator = "";
        for (const auto& [function, site] : m_frames) {
            const std::string members = SiteMembers(*site);
            m_output << separator << "\n{\"name\":" << Quoted(*function)
                     << (members.empty() ? "" : ",") << members << "}";
            separator = ",";
        }
    }
    // Readers take a time for a double: counted from the profile's beginning it has nanoseconds for
    // a hundred days.
    void WriteProfile(const Profile& profile) {
        m_output << "\n{\"type\":\"evented\",\"name\":"
                 << Quoted(profile.m_name + ", from " + MomentText(profile.m_begin))
                 << ",\"unit\":\"nanoseconds\",\"startValue\":0,\"endValue\":"
                 << profile.m_end - profile.m_begin << ",\"events\":[";
        const char* separator = "";
        m_lists.ForEach(profile.m_events, [&](const EventLists::Event& event) {
            m_output << separator << "\n{\"type\":\"" << (event.m_isEntry != 0 ? "O" : "C")
                     << "\",\"frame\":" << event.m_frame
                     << ",\"at\":" << event.m_time - profile.m_begin << "}";
            separator = ",";
        });
        m_output << "\n]}";
    }

    Output& m_output;
    EventLists m_lists;
    std::string m_process;
    std::map<std::int64_t, std::size_t> m_threads;  // of this run: their profiles
    std::vector<Profile> m_profiles;
    std::unordered_map<FrameKey, std::uint32_t, Hash> m_numbers;
    std::vector<FrameKey> m_frames;
};

}  // namespace

std::unique_ptr<Sink> MakeSpeedscope(Output& output) {
    return std::make_unique<Speedscope>(output);
}

}  // namespace timeline
