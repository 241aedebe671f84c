#ifndef SPOOLD_FILE_H
#define SPOOLD_FILE_H

#include <unistd.h>

namespace spoold {

/// Owns a descriptor: closes it at the end of its scope.
class File {
public:
    explicit File(int fd) : m_fd(fd) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (IsOpen()) {
            close(m_fd);
        }
    }

    bool IsOpen() const { return m_fd != -1; }
    int Fd() const { return m_fd; }

private:
    const int m_fd;  // -1 when opening failed
};

}  // namespace spoold

#endif
