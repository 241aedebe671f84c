#ifndef QUOR_ENUM_MAP_H
#define QUOR_ENUM_MAP_H

#include <quor/trace_level.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>

namespace quor {

/// Orders names by their bytes.
struct BimapStrCmp {
    /// Neither name may be null.
    bool operator()(const char* left, const char* right) const {
        return std::strcmp(left, right) < 0;
    }
};

/// Pairs a value with its name, as one row of a description table.
template <typename E>
struct EnumRow {
    E value;           ///< one value of the enumeration
    const char* name;  ///< its name, not copied
};

/// Holds the values and names of an enumeration `E`, for look-ups in both directions.
///
/// The caller must ensure that no name is null and that all names outlive the table: they are not
/// copied. If a value or a name occurs twice, its first row wins. Any thread may read a table.
template <typename E>
class BiMap {
public:
    /// Throws Exception "invalid enum description table" if there are more names than values, or
    /// fewer: a value has two names, or a name two values.
    template <std::size_t Size>
    explicit BiMap(const EnumRow<E> (&table)[Size]) : BiMap(table, Size) {}
    BiMap(const BiMap&) = delete;
    BiMap& operator=(const BiMap&) = delete;

    /// Returns the pairs ordered by value.
    const std::map<const E, const char*>& ValueToName() const { return m_valueToName; }
    /// Returns the pairs ordered by name.
    const std::map<const char*, E, BimapStrCmp>& NameToValue() const { return m_nameToValue; }
    /// Returns the pairs ordered by value, each value converted to `int`.
    const std::map<const int, const char*>& IntToName() const { return m_intToName; }

private:
    BiMap(const EnumRow<E>* table, std::size_t size);

    std::map<const E, const char*> m_valueToName;
    std::map<const char*, E, BimapStrCmp> m_nameToValue;
    std::map<const int, const char*> m_intToName;
};

/// Converts between the values and the names of an enumeration `E`.
///
///     using Levels = quor::EnumMap<quor::TraceLevel_e>;
///     std::cout << Levels::ToName(quor::Low) << '\n';
///     quor::TraceFile::GetInstance().SetLevel(Levels::ToValue("Detail"));
///
/// The library defines the table of TraceLevel_e. For an enumeration of your own, define `items` in
/// one source file, outside all namespaces. If other files use it, declare it (the last two lines
/// without the braces) in the header of the enumeration:
///
///     const quor::EnumRow<Color> c_colors[] = {{Red, "red"}, {Blue, "blue"}};
///     template <>
///     const quor::BiMap<Color> quor::EnumMap<Color>::items{c_colors};
///
/// Names must match exactly. A look-up that fails throws an Exception that quotes what was asked
/// for. A faulty table ends the process while it is loaded. Safe to call from any thread.
template <typename E>
class EnumMap {
public:
    /// The table, defined along with the enumeration.
    static const BiMap<E> items;

    /// Returns the name of `value`. It lives as long as the table.
    static const char* ToName(E value);
    /// Returns the name of the value that converts to the `int` `value`; a number that no `int` can
    /// hold has none.
    /// @{
    static const char* ToName(int value);
    template <typename Number, typename = std::enable_if_t<std::is_integral_v<Number>>>
    static const char* ToName(Number value);
    /// @}
    /// Returns the value of `name`.
    static E ToValue(const std::string& name);
};

/// The names "Off", "Low", "Medium", "High", "Detail".
template <>
const BiMap<TraceLevel_e> EnumMap<TraceLevel_e>::items;

}  // namespace quor

#include <quor/detail/enum_map_lookup.h>

#endif
