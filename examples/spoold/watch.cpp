#include "watch.h"

#include <poll.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <cerrno>

#include "text.h"

namespace spoold {
namespace {

// Links, and drops made on another machine, raise no event.
constexpr int c_rescanMs = 5000;
// Not IN_CREATE: it would wake us for a file that is just being written.
constexpr uint32_t c_dropEvents = IN_MOVED_TO | IN_CLOSE_WRITE | IN_ONLYDIR;

}  // namespace

Watch::Watch(const std::string& folder)
    : m_drops(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
      m_wakes(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_drops.IsOpen() || !m_wakes.IsOpen() ||
        inotify_add_watch(m_drops.Fd(), folder.c_str(), c_dropEvents) == -1) {
        throw quor::Exception(SystemError("Cannot watch " + Quoted(folder)), true);
    }
}

void Watch::Wait() const {
    QUOR_TRACE(quor::Low, "Waiting");
    pollfd sources[] = {{m_drops.Fd(), POLLIN, 0}, {m_wakes.Fd(), POLLIN, 0}};
    if (poll(sources, 2, c_rescanMs) < 0 && errno != EINTR) {
        throw quor::Exception(SystemError("Cannot wait"), true);
    }
    // What happened is of no interest: the next scan looks at everything.
    char events[4096];
    while (read(m_drops.Fd(), events, sizeof(events)) > 0) {
    }
    eventfd_t wakes = 0;
    eventfd_read(m_wakes.Fd(), &wakes);
}

void Watch::Wake() const {
    eventfd_write(m_wakes.Fd(), 1);
}

}  // namespace spoold
