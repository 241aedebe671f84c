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

off_t EventLists::Append(List& list, const Event& event) {
    if (list.m_events.empty()) {
        list.m_place = m_end;
        m_end += static_cast<off_t>(sizeof(off_t) + c_chunkSize * sizeof(Event));
    }
    const off_t place = PlaceOf(list, list.m_events.size());
    list.m_events.push_back(event);
    if (list.m_events.size() == c_chunkSize) {
        Store(list);
    }
    return place;
}

void EventLists::Change(List& list, off_t place, const Event& event) {
    if (!list.m_events.empty() && place >= PlaceOf(list, 0) &&
        place < PlaceOf(list, list.m_events.size())) {
        list.m_events[static_cast<std::size_t>(place - PlaceOf(list, 0)) / sizeof(Event)] = event;
    } else {
        Put(&event, sizeof(event), place);
    }
}

off_t EventLists::PlaceOf(const List& list, std::size_t event) {
    return list.m_place + static_cast<off_t>(sizeof(off_t) + event * sizeof(Event));
}

// A chunk is the place of the next one, and the events.
void EventLists::Store(List& list) {
    const off_t none = -1;
    Put(&none, sizeof(none), list.m_place);
    Put(list.m_events.data(), c_chunkSize * sizeof(Event), PlaceOf(list, 0));
    if (list.m_last == -1) {
        list.m_first = list.m_place;
    } else {
        Put(&list.m_place, sizeof(list.m_place), list.m_last);
    }
    list.m_last = list.m_place;
    list.m_events.clear();
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
