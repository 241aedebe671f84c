#ifndef QUOR_DETAIL_ANY_VALUE_H
#define QUOR_DETAIL_ANY_VALUE_H

#include <string>
#include <type_traits>

namespace quor {

class Any;

namespace detail {

/// What Any holds for a `T`: a std::string for a string of char, otherwise `T` by value.
template <typename T>
using AnyStored = std::conditional_t<std::is_same_v<std::decay_t<T>, const char*> ||
                                         std::is_same_v<std::decay_t<T>, char*>,
                                     std::string, std::decay_t<T>>;

/// Rules out Any, whose copies and moves a template would take over. A constraint of its own, and
/// the first: whether Any can be copied must not be asked while its constructors are looked up.
template <typename T>
using IfNotAny = std::enable_if_t<!std::is_same_v<std::decay_t<T>, Any>>;

/// Rules out what derives from Any, what cannot be copied, and arrays other than strings.
template <typename T>
using IfAnyValue = std::enable_if_t<
    !std::is_base_of_v<Any, std::decay_t<T>> && std::is_copy_constructible_v<std::decay_t<T>> &&
    (!std::is_array_v<std::remove_reference_t<T>> || std::is_same_v<AnyStored<T>, std::string>)>;

}  // namespace detail
}  // namespace quor

#endif
