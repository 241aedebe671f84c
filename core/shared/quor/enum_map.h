#ifndef QUOR_ENUM_MAP_H
#define QUOR_ENUM_MAP_H

#include <quor/exception.h>
#include <quor/trace_level.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <string>

namespace quor {

/// Orders names by their bytes.
struct BimapStrCmp {
    /// Neither may be null.
    bool operator()(const char* left, const char* right) const {
        return std::strcmp(left, right) < 0;
    }
};

/// One row of an enumeration's description table.
template <typename E>
struct EnumRow {
    E value;           ///< one value of the enumeration
    const char* name;  ///< its name, not copied
};

/// The values and names of an enumeration `E`, looked up either way; built once, then only read.
///
/// A value or a name that comes twice keeps its first row. Names are not copied: they must live as
/// long as the table, and none may be null. Constant, so any thread may read it.
template <typename E>
class BiMap {
public:
    /// Throws Exception "invalid enum description table" when there are more names than values, or
    /// fewer: one value with two names, or one name for two values.
    template <std::size_t Size>
    explicit BiMap(const EnumRow<E> (&table)[Size]) : BiMap(table, Size) {}
    BiMap(const BiMap&) = delete;
    BiMap& operator=(const BiMap&) = delete;

    /// The pairs in the order of their values.
    const std::map<const E, const char*>& ValueToName() const { return m_valueToName; }
    /// The pairs in the order of their names.
    const std::map<const char*, E, BimapStrCmp>& NameToValue() const { return m_nameToValue; }
    /// The pairs of ValueToName(), each value as `int`.
    const std::map<const int, const char*>& IntToName() const { return m_intToName; }

private:
    BiMap(const EnumRow<E>* table, std::size_t size) {
        for (std::size_t row = 0; row < size; ++row) {
            m_valueToName.insert({table[row].value, table[row].name});
        }
        for (std::size_t row = 0; row < size; ++row) {
            m_nameToValue.insert({table[row].name, table[row].value});
            m_intToName.insert({static_cast<int>(table[row].value), table[row].name});
        }
        if (m_nameToValue.size() != m_valueToName.size()) {
            throw Exception("invalid enum description table", true);
        }
    }

    std::map<const E, const char*> m_valueToName;
    std::map<const char*, E, BimapStrCmp> m_nameToValue;
    std::map<const int, const char*> m_intToName;
};

/// The look-ups of one enumeration. The library holds the table of TraceLevel_e; a host defines its
/// own in one source file, outside all namespaces, and declares it (the last two lines, without the
/// braces) in the header of the enumeration when other files use it too:
///
///     const quor::EnumRow<Color> c_colors[] = {{Red, "red"}, {Blue, "blue"}};
///     template <>
///     const quor::BiMap<Color> quor::EnumMap<Color>::items{c_colors};
///
/// A faulty table ends the process as it is loaded. Names match exactly. A look-up that finds
/// nothing throws Exception, which says what was not found. Any thread.
template <typename E>
class EnumMap {
public:
    /// The table, defined by whoever has the enumeration.
    static const BiMap<E> items;  // NOLINT(readability-identifier-naming)

    /// The name of a value; lives as long as the table.
    static const char* ToName(E value) {
        const auto found = items.ValueToName().find(value);
        if (found == items.ValueToName().end()) {
            throw Exception(TextOfMiss(static_cast<int>(value)), true);
        }
        return found->second;
    }
    /// The same for a value that is a plain number.
    static const char* ToName(int value) {
        const auto found = items.IntToName().find(value);
        if (found == items.IntToName().end()) {
            throw Exception(TextOfMiss(value), true);
        }
        return found->second;
    }
    /// The value of a name.
    static E ToValue(const std::string& name) {
        const auto found = items.NameToValue().find(name.c_str());
        // A name with a NUL in it equals none, but its beginning might.
        if (found == items.NameToValue().end() || name != found->first) {
            throw Exception("no enumeration value has the name \"" + name + "\"", true);
        }
        return found->second;
    }

private:
    static std::string TextOfMiss(int value) {
        return "no name for the enumeration value " + std::to_string(value);
    }
};

/// "Off", "Low", "Medium", "High", "Detail".
template <>
const BiMap<TraceLevel_e> EnumMap<TraceLevel_e>::items;  // NOLINT(readability-identifier-naming)

extern template class BiMap<TraceLevel_e>;
extern template class EnumMap<TraceLevel_e>;

}  // namespace quor

#endif
