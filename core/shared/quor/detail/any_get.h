#ifndef QUOR_DETAIL_ANY_GET_H
#define QUOR_DETAIL_ANY_GET_H

#include <quor/any.h>
#include <quor/exception.h>

#include <exception>
#include <ostream>
#include <string>
#include <vector>

namespace quor {

template <typename T>
T Any::Get() const {
    try {
        return boost::any_cast<T>(m_value);
    } catch (...) {
        // A thread that is being ended arrives here without an exception, and must not be stopped.
        if (std::current_exception() == nullptr) {
            throw;
        }
        throw Exception("Invalid value type", true);
    }
}

template <typename T>
inline void Any::PrintArray(std::ostream& os) const {
    const auto values = Get<std::vector<T>>();
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (value != values.begin()) {
            os << ",";
        }
        os << static_cast<const T&>(*value);
    }
}

// In the library, so that "** in: " can name them when they throw there.
extern template std::vector<bool> Any::Get() const;
extern template std::vector<int> Any::Get() const;
extern template std::vector<unsigned int> Any::Get() const;
extern template std::vector<long long> Any::Get() const;
extern template std::vector<unsigned long long> Any::Get() const;
extern template std::vector<double> Any::Get() const;
extern template std::vector<float> Any::Get() const;
extern template std::vector<std::string> Any::Get() const;
extern template void Any::PrintArray<bool>(std::ostream& os) const;

}  // namespace quor

#endif
