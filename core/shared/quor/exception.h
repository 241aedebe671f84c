#ifndef QUOR_EXCEPTION_H
#define QUOR_EXCEPTION_H

#include <quor/detail/ordered_locking.h>

#include <exception>
#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace quor {

/// Carries a text and, if `log` is true, reports itself to the running trace at level Low as it is
/// built, so that it leaves a mark even if it is swallowed.
///
///     throw quor::Exception("the spool is empty", true);
///
///     [06654: 23:44:35.946354852]   47: ** Thrown quor::Exception: the spool is empty
///     [06654: 23:44:35.946362537]   48: ** in: ./first(Drain(int)) [0x5624fe7b830b]
///
/// The place is the function that built the exception. With the trace's stack dump on, the whole
/// stack is written instead. The library sets `log` for everything it throws.
///
/// The place has a name if
///   - the program is linked with -rdynamic (CMake: ENABLE_EXPORTS),
///   - its function has external linkage: it is neither `static` nor in an unnamed namespace, and
///   - GCC, if it optimises, is kept from moving throws away (-fno-reorder-blocks-and-partition).
///
/// Building one never fails: if memory is short the text is cut and the report left out. Copying
/// one may throw std::bad_alloc. Any thread; takes only the trace's mutex, for the report. Keeps
/// errno.
class Exception : public std::exception {
public:
    /// Copy the text, which must not be null.
    /// @{
    Exception(const std::string& text, bool log) noexcept;
    Exception(const char* text, bool log) noexcept;
    /// @}
    /// Copies the stream's contents; does not change the stream.
    Exception(std::ostringstream& text, bool log) noexcept;
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    ~Exception() override;

    /// Returns the text, which is valid as long as the exception.
    const char* what() const noexcept override;

private:
    std::string m_message;
};

/// Prints the exception's text.
std::ostream& operator<<(std::ostream& stream, const Exception& exception);

/// Holds several mutexes in its scope, and releases them first to last.
///
///     const quor::Lock both(from.mutex, to.mutex);  // whatever order another Lock names them in
///
/// Each Lock locks in the order of addresses, so two over the same mutexes do not block each other.
/// If the constructor throws, nothing stays locked: std::system_error, also for a mutex that is
/// named twice, or std::bad_alloc. The mutexes must outlive the Lock, which is destroyed on the
/// thread that built it.
class Lock {
public:
    /// Locks one mutex or more.
    template <typename... Mutexes>
    explicit Lock(std::mutex& first, Mutexes&... others)
        : Lock(std::vector<std::mutex*>{&first, &others...}) {}

    /// Locks the mutexes of a list; no entry may be null.
    explicit Lock(const std::vector<std::mutex*>& mutexes) : m_mutexes(mutexes) {
        detail::LockInOrder(mutexes);
    }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    /// Unlocks in the order given.
    virtual ~Lock();

private:
    std::vector<std::mutex*> m_mutexes;  // in the order given
};

}  // namespace quor

#endif
