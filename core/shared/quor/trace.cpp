#include <quor/trace.h>

#include <cerrno>
#include <charconv>
#include <istream>
#include <iterator>
#include <limits>
#include <locale>

namespace quor {
namespace {

// What a stream needs of its locale. The C++ library's own way to build a stream looks these up by
// dynamic_cast, in the global locale, which is dearer than the rest of a trace line.
#ifdef __GLIBCXX__
struct ClassicLocale {
    const std::locale& locale = std::locale::classic();
    const std::ctype<char>& characters = std::use_facet<std::ctype<char>>(locale);
    const std::num_put<char>& put = std::use_facet<std::num_put<char>>(locale);
    const std::num_get<char>& get = std::use_facet<std::num_get<char>>(locale);
};
#endif

}  // namespace

TraceLevel_e TraceActiveLevel() {
    TraceLevel_e level = Off;
    TraceFile::GetInstance().GetLevel(level);
    return level;
}

void TraceWrite(TraceLevel_e level, const char* /*function*/, const char* file, int line,
                const std::string& text) {
    TraceFile::TraceLine(level, file, line, text.c_str());
}

// Sites stand in destructors and in the last handlers of threads, where an exception would end the
// process: a line is not worth that.
void TraceFnc::Write(const char* arrow, const char* function, const char* file, int line) noexcept {
    const int savedErrno = errno;
    try {
        TraceWrite(High, function, file, line, std::string(arrow) + function);
    } catch (...) {
    }
    errno = savedErrno;
}

#ifdef __GLIBCXX__
// Does what init() does, which this constructor of the base class leaves to the derived one. The
// base does not look at its argument; the classic locale is never destroyed.
TraceStream::TraceStream() : std::ostream(reinterpret_cast<std::iostream&>(m_buffer)) {
    static const ClassicLocale classic;
    flags(skipws | dec);
    precision(6);
    _M_streambuf = &m_buffer;
    if (_M_ios_locale == classic.locale) {
        _M_ctype = &classic.characters;
        _M_num_put = &classic.put;
        _M_num_get = &classic.get;
    } else {
        imbue(classic.locale);
    }
}
#else
TraceStream::TraceStream() : std::ostream(&m_buffer) {
    imbue(std::locale::classic());
}
#endif

TraceStream::~TraceStream() = default;

bool TraceStream::IsPlain() const {
    return flags() == (skipws | dec) && width() == 0;
}

// What memory is too short for is lost, with all behind it, as the std::ostream does it.
void TraceStream::Put(std::string_view text) {
    if (!IsPlain()) {
        static_cast<std::ostream&>(*this) << text;
    } else if (good()) {
        try {
            m_buffer.Put(text);
        } catch (...) {
            setstate(badbit);
        }
    }
}

bool TraceStream::PutNumber(long long number) {
    char digits[20];  // "-9223372036854775808"
    return PutDigits(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

bool TraceStream::PutNumber(unsigned long long number) {
    char digits[20];
    return PutDigits(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

bool TraceStream::PutDigits(const char* first, const char* last) {
    if (!IsPlain()) {
        return false;
    }
    Put({first, static_cast<std::size_t>(last - first)});
    return true;
}

void TraceStream::Buffer::Put(std::string_view text) {
    if (text.size() <= static_cast<std::size_t>(epptr() - pptr())) {
        text.copy(pptr(), text.size());
        pbump(static_cast<int>(text.size()));
    } else {
        sputn(text.data(), static_cast<std::streamsize>(text.size()));
    }
}

// Every message has a stream of its own, so that it may itself trace or throw, and leaves nothing
// behind.
TraceMessage::TraceMessage() {
    errno = m_errno.m_errno;
}

TraceMessage::~TraceMessage() = default;

void TraceMessage::Write(TraceLevel_e level, const char* /*function*/, const char* file,
                         int line) const noexcept {
    try {
        TraceFile::TraceLine(level, file, line, m_stream.Text());
    } catch (...) {
    }
}

// Doubles the room. What does not fit any more is lost.
TraceStream::Buffer::int_type TraceStream::Buffer::overflow(int_type next) {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    if (text.size() > std::numeric_limits<int>::max() / 2) {
        return traits_type::eof();
    }
    std::string larger;
    larger.reserve(2 * text.size());
    larger = text;
    larger.resize(2 * text.size());
    m_heap.swap(larger);
    setg(nullptr, nullptr, nullptr);
    setp(m_heap.data(), m_heap.data() + m_heap.size());
    pbump(static_cast<int>(text.size()));
    return traits_type::eq_int_type(next, traits_type::eof())
               ? traits_type::not_eof(next)
               : sputc(traits_type::to_char_type(next));
}

TraceStream::Buffer::pos_type TraceStream::Buffer::seekoff(off_type offset,
                                                           std::ios_base::seekdir from,
                                                           std::ios_base::openmode which) {
    char* const end = End();
    const off_type size = end - pbase();
    const off_type start = from == std::ios_base::beg   ? 0
                           : from == std::ios_base::cur ? pptr() - pbase()
                                                        : size;
    if ((which & std::ios_base::out) == 0 || offset < -start || offset > size - start) {
        return {off_type(-1)};
    }
    setg(end, end, end);
    setp(pbase(), epptr());
    pbump(static_cast<int>(start + offset));
    return {start + offset};
}

TraceStream::Buffer::pos_type TraceStream::Buffer::seekpos(pos_type position,
                                                           std::ios_base::openmode which) {
    return seekoff(position, std::ios_base::beg, which);
}

}  // namespace quor
