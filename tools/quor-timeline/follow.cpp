#include "follow.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace timeline {
namespace {

constexpr int c_period = 1000;  // milliseconds

[[noreturn]] void Fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Reset(-1); }

    int Get() const { return m_fd; }
    void Reset(int fd) {
        if (m_fd != -1) {
            close(m_fd);
        }
        m_fd = fd;
    }

private:
    int m_fd;
};

// The signals that end the following, as something that can be waited for.
int OpenSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

bool IsSameFile(int fd, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return stat(path.c_str(), &named) != 0 ||
           (fstat(fd, &open) == 0 && open.st_dev == named.st_dev && open.st_ino == named.st_ino);
}

// Reads to the end of what there is.
void ReadOn(int fd, const std::string& path, LineCutter& cutter) {
    for (;;) {
        const ssize_t size = read(fd, cutter.Room(), cutter.RoomSize());
        if (size == 0) {
            return;
        }
        if (size < 0) {
            Fail(path);
        }
        cutter.Take(static_cast<std::size_t>(size));
    }
}

// A file that was cut short is read from its beginning.
void RewindIfTruncated(int fd) {
    struct stat status {};
    if (fstat(fd, &status) == 0 && status.st_size < lseek(fd, 0, SEEK_CUR)) {
        lseek(fd, 0, SEEK_SET);
    }
}

}  // namespace

void Follow(const std::string& path, const Reading& reading, const std::function<void()>& begin,
            const std::function<void()>& draw) {
    const Descriptor signals(OpenSignals());
    Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (signals.Get() == -1 || file.Get() == -1) {
        Fail(path);
    }
    LineCutter cutter(reading);
    begin();
    pollfd ended{signals.Get(), POLLIN, 0};
    bool isEnding = false;
    while (!isEnding) {
        isEnding = poll(&ended, 1, 0) > 0;
        const bool isReplaced = !IsSameFile(file.Get(), path);
        RewindIfTruncated(file.Get());
        ReadOn(file.Get(), path, cutter);
        if (isReplaced) {  // the rest of the old one was read after the new one had appeared
            cutter.End();
            file.Reset(open(path.c_str(), O_RDONLY | O_CLOEXEC));
            if (file.Get() == -1) {
                Fail(path);
            }
            begin();
            isEnding = false;
            continue;
        }
        if (!isEnding) {
            draw();
            poll(&ended, 1, c_period);
        }
    }
    cutter.End();
}

void DrawInChild(const std::function<void()>& draw) {
    const pid_t child = fork();
    if (child == -1) {
        Fail("fork");
    }
    if (child == 0) {
        draw();
        _exit(0);
    }
    while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
}

}  // namespace timeline
