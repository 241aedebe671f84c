#ifndef QUOR_TIMELINE_PROGRESS_H
#define QUOR_TIMELINE_PROGRESS_H

#include <cstdint>

namespace timeline {

/// Tells on standard error how much of a large input was read, when that is a terminal. The line
/// is wiped at the end, by SIGINT too. One object at a time.
class Progress {
public:
    /// `size` is all there is to read, in bytes; 0 when nobody knows.
    explicit Progress(std::uint64_t size);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Add(std::uint64_t bytes);

private:
    const std::uint64_t m_size;  // 0: nothing is told
    std::uint64_t m_read = 0;
    std::uint64_t m_shown = 0;  // percent
};

}  // namespace timeline

#endif
