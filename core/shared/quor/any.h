#ifndef QUOR_ANY_H
#define QUOR_ANY_H

#include <quor/detail/cxx17.h>

#include <quor/detail/any_value.h>
#include <quor/exception.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// For hosts whose Boost does not lie in a system folder.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <boost/any.hpp>
#pragma GCC diagnostic pop

namespace quor {

/// Holds one value of any copyable type, or none.
///
///     std::map<std::string, quor::Any> settings{{"limit", 42}, {"name", "spool"}};
///     const int limit = settings["limit"].Get<int>();
///     std::cout << settings["name"] << ' ' << limit << '\n';
///
/// A value keeps its type, and there are no conversions: an `int` is not returned as a `long`. The
/// exception is text: a character array or a `char*` is stored as a std::string and ends at its
/// first NUL. A std::string keeps embedded NULs; a std::string_view stays a view.
///
/// Only the supported types can be printed: bool, int, unsigned int, long long, unsigned long long,
/// double, float, std::string, and the arrays, which are std::vectors of these.
///
/// The caller must ensure that no thread changes an Any while another one uses it; several threads
/// may read it. All failures are reported as an Exception. A moved-from Any is empty.
class Any {
public:
    /// Creates an empty Any.
    Any() = default;
    /// Stores a copy of `value`. A `char*` must not be null. A boost::any passes on its own value.
    template <typename T, typename = detail::IfNotAny<T>, typename = detail::IfAnyValue<T>>
    Any(T&& value) : m_value(detail::AnyStored<T>(std::forward<T>(value))) {}
    Any(const Any&) = default;
    Any(Any&&) noexcept = default;

    Any& operator=(const Any&) = default;
    /// Leaves `other` empty.
    Any& operator=(Any&& other) noexcept {
        boost::any(std::move(other.m_value)).swap(m_value);
        return *this;
    }
    /// Stores a copy of `value`, like the constructor; changes nothing if copying fails.
    template <typename T, typename = detail::IfNotAny<T>, typename = detail::IfAnyValue<T>>
    Any& operator=(T&& value) {
        return *this = Any(std::forward<T>(value));
    }
    ~Any() = default;

    /// Returns whether there is no value.
    bool Empty() const { return m_value.empty(); }
    /// Returns whether the value is one of the eight arrays.
    bool IsArray() const;
    /// Returns the number of elements of an array, and 1 for everything else, even if empty. Throws
    /// "Invalid value type" if memory for a copy of the array runs out.
    std::size_t Size() const;
    /// Returns the underlying object, for boost::any_cast. It changes with this Any.
    const boost::any& Value() const { return m_value; }

    /// Returns a copy of the value. Throws "Invalid value type" if the value is not exactly a `T`,
    /// or if copying it throws anything at all.
    template <typename T>
    T Get() const;

    /// Prints the value with the settings of `os`, and the elements of an array with commas between
    /// them. Throws "Unsupported value type", and prints nothing, if the type is not supported or
    /// there is no value; throws "Invalid value type" like Size().
    void Print(std::ostream& os) const;
    /// Prints a stored std::vector<T> like Print(), for any `T` with an operator<<. Throws like
    /// Get().
    template <typename T>
    void PrintArray(std::ostream& os) const;

private:
    boost::any m_value;
};

/// Calls `value.Print(os)`. Does not accept what merely converts to an Any: no other type becomes
/// printable through it.
template <typename T, typename = std::enable_if_t<std::is_base_of_v<Any, T>>>
std::ostream& operator<<(std::ostream& os, const T& value) {
    value.Print(os);
    return os;
}

}  // namespace quor

#include <quor/detail/any_get.h>

#endif
