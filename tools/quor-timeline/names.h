#ifndef QUOR_TIMELINE_NAMES_H
#define QUOR_TIMELINE_NAMES_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace timeline {

/// A text that occurs again and again, held once.
struct Name {
    std::string m_text;
    std::size_t m_number;  // from 0, in the order of appearance
};

class Names {
public:
    const Name* Get(std::string_view text);

private:
    // Keys are the texts that the values own, so that a name is looked up without a copy.
    std::unordered_map<std::string_view, std::unique_ptr<const Name>> m_names;
};

/// How a function's text is shown, without control characters.
using NameFnc = std::string (*)(std::string_view);

/// Class and function, or namespace and function, of a compiler's pretty function name:
/// "void spoold::Spooler::Process(const std::string&)" becomes "Spooler::Process".
std::string ShortName(std::string_view function);
/// The whole text.
std::string FullName(std::string_view function);

/// What a function makes of each name, kept.
class Made {
public:
    explicit Made(std::function<std::string(std::string_view)> make) : m_make(std::move(make)) {}

    const std::string& operator()(const Name* name) {
        if (name->m_number >= m_made.size()) {
            m_made.resize(name->m_number + 1);
        }
        std::unique_ptr<const std::string>& made = m_made[name->m_number];
        if (made == nullptr) {
            made = std::make_unique<const std::string>(m_make(name->m_text));
        }
        return *made;
    }

private:
    std::function<std::string(std::string_view)> m_make;
    std::vector<std::unique_ptr<const std::string>> m_made;
};

}  // namespace timeline

#endif
