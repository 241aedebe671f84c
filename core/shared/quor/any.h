#ifndef QUOR_ANY_H
#define QUOR_ANY_H

#include <quor/exception.h>

#include <cstddef>
#include <exception>
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

/// One value of a type that the code which passes it on need not know, or no value.
///
///     const quor::Any limit = 42;
///     std::cout << limit << ' ' << limit.Get<int>() << '\n';
///
/// Values of any copyable type are held unchanged; strings of char that are not std::string become
/// one. Supported, which means that they can be printed, are the scalars bool, int, unsigned int,
/// long long, unsigned long long, double, float and std::string, and the arrays, std::vectors of
/// these. A type is only ever itself: there are no conversions.
///
/// Failures throw Exception. A value that was moved from is empty. Any number of threads may read
/// one Any as long as none changes it.
class Any {
    template <typename T>
    using Stored = std::conditional_t<std::is_same_v<std::decay_t<T>, const char*> ||
                                          std::is_same_v<std::decay_t<T>, char*>,
                                      std::string, std::decay_t<T>>;

    // Not for Any itself, whose copies and moves a template would take over.
    template <typename T>
    using IfValue = std::enable_if_t<std::conjunction_v<
        std::negation<std::is_base_of<Any, std::decay_t<T>>>,
        std::disjunction<std::negation<std::is_array<std::remove_reference_t<T>>>,
                         std::is_same<Stored<T>, std::string>>,
        std::is_copy_constructible<std::decay_t<T>>>>;

public:
    /// Without a value.
    Any() = default;
    /// Holds a copy of `value`. A string of char must not be a null pointer; a boost::any gives the
    /// value that it holds.
    template <typename T, typename = IfValue<T>>
    Any(T&& value) : m_value(Stored<T>(std::forward<T>(value))) {}
    Any(const Any&) = default;
    Any(Any&&) noexcept = default;

    Any& operator=(const Any&) = default;
    /// Leaves `other` empty.
    Any& operator=(Any&& other) noexcept {
        boost::any(std::move(other.m_value)).swap(m_value);
        return *this;
    }
    /// As the constructor; nothing changes when the copy fails.
    template <typename T, typename = IfValue<T>>
    Any& operator=(T&& value) {
        return *this = Any(std::forward<T>(value));
    }
    ~Any() = default;

    /// Whether there is no value.
    bool Empty() const { return m_value.empty(); }
    /// Whether the value is one of the eight arrays.
    bool IsArray() const;
    /// The number of elements of an array, 1 for everything else, no value too. "Invalid value
    /// type" when there is no memory for the copy that it makes.
    std::size_t Size() const;
    /// The holder of the value, for any_cast; changes with this object.
    const boost::any& Value() const { return m_value; }

    /// A copy of the value. "Invalid value type" when it is not exactly a `T`, and for whatever
    /// copying it throws.
    template <typename T>
    T Get() const {
        try {
            return boost::any_cast<T>(m_value);
        } catch (...) {
            // The end of a thread, which must not be stopped, comes here without an exception.
            if (std::current_exception() == nullptr) {
                throw;
            }
            throw Exception("Invalid value type", true);
        }
    }

    /// Writes the value as the stream's settings have it; the elements of an array with a comma
    /// between them. "Unsupported value type" and nothing written when it is neither scalar nor
    /// array; "Invalid value type" as Size().
    void Print(std::ostream& os) const;
    /// Writes a held std::vector<T> as Print() does; throws as Get().
    template <typename T>
    void PrintArray(std::ostream& os) const {
        const auto values = Get<std::vector<T>>();
        for (auto value = values.begin(); value != values.end(); ++value) {
            if (value != values.begin()) {
                os << ",";
            }
            os << static_cast<const T&>(*value);
        }
    }

    /// Print(). A friend, so that no other type is printed by way of Any.
    friend std::ostream& operator<<(std::ostream& os, const Any& value);

private:
    boost::any m_value;
};

extern template std::vector<unsigned long long> Any::Get<std::vector<unsigned long long>>() const;
extern template std::vector<double> Any::Get<std::vector<double>>() const;
extern template std::vector<float> Any::Get<std::vector<float>>() const;
extern template std::vector<std::string> Any::Get<std::vector<std::string>>() const;
extern template void Any::PrintArray<bool>(std::ostream& os) const;

}  // namespace quor

#endif
