#ifndef QUOR_ANY_REFERENCE_H
#define QUOR_ANY_REFERENCE_H

#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace quor {

/// Refers to a variable of somebody else, whose type the referring code does not know:
///
///     int retries = 3;
///     const quor::AnyReference setting(retries);
///     setting.Assign(5);      // retries is 5
///     setting.Assign("five"); // throws: types differ
///
/// The variable, const or not, is a char of any of the three kinds, a short, int or long long,
/// signed or not, a float, double, long double, bool or std::string; `long`, whose size depends on
/// the platform, does not compile. It must outlive every AnyReference to it. Copies refer to the
/// same variable; a reference that was moved from still does.
///
/// Nothing is locked: guarding the variable is its owner's concern. std::bad_alloc passes through.
class AnyReference {
    template <typename T>
    static constexpr bool c_supported =
        std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char> ||
        std::is_same_v<T, short> || std::is_same_v<T, unsigned short> || std::is_same_v<T, int> ||
        std::is_same_v<T, unsigned int> || std::is_same_v<T, long long> ||
        std::is_same_v<T, unsigned long long> || std::is_same_v<T, char> ||
        std::is_same_v<T, float> || std::is_same_v<T, double> || std::is_same_v<T, long double> ||
        std::is_same_v<T, bool> || std::is_same_v<T, std::string>;

    template <typename T>
    using IfVariable = std::enable_if_t<!std::is_base_of_v<AnyReference, std::remove_cv_t<T>>>;

public:
    /// Knows the type of the variable, and copies itself.
    class PtrHolder {
    public:
        PtrHolder() = default;
        PtrHolder(const PtrHolder&) = delete;
        PtrHolder& operator=(const PtrHolder&) = delete;
        virtual ~PtrHolder();

        /// The type of the variable, without its const.
        virtual const std::type_info& Type() const = 0;
        /// A new holder for the same variable, which the caller owns.
        virtual PtrHolder* Clone() const = 0;
    };

    /// Holds the address of a variable of type `T`. The library has one for each supported type.
    template <typename T>
    class SpecificPtrHolder;

    /// Refers to `variable`, and writes into none.
    template <typename T, typename = IfVariable<T>>
    explicit AnyReference(T& variable)
        : m_holder(new SpecificPtrHolder<std::remove_const_t<T>>(
              const_cast<std::remove_const_t<T>&>(variable))),
          m_const(std::is_const_v<T>) {}
    /// A temporary is no variable.
    template <typename T, typename = IfVariable<T>>
    explicit AnyReference(const T&& temporary) = delete;

    /// Refers to the variable of `other`.
    AnyReference(const AnyReference& other);
    /// Refers to the variable of `other` from now on; writes into none.
    AnyReference& operator=(const AnyReference& other);
    ~AnyReference();

    /// Writes `value` into the variable. Throws Exception, the variable untouched, when its type is
    /// not exactly that of the value, or is const; a string literal is not a std::string.
    template <typename T>
    void Assign(const T& value) const;

    /// The type of the variable, without its const.
    const std::type_info& Type() const { return m_holder->Type(); }

    /// Throws the Exception that reports different types, or types that differ in constness alone
    /// when both are the same, in the operation `where`.
    [[noreturn]] static void ThrowTypeException(const std::string& where,
                                                const std::type_info& first,
                                                const std::type_info& second);

private:
    std::unique_ptr<PtrHolder> m_holder;  // never null
    bool m_const;                         // the variable is const: nothing is written
};

template <typename T>
class AnyReference::SpecificPtrHolder : public AnyReference::PtrHolder {
    static_assert(AnyReference::c_supported<T>,
                  "AnyReference refers to char, short, int, long long (signed or unsigned), float, "
                  "double, long double, bool and std::string, and to no other type: not to long");

public:
    /// Keeps the address of `variable`.
    explicit SpecificPtrHolder(T& variable) : m_ptr(&variable) {}
    // Not defaulted: compilers differ in whether they export such a one.
    ~SpecificPtrHolder() override {}  // NOLINT(modernize-use-equals-default)

    /// Writes `value` into the variable; the caller has compared the types.
    SpecificPtrHolder& operator=(const T& value) {
        *m_ptr = value;
        return *this;
    }

    const std::type_info& Type() const override { return typeid(T); }
    PtrHolder* Clone() const override { return new SpecificPtrHolder(*m_ptr); }

private:
    T* m_ptr;
};

template <typename T>
void AnyReference::Assign(const T& value) const {
    if (Type() != typeid(T) || m_const) {
        ThrowTypeException("Assign", Type(), typeid(T));
    }
    using Value = std::remove_cv_t<T>;  // a volatile value does not compile
    if constexpr (c_supported<Value>) {
        static_cast<SpecificPtrHolder<Value>&>(*m_holder) = value;
    }
}

extern template class AnyReference::SpecificPtrHolder<signed char>;
extern template class AnyReference::SpecificPtrHolder<unsigned char>;
extern template class AnyReference::SpecificPtrHolder<short>;
extern template class AnyReference::SpecificPtrHolder<unsigned short>;
extern template class AnyReference::SpecificPtrHolder<int>;
extern template class AnyReference::SpecificPtrHolder<unsigned int>;
extern template class AnyReference::SpecificPtrHolder<long long>;
extern template class AnyReference::SpecificPtrHolder<unsigned long long>;
extern template class AnyReference::SpecificPtrHolder<char>;
extern template class AnyReference::SpecificPtrHolder<float>;
extern template class AnyReference::SpecificPtrHolder<double>;
extern template class AnyReference::SpecificPtrHolder<long double>;
extern template class AnyReference::SpecificPtrHolder<bool>;
extern template class AnyReference::SpecificPtrHolder<std::string>;

}  // namespace quor

#endif
