#ifndef QUOR_EXCEPTION_H
#define QUOR_EXCEPTION_H

#include <algorithm>
#include <exception>
#include <functional>
#include <iosfwd>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace quor {

/// The exception of the library and its hosts: a text that, when `log` is true, reports itself to
/// the running trace at level Low as it is built, so that it leaves a mark even when swallowed:
///
///     ** Thrown quor::Exception: the text
///     ** in: program(Drain(Spool&)) [0x4021d0]
///
/// The place is the function that built the exception; with the trace's stack dump on, the whole
/// stack is written instead. The library sets `log` for everything it throws. The place has a name
/// when the program is linked with -rdynamic (CMake: ENABLE_EXPORTS), its function does not stand
/// in an unnamed namespace, and GCC, when it optimises, is kept from moving throws away
/// (-fno-reorder-blocks-and-partition).
///
/// Building one never fails: when memory is short the text is cut, and the report left out. Any
/// thread; takes the trace file's mutex for the report only. Keeps errno.
class Exception : public std::exception {
public:
    /// Copies the text, which must not be null.
    /// @{
    Exception(const std::string& text, bool log) noexcept;
    Exception(const char* text, bool log) noexcept;
    /// @}
    /// Takes the stream's contents; the stream is not changed.
    Exception(std::ostringstream& text, bool log) noexcept;
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    ~Exception() override;

    /// The text; valid as long as the exception.
    const char* what() const noexcept override;

private:
    std::string m_message;
};

/// Prints the exception's text.
std::ostream& operator<<(std::ostream& stream, const Exception& exception);

/// Holds a list of mutexes and releases them, first to last, at the end of its scope.
///
/// Two Locks over the same mutexes in different orders do not block each other: each locks in the
/// order of addresses. Nothing stays locked when the constructor throws: std::system_error, also
/// for a mutex that is named twice, or std::bad_alloc. The mutexes must outlive the Lock, which is
/// destroyed on the thread that built it.
class Lock {
public:
    /// Locks one mutex or more.
    template <typename... Mutexes>
    explicit Lock(std::mutex& first, Mutexes&... others)
        : Lock(std::vector<std::mutex*>{&first, &others...}) {}

    /// Locks those of a list; no entry may be null.
    explicit Lock(const std::vector<std::mutex*>& mutexes) : m_mutexes(mutexes) {
        std::vector<std::mutex*> ordered(mutexes);
        std::sort(ordered.begin(), ordered.end(), std::less<std::mutex*>());
        if (std::adjacent_find(ordered.begin(), ordered.end()) != ordered.end()) {
            throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
        }
        LockAll(ordered);
    }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    virtual ~Lock();

private:
    static void LockAll(const std::vector<std::mutex*>& ordered) {
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

    std::vector<std::mutex*> m_mutexes;  // in the order given
};

}  // namespace quor

#endif
