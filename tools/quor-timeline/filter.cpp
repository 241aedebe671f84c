#include "filter.h"

#include <algorithm>
#include <stdexcept>

namespace timeline {
namespace {

// The C++ library's search takes stack for each character: 30,000 of them were too many.
constexpr std::size_t c_searchedText = 4000;

constexpr std::size_t c_longestId = 18;  // digits

std::int64_t ThreadId(const std::string& text) {
    if (text.empty() || text.size() > c_longestId ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        throw std::invalid_argument("--thread " + text + ": not a thread id, which is digits");
    }
    return std::stoll(text, nullptr, 10);
}

}  // namespace

Filter::Filter(const std::vector<std::string>& threads, const std::string& function) {
    for (const std::string& thread : threads) {
        m_threads.push_back(ThreadId(thread));
    }
    if (!function.empty()) {
        try {
            m_function.emplace(function, std::regex::ECMAScript | std::regex::optimize);
        } catch (const std::regex_error& error) {
            throw std::invalid_argument("--function " + function + ": " + error.what());
        }
    }
}

bool Filter::IsWanted(const Line& line) {
    if (line.m_kind == Line::eMore) {
        return m_isLastWanted;
    }
    if (!line.IsOfThread()) {
        return true;
    }
    const bool isOfThread = m_threads.empty() || std::find(m_threads.begin(), m_threads.end(),
                                                           line.m_thread) != m_threads.end();
    m_isLastWanted = isOfThread && (!m_function || line.m_kind == Line::eMessage ||
                                    IsOfWantedFunction(line.m_text));
    return m_isLastWanted;
}

bool Filter::IsOfWantedFunction(std::string_view text) {
    const auto [answer, isNew] =
        m_answers.try_emplace(std::string(text.substr(0, c_searchedText)), false);
    if (isNew) {
        answer->second = std::regex_search(answer->first, *m_function);
    }
    return answer->second;
}

}  // namespace timeline
