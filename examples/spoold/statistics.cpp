#include "statistics.h"

#include <quor/any.h>
#include <quor/string_utils.h>

#include <sstream>
#include <utility>
#include <vector>

namespace spoold {
namespace {

template <typename T>
std::string TextOf(const T& value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

// The watch keeps its durations as local times of day, which show the zone's offset. A sum has the
// form of its left side.
std::string TextOf(const quor::Time& duration) {
    const quor::Time now(quor::Time::eUtc | quor::Time::eTimeOfDay | quor::Time::eNanoSec);
    std::ostringstream text;
    text << now - now + duration;
    return text.str();
}

}  // namespace

void Statistics::NextPass() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_passes.NextLoop();
}

void Statistics::FileDone() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_done;
}

void Statistics::FileFailed() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_failed;
}

std::string Statistics::Text() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    quor::StopWatch passes = m_passes;
    passes.Stop();  // works out the average
    std::vector<std::pair<const char*, quor::Any>> rows{
        {"done: ", m_done}, {"failed: ", m_failed}, {"passes: ", passes.m_loops}};
    if (passes.m_loops > 0) {
        rows.insert(rows.end(), {{"shortest: ", TextOf(passes.m_minLoop)},
                                 {"longest: ", TextOf(passes.m_maxLoop)},
                                 {"average: ", TextOf(passes.m_averageLoop)}});
    }
    std::vector<std::string> texts;
    texts.reserve(rows.size());
    for (const auto& [name, value] : rows) {
        texts.push_back(name + TextOf(value));
    }
    return quor::StringVecIntoString(texts, ", ");
}

}  // namespace spoold
