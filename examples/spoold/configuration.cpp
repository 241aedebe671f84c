#include "configuration.h"

#include <quor/any_reference.h>
#include <quor/enum_map.h>
#include <quor/exception.h>
#include <quor/literals.h>
#include <quor/string_utils.h>

#include <algorithm>
#include <fstream>
#include <vector>

#include "text.h"

namespace spoold {
namespace {

constexpr quor::Literal_t c_modes[] = {
    {Options::eDaemon, "daemon"},
    {Options::eForeground, "foreground"},
    {Options::eOnce, "once"},
    {0, nullptr},
};

// These write a value into the variable of its setting, or throw.

void ReadText(const quor::AnyReference& variable, const std::string& value) {
    variable.Assign(value);
}

void ReadFlag(const quor::AnyReference& variable, const std::string& value) {
    variable.Assign(quor::ToBool(value));
}

void ReadLevel(const quor::AnyReference& variable, const std::string& value) {
    variable.Assign(static_cast<int>(quor::EnumMap<quor::TraceLevel_e>::ToValue(value)));
}

void ReadMode(const quor::AnyReference& variable, const std::string& value) {
    variable.Assign(quor::TextualToNumeric(c_modes, value));
}

void ReadNotBefore(const quor::AnyReference& variable, const std::string& value) {
    ReadMoment(value);
    variable.Assign(value);
}

struct Setting {
    const char* key;
    quor::AnyReference variable;
    void (*read)(const quor::AnyReference& variable, const std::string& value);
    const char* expected;
};

std::vector<Setting> Settings(Options& options) {
    using Reference = quor::AnyReference;
    return {
        {"spool", Reference(options.m_spool), ReadText, "a folder"},
        {"log", Reference(options.m_log), ReadText, "a file"},
        {"trace", Reference(options.m_trace), ReadText, "a file name"},
        {"trace_dir", Reference(options.m_traceDir), ReadText, "a folder"},
        {"trace_files", Reference(options.m_traceFiles), ReadFlag, "1, true, 0 or false"},
        {"level", Reference(options.m_level), ReadLevel, "Off, Low, Medium, High or Detail"},
        {"mode", Reference(options.m_mode), ReadMode, "daemon, foreground or once"},
        {"pid_file", Reference(options.m_pidFile), ReadText, "a file"},
        {"not_before", Reference(options.m_notBefore), ReadNotBefore,
         "a time such as 2026-01-31 08:00:00, in the years 1971 to 2105"},
    };
}

}  // namespace

// Not in the unnamed namespace: the trace could not name it as the place of a throw.
// Exactly one sign, with something in front of it; nothing behind it is an empty value.
void ApplyLine(const std::string& line, std::vector<Setting>& settings) {
    if (std::count(line.begin(), line.end(), '=') != 1 || line.front() == '=' ||
        line.find('\0') != std::string::npos) {
        throw quor::Exception("expected key = value", true);
    }
    const std::vector<std::string> parts = quor::TokenizeString(line.c_str(), "=");
    const std::string key = quor::TrimString(parts.front().c_str());
    const std::string value = parts.size() > 1 ? quor::TrimString(parts.back().c_str()) : "";
    std::vector<std::string> keys;
    for (const Setting& setting : settings) {
        if (key == setting.key) {
            try {
                setting.read(setting.variable, value);
            } catch (const quor::Exception&) {
                throw quor::Exception(std::string("expected ") + setting.expected, true);
            }
            return;
        }
        keys.emplace_back(setting.key);
    }
    throw quor::Exception("expected one of " + quor::StringVecIntoString(keys, ", "), true);
}

void ReadConfiguration(const std::string& path, Options& options) {
    std::ifstream file(path);
    std::vector<Setting> settings = Settings(options);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        const std::string text = quor::TrimString(line.c_str());
        if (!text.empty() && text.front() != '#') {
            try {
                ApplyLine(line, settings);
            } catch (const quor::Exception& error) {
                throw quor::Exception(
                    path + ":" + std::to_string(number) + ": " + Quoted(line) + ": " + error.what(),
                    true);
            }
        }
    }
    if (!file.eof() || file.bad()) {
        throw quor::Exception("Cannot read the configuration " + Quoted(path), true);
    }
}

}  // namespace spoold
