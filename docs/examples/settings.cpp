#include <quor/any.h>
#include <quor/any_reference.h>
#include <quor/enum_map.h>
#include <quor/exception.h>
#include <quor/literals.h>
#include <quor/string_utils.h>
#include <quor/trace_level.h>

#include <iostream>
#include <map>
#include <string>

constexpr quor::Literal_t c_modes[] = {{0, "idle"}, {1, "drain"}, {0, nullptr}};

struct Settings {
    int m_mode = 0;
    int m_level = quor::Low;
    bool m_verbose = false;
    std::string m_spool;
};

// Reads "key = value" into the setting of that key, whatever its type.
void Apply(Settings& settings, const std::string& line) {
    const std::vector<std::string> parts = quor::TokenizeString(line.c_str(), "=");
    const std::string key = quor::TrimString(parts.at(0).c_str());
    const std::string value = quor::TrimString(parts.at(1).c_str());
    const std::map<std::string, quor::AnyReference> variables{
        {"mode", quor::AnyReference(settings.m_mode)},
        {"level", quor::AnyReference(settings.m_level)},
        {"verbose", quor::AnyReference(settings.m_verbose)},
        {"spool", quor::AnyReference(settings.m_spool)}};
    const quor::AnyReference& variable = variables.at(key);
    if (key == "mode") {
        variable.Assign(quor::TextualToNumeric(c_modes, value));
    } else if (key == "level") {
        variable.Assign(static_cast<int>(quor::EnumMap<quor::TraceLevel_e>::ToValue(value)));
    } else if (variable.Type() == typeid(bool)) {
        variable.Assign(quor::ToBool(value));
    } else {
        variable.Assign(value);
    }
}

int main() {
    Settings settings;
    for (const char* line : {"mode = drain", "level = High", "verbose = true", "spool = /srv/in"}) {
        Apply(settings, line);
    }
    const std::map<std::string, quor::Any> shown{
        {"mode", quor::NumericToTextual(c_modes, settings.m_mode)},
        {"level", settings.m_level},
        {"verbose", settings.m_verbose},
        {"spool", settings.m_spool}};
    for (const auto& [key, value] : shown) std::cout << key << ": " << value << "\n";
    try {
        Apply(settings, "mode = stop");
    } catch (const quor::Exception& error) {
        std::cout << error << "\n";
    }
    std::cout << quor::HexDump("two\nlines", 9, 8, true);
}
