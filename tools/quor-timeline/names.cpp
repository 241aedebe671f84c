#include "names.h"

#include <algorithm>

#include "line.h"
#include "text.h"

namespace timeline {
namespace {

constexpr std::string_view c_lambda = "<lambda>";
constexpr std::string_view c_operator = "operator";
constexpr std::size_t c_longestArguments = 40;

// How deep in brackets the text behind the character is.
int DepthBehind(char character, int depth) {
    switch (character) {
        case '(':
        case '<':
        case '[':
        case '{':
            return depth + 1;
        case ')':
        case '>':
        case ']':
        case '}':
            return depth - 1;
        default:
            return depth;
    }
}

// Takes " [with T = int; U = char]" from the end of the text, and returns "[T = int; U = char]".
std::string TakeTemplateArguments(std::string_view& text) {
    const std::size_t with = text.find(" [with ");
    const std::size_t begin = with == std::string_view::npos ? text.rfind(" [") : with;
    if (begin == std::string_view::npos || text.back() != ']' ||
        text.find(" = ", begin) == std::string_view::npos) {
        return {};
    }
    std::string_view rest = text.substr(begin + (begin == with ? 7 : 2));
    rest.remove_suffix(1);
    text = text.substr(0, begin);
    std::string arguments;
    while (!rest.empty()) {
        const std::string_view argument = rest.substr(0, rest.find("; "));
        rest.remove_prefix(std::min(rest.size(), argument.size() + 2));
        // The compiler also explains its aliases there: "std::string = ...".
        if (argument.substr(0, argument.find(" = ")).find("::") == std::string_view::npos) {
            arguments += (arguments.empty() ? "" : "; ") + std::string(argument);
        }
    }
    if (arguments.size() > c_longestArguments) {
        arguments = "...";
    }
    return arguments.empty() ? arguments : " [" + arguments + "]";
}

// One part of a qualified name without the parameters of a function that it lies in.
std::string Part(std::string_view part) {
    if (part.find("lambda") != std::string_view::npos ||
        part.find("anonymous class") != std::string_view::npos) {
        return std::string(c_lambda);
    }
    const std::size_t operators =
        StartsWith(part, c_operator) ? part.find('(', c_operator.size() + 1) : part.find('(');
    part = part.substr(0, operators);
    const std::size_t arguments = part.find('<');
    if (!StartsWith(part, c_operator) && arguments != std::string_view::npos &&
        part.size() - arguments > c_longestArguments) {
        return std::string(part.substr(0, arguments)) + "<...>";
    }
    return std::string(part);
}

// The parts of "int space::Class<int>::Function(char)", without return type and parameters.
std::vector<std::string> Parts(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    int depth = 0;
    const auto add = [&](std::size_t end) {
        const std::string_view part = text.substr(begin, end - begin);
        if (!part.empty() && part != "{anonymous}" && part != "(anonymous namespace)" &&
            part != "<unnamed>") {
            parts.push_back(Part(part));
        }
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (depth == 0 && StartsWith(text.substr(at), c_operator) && at == begin) {
            // What follows may hold brackets and blanks of its own: "operator()", "operator bool".
            at = std::max(text.find('(', at + c_operator.size() + 1), at);
            at = at == std::string_view::npos ? text.size() : at;
        }
        if (at >= text.size()) {
            break;
        }
        if (depth == 0 && text[at] == ' ') {
            if (at > 0 && text[at - 1] == ')' &&
                text.substr(at).find('(') == std::string_view::npos) {
                text = text.substr(0, at);  // "const", "noexcept" and the like
                break;
            }
            parts.clear();
            begin = at + 1;
        } else if (depth == 0 && text.substr(at, 2) == "::") {
            add(at);
            begin = at + 2;
            ++at;
        } else {
            depth = std::max(DepthBehind(text[at], depth), 0);
        }
    }
    begin += std::min(text.substr(begin).find_first_not_of("*&"), text.size() - begin);
    add(text.size());
    return parts;
}

}  // namespace

const Name* Names::Get(std::string_view text) {
    const auto found = m_names.find(text);
    if (found != m_names.end()) {
        return found->second.get();
    }
    auto owned = std::make_unique<const Name>(Name{std::string(text), m_names.size()});
    const Name* const name = owned.get();
    m_names.emplace(name->m_text, std::move(owned));
    return name;
}

std::string ShortName(std::string_view function) {
    std::string_view text = function;
    if (text.find('(') == std::string_view::npos) {
        return FullName(text);  // words of the program's own
    }
    const std::string arguments = TakeTemplateArguments(text);
    const std::vector<std::string> parts = Parts(text);
    const auto isLambda = [](const std::string& part) { return part == c_lambda; };
    const auto lambdas = std::find_if(parts.begin(), parts.end(), isLambda);
    auto part = lambdas - std::min<std::ptrdiff_t>(2, lambdas - parts.begin());
    std::string name;
    for (; part != lambdas; ++part) {
        name += (name.empty() ? "" : "::") + *part;
    }
    if (lambdas != parts.end()) {
        name += (name.empty() ? "" : "::") + std::string(c_lambda);
    }
    return name.empty() ? FullName(function) : Printable(name + arguments);
}

std::string FullName(std::string_view function) {
    return Printable(function);
}

}  // namespace timeline
