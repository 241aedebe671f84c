#include "event_lists.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace timeline {
namespace {

constexpr std::size_t c_chunkSize = 1024;

[[noreturn]] void Fail() {
    throw std::system_error(errno, std::generic_category(), "temporary file");
}

}  // namespace

EventLists::EventLists() {
    std::string path = std::filesystem::temp_directory_path() / "quor-timeline.XXXXXX";
    m_fd = mkstemp(path.data());
    if (m_fd == -1) {
        Fail();
    }
    unlink(path.c_str());
}

EventLists::~EventLists() {
    close(m_fd);
}

void EventLists::Append(List& list, const Event& event) {
    list.m_events.push_back(event);
    if (list.m_events.size() == c_chunkSize) {
        Store(list);
    }
}

// A chunk is the place of the next one, and the events.
void EventLists::Store(List& list) {
    const off_t none = -1;
    const std::size_t size = c_chunkSize * sizeof(Event);
    Put(&none, sizeof(none), m_end);
    Put(list.m_events.data(), size, m_end + static_cast<off_t>(sizeof(none)));
    if (list.m_last == -1) {
        list.m_first = m_end;
    } else {
        Put(&m_end, sizeof(m_end), list.m_last);
    }
    list.m_last = m_end;
    list.m_events.clear();
    m_end += static_cast<off_t>(sizeof(none) + size);
}

std::vector<EventLists::Event> EventLists::Load(off_t& at) const {
    std::vector<Event> events(c_chunkSize);
    Get(events.data(), events.size() * sizeof(Event), at + static_cast<off_t>(sizeof(at)));
    Get(&at, sizeof(at), at);
    return events;
}

void EventLists::Put(const void* data, std::size_t size, off_t at) {
    errno = ENOSPC;  // of a write that is cut short
    if (pwrite(m_fd, data, size, at) != static_cast<ssize_t>(size)) {
        Fail();
    }
}

void EventLists::Get(void* data, std::size_t size, off_t at) const {
    errno = EIO;
    if (pread(m_fd, data, size, at) != static_cast<ssize_t>(size)) {
        Fail();
    }
}

}  // namespace timeline
