#include <quor/any.h>

#include <typeinfo>

namespace quor {
namespace {

template <typename T>
bool Holds(const Any& any) {
    return any.Value().type() == typeid(T);
}

template <typename T>
bool PrintIfScalar(const Any& any, std::ostream& os) {
    const T* value = boost::any_cast<T>(&any.Value());
    if (value == nullptr) {
        return false;
    }
    os << *value;
    return true;
}

template <typename T>
bool PrintIfArray(const Any& any, std::ostream& os) {
    if (!Holds<std::vector<T>>(any)) {
        return false;
    }
    any.PrintArray<T>(os);
    return true;
}

template <typename T>
bool SizeIfArray(const Any& any, std::size_t& size) {
    if (!Holds<std::vector<T>>(any)) {
        return false;
    }
    size = any.Get<std::vector<T>>().size();
    return true;
}

template <typename... T>
struct Types {
    static bool HoldArray(const Any& any) { return (Holds<std::vector<T>>(any) || ...); }
    static bool Size(const Any& any, std::size_t& size) {
        return (SizeIfArray<T>(any, size) || ...);
    }
    static bool Print(const Any& any, std::ostream& os) {
        return (PrintIfScalar<T>(any, os) || ...) || (PrintIfArray<T>(any, os) || ...);
    }
};

using Supported =
    Types<bool, int, unsigned int, long long, unsigned long long, double, float, std::string>;

}  // namespace

bool Any::IsArray() const {
    return Supported::HoldArray(*this);
}

std::size_t Any::Size() const {
    std::size_t size = 1;
    Supported::Size(*this, size);
    return size;
}

void Any::Print(std::ostream& os) const {
    if (!Supported::Print(*this, os)) {
        throw Exception("Unsupported value type", true);
    }
}

// Only in the binary interface. Sources use the template of the header, to which nothing converts.
std::ostream& operator<<(std::ostream& os, const Any& value) {
    value.Print(os);
    return os;
}

template std::vector<bool> Any::Get() const;
template std::vector<int> Any::Get() const;
template std::vector<unsigned int> Any::Get() const;
template std::vector<long long> Any::Get() const;
template std::vector<unsigned long long> Any::Get() const;
template std::vector<double> Any::Get() const;
template std::vector<float> Any::Get() const;
template std::vector<std::string> Any::Get() const;
template void Any::PrintArray<bool>(std::ostream& os) const;

}  // namespace quor
