#include <quor/any_reference.h>

#include <quor/exception.h>
#include <quor/internal/joined.h>
#include <quor/process.h>

namespace quor {

AnyReference::PtrHolder::~PtrHolder() = default;

AnyReference::AnyReference(const AnyReference& other)
    : m_holder(other.m_holder->Clone()), m_const(other.m_const) {}

AnyReference& AnyReference::operator=(const AnyReference& other) {
    m_holder.reset(other.m_holder->Clone());
    m_const = other.m_const;
    return *this;
}

AnyReference::~AnyReference() = default;

void AnyReference::ThrowTypeException(const std::string& where, const std::type_info& first,
                                      const std::type_info& second) {
    const std::string difference =
        first == second ? internal::Joined({"difference in constness of type ", CppName(first)})
                        : internal::Joined({CppName(first), " != ", CppName(second)});
    throw Exception(
        internal::Joined({"AnyReference: types differ in ", where, " ( ", difference, ")."}), true);
}

template class AnyReference::SpecificPtrHolder<signed char>;
template class AnyReference::SpecificPtrHolder<unsigned char>;
template class AnyReference::SpecificPtrHolder<short>;
template class AnyReference::SpecificPtrHolder<unsigned short>;
template class AnyReference::SpecificPtrHolder<int>;
template class AnyReference::SpecificPtrHolder<unsigned int>;
template class AnyReference::SpecificPtrHolder<long long>;
template class AnyReference::SpecificPtrHolder<unsigned long long>;
template class AnyReference::SpecificPtrHolder<char>;
template class AnyReference::SpecificPtrHolder<float>;
template class AnyReference::SpecificPtrHolder<double>;
template class AnyReference::SpecificPtrHolder<long double>;
template class AnyReference::SpecificPtrHolder<bool>;
template class AnyReference::SpecificPtrHolder<std::string>;

}  // namespace quor
