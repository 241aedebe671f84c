#ifndef QUOR_TIMELINE_EVENT_LISTS_H
#define QUOR_TIMELINE_EVENT_LISTS_H

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace timeline {

/// Lists of entries and exits that wait in one temporary file ($TMPDIR), in chunks, so that each
/// is read back without the others. A list takes the memory of a chunk. Throws std::system_error.
class EventLists {
public:
    struct Event {
        std::int64_t m_time;
        std::uint32_t m_frame;
        std::uint32_t m_isEntry;
    };
    class List {
        friend class EventLists;
        off_t m_first = -1;  // where the chunks lie in the file
        off_t m_last = -1;
        off_t m_place = -1;           // of the chunk that is gathered now
        std::vector<Event> m_events;  // of that chunk
    };

    EventLists();
    EventLists(const EventLists&) = delete;
    EventLists& operator=(const EventLists&) = delete;
    ~EventLists();

    /// Returns where the event is, for Change().
    off_t Append(List& list, const Event& event);
    void Change(List& list, off_t place, const Event& event);
    template <typename Take>
    void ForEach(const List& list, const Take& take) const {
        for (off_t at = list.m_first; at != -1;) {
            for (const Event& event : Load(at)) {
                take(event);
            }
        }
        for (const Event& event : list.m_events) {
            take(event);
        }
    }

private:
    static off_t PlaceOf(const List& list, std::size_t event);
    void Store(List& list);
    // The chunk there; `at` becomes the place of the next one.
    std::vector<Event> Load(off_t& at) const;
    void Put(const void* data, std::size_t size, off_t at);
    void Get(void* data, std::size_t size, off_t at) const;

    int m_fd;
    off_t m_end = 0;
};

}  // namespace timeline

#endif
