#ifndef QUOR_DETAIL_ORDERED_LOCKING_H
#define QUOR_DETAIL_ORDERED_LOCKING_H

#include <cstdint>
#include <mutex>
#include <system_error>
#include <vector>

namespace quor::detail {

inline std::uintptr_t AddressOf(const std::mutex* mutex) {
    return reinterpret_cast<std::uintptr_t>(mutex);
}

// Returns the mutexes in the order of their addresses. Throws std::system_error if one is named
// twice. (<algorithm> would double what every file has to read that throws.)
inline std::vector<std::mutex*> InOrderOfAddresses(const std::vector<std::mutex*>& mutexes) {
    std::vector<std::mutex*> ordered;
    for (std::mutex* const mutex : mutexes) {
        auto place = ordered.begin();
        while (place != ordered.end() && AddressOf(*place) < AddressOf(mutex)) {
            ++place;
        }
        if (place != ordered.end() && *place == mutex) {
            throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
        }
        ordered.insert(place, mutex);
    }
    return ordered;
}

// Locks all of them, or throws std::system_error or std::bad_alloc and leaves none locked.
inline void LockInOrder(const std::vector<std::mutex*>& mutexes) {
    const std::vector<std::mutex*> ordered = InOrderOfAddresses(mutexes);
    auto next = ordered.begin();
    try {
        for (; next != ordered.end(); ++next) {
            (*next)->lock();
        }
    } catch (...) {
        while (next != ordered.begin()) {
            (*--next)->unlock();
        }
        throw;
    }
}

}  // namespace quor::detail

#endif
