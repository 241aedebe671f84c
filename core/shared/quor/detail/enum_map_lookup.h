#ifndef QUOR_DETAIL_ENUM_MAP_LOOKUP_H
#define QUOR_DETAIL_ENUM_MAP_LOOKUP_H

#include <quor/enum_map.h>
#include <quor/exception.h>

#include <cstddef>
#include <string>
#include <type_traits>

namespace quor {

template <typename E>
BiMap<E>::BiMap(const EnumRow<E>* table, std::size_t size) {
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

template <typename E>
const char* EnumMap<E>::ToName(E value) {
    const auto found = items.ValueToName().find(value);
    if (found == items.ValueToName().end()) {
        const auto number = static_cast<std::underlying_type_t<E>>(value);
        throw Exception("no name for the enumeration value " + std::to_string(number), true);
    }
    return found->second;
}

template <typename E>
const char* EnumMap<E>::ToName(int value) {
    const auto found = items.IntToName().find(value);
    if (found == items.IntToName().end()) {
        throw Exception("no name for the enumeration value " + std::to_string(value), true);
    }
    return found->second;
}

template <typename E>
template <typename Number, typename>
const char* EnumMap<E>::ToName(Number value) {
    const std::string number = std::to_string(value);
    if (number != std::to_string(static_cast<int>(value))) {
        throw Exception("no name for the enumeration value " + number, true);
    }
    return ToName(static_cast<int>(value));
}

template <typename E>
E EnumMap<E>::ToValue(const std::string& name) {
    const auto found = items.NameToValue().find(name.c_str());
    // No entry contains a NUL, but the part of `name` before one may match.
    if (found == items.NameToValue().end() || name != found->first) {
        throw Exception("no enumeration value has the name \"" + name + '"', true);
    }
    return found->second;
}

extern template class BiMap<TraceLevel_e>;
extern template class EnumMap<TraceLevel_e>;

}  // namespace quor

#endif
