#ifndef QUOR_DETAIL_ERRNO_KEEPER_H
#define QUOR_DETAIL_ERRNO_KEEPER_H

#include <cerrno>

namespace quor::detail {

// Restores errno at the end of its scope: reporting must not change what the caller is looking at.
class ErrnoKeeper {
public:
    ErrnoKeeper() : m_errno(errno) {}
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { Restore(); }

    void Restore() const { errno = m_errno; }

private:
    const int m_errno;
};

}  // namespace quor::detail

#endif
