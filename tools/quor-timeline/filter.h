#ifndef QUOR_TIMELINE_FILTER_H
#define QUOR_TIMELINE_FILTER_H

#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "line.h"

namespace timeline {

/// Chooses lines by their thread, and entries and exits by the text of their function.
class Filter {
public:
    /// `threads` are ids as the lines show them, zeros in front allowed; none means all, as does an
    /// empty `function`, a regular expression (ECMAScript). Throws std::invalid_argument.
    Filter(const std::vector<std::string>& threads, const std::string& function);

    bool IsWanted(const Line& line);

private:
    bool IsOfWantedFunction(std::string_view text);

    std::vector<std::int64_t> m_threads;
    std::optional<std::regex> m_function;
    std::unordered_map<std::string, bool> m_answers;
    bool m_isLastWanted = true;  // what continues a message goes with it
};

}  // namespace timeline

#endif
