#ifndef QUOR_ANY_REFERENCE_H
#define QUOR_ANY_REFERENCE_H

#include <quor/detail/cxx17.h>

#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace quor {

/// Assigns to a variable whose type the assigning code does not know.
///
///     int retries = 3;
///     const quor::AnyReference setting(retries);
///     setting.Assign(5);       // retries is 5
///     setting.Assign("five");  // throws: types differ
///
/// The variable, const or not, is a char of any of the three kinds, a short, int or long long,
/// signed or unsigned, a float, double, long double, bool or std::string. `long` does not compile,
/// since its size depends on the platform.
///
/// The caller must ensure that
///   - the variable outlives every AnyReference to it;
///   - threads that share the variable lock it: an AnyReference locks nothing.
/// An AnyReference guarantees that
///   - it writes only in Assign(), and only a value of exactly the variable's type;
///   - copies refer to the same variable, and a moved-from AnyReference still does.
class AnyReference {
public:
    /// Knows the type of the variable and how to copy itself.
    class PtrHolder {
    public:
        PtrHolder() = default;
        PtrHolder(const PtrHolder&) = delete;
        PtrHolder& operator=(const PtrHolder&) = delete;
        virtual ~PtrHolder();

        /// Returns the type of the variable, without its const.
        virtual const std::type_info& Type() const = 0;
        /// Returns a new holder for the same variable. The caller owns it.
        virtual PtrHolder* Clone() const = 0;
    };

    /// Holds the address of a variable of type `T`, one of the supported ones: a constructor takes
    /// the variable as a `T&`, and operator=(const T&) assigns to it without comparing types.
    template <typename T>
    class SpecificPtrHolder;

    /// Refers to `variable` without writing to it.
    template <typename T,
              typename = std::enable_if_t<!std::is_base_of_v<AnyReference, std::remove_cv_t<T>>>>
    explicit AnyReference(T& variable)
        : m_holder(new SpecificPtrHolder<std::remove_const_t<T>>(
              const_cast<std::remove_const_t<T>&>(variable))),
          m_const(std::is_const_v<T>) {}
    /// Refuses temporaries.
    template <typename T,
              typename = std::enable_if_t<!std::is_base_of_v<AnyReference, std::remove_cv_t<T>>>>
    explicit AnyReference(const T&& temporary) = delete;

    /// Refers to the variable of `other`.
    AnyReference(const AnyReference& other);
    /// Refers to the variable of `other` from now on, without writing to either variable.
    AnyReference& operator=(const AnyReference& other);
    ~AnyReference();

    /// Assigns `value` to the variable. Throws Exception, and changes nothing, if the variable is
    /// const or its type is not exactly that of `value`; a string literal is not a std::string.
    /// Propagates std::bad_alloc.
    template <typename T>
    void Assign(const T& value) const;

    /// Returns the type of the variable, without its const.
    const std::type_info& Type() const { return m_holder->Type(); }

    /// Throws the Exception about different types in the operation `where`; if both types are the
    /// same, about types that differ only in constness.
    [[noreturn]] static void ThrowTypeException(const std::string& where,
                                                const std::type_info& first,
                                                const std::type_info& second);

private:
    template <typename T, typename... Types>
    static constexpr bool c_oneOf = (std::is_same_v<T, Types> || ...);
    template <typename T>
    static constexpr bool c_supported =
        c_oneOf<T, signed char, unsigned char, short, unsigned short, int, unsigned int, long long,
                unsigned long long, char, float, double, long double, bool, std::string>;

    std::unique_ptr<PtrHolder> m_holder;  // never null
    bool m_const;                         // the variable is const: nothing is written
};

}  // namespace quor

#include <quor/detail/any_reference_holder.h>

#endif
