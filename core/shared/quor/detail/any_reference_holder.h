#ifndef QUOR_DETAIL_ANY_REFERENCE_HOLDER_H
#define QUOR_DETAIL_ANY_REFERENCE_HOLDER_H

#include <quor/any_reference.h>

#include <string>
#include <type_traits>
#include <typeinfo>

namespace quor {

template <typename T>
class AnyReference::SpecificPtrHolder : public AnyReference::PtrHolder {
    static_assert(AnyReference::c_supported<T>,
                  "AnyReference refers to char, short, int, long long (signed or unsigned), float, "
                  "double, long double, bool and std::string, and to no other type: not to long");

public:
    explicit SpecificPtrHolder(T& variable) : m_ptr(&variable) {}
    // Not defaulted: compilers differ in whether they export such a destructor.
    ~SpecificPtrHolder() override {}  // NOLINT(modernize-use-equals-default)

    SpecificPtrHolder& operator=(const T& value) {
        *m_ptr = value;
        return *this;
    }

    const std::type_info& Type() const override { return typeid(T); }
    PtrHolder* Clone() const override { return new SpecificPtrHolder(*m_ptr); }

private:
    T* m_ptr;
};

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

}  // namespace quor

#endif
