#ifndef SPOOLD_EXAMINE_H
#define SPOOLD_EXAMINE_H

#include <quor/time.h>

#include <cstdint>
#include <string>

namespace spoold {

/// What a report tells of a file.
struct Findings {
    quor::Time m_begin = quor::Time::Now(quor::Time::eDate | quor::Time::eTimeOfDay);
    quor::Time m_duration = quor::Time(0, 0);
    std::uint64_t m_size = 0;   // bytes
    std::uint64_t m_lines = 0;  // line feeds
    std::uint64_t m_words = 0;  // runs of bytes other than white space
    std::uint32_t m_crc = 0;    // CRC-32 as zlib computes it
    std::string m_head;         // the first bytes, at most 64
};

/// Reads a file to its end. Throws quor::Exception when it cannot be read or is no regular file.
Findings Examine(const std::string& path);

}  // namespace spoold

#endif
