#include <quor/detail/trace_message.h>

#include <quor/internal/digits.h>
#include <quor/internal/trace_file_internals.h>

#include <cstring>
#include <istream>
#include <iterator>
#include <limits>
#include <locale>

namespace quor::detail {

static_assert(TraceBuffer::c_gap >= internal::c_lineGap);

namespace {

// What a stream needs of its locale. The C++ library's own way to build a stream looks these up by
// dynamic_cast, in the global locale, which costs more than the rest of a trace line.
#ifdef __GLIBCXX__
struct ClassicLocale {
    const std::locale& locale = std::locale::classic();
    const std::ctype<char>& characters = std::use_facet<std::ctype<char>>(locale);
    const std::num_put<char>& put = std::use_facet<std::num_put<char>>(locale);
    const std::num_get<char>& get = std::use_facet<std::num_get<char>>(locale);
};
#endif

}  // namespace

void TraceBuffer::Put(std::string_view text) {
    if (text.size() <= static_cast<std::size_t>(epptr() - pptr()) || MakeRoom(text.size())) {
        text.copy(pptr(), text.size());
        pbump(static_cast<int>(text.size()));
    }
}

TraceBuffer::int_type TraceBuffer::overflow(int_type next) {
    if (!MakeRoom(1)) {
        return traits_type::eof();
    }
    return traits_type::eq_int_type(next, traits_type::eof())
               ? traits_type::not_eof(next)
               : sputc(traits_type::to_char_type(next));
}

// Makes room for so many more characters, and for as many again as there are by then. Fails if
// memory is short, and for a text that positions could not address.
__attribute__((noinline)) bool TraceBuffer::MakeRoom(std::size_t more) {
    constexpr std::size_t c_longest = std::numeric_limits<int>::max() / 2;
    const auto size = static_cast<std::size_t>(pptr() - pbase());
    m_whole = m_whole && size <= c_longest && more <= c_longest - size;
    try {
        if (m_whole) {
            std::string larger;
            larger.reserve(c_gap + 2 * (size + more) + 1);
            larger.append(pbase() - c_gap, c_gap + size);
            larger.resize(larger.capacity());
            m_heap.swap(larger);
            setg(nullptr, nullptr, nullptr);
            setp(m_heap.data() + c_gap, m_heap.data() + m_heap.size() - 1);
            pbump(static_cast<int>(size));
        }
    } catch (...) {
        m_whole = false;
    }
    return m_whole;
}

TraceBuffer::pos_type TraceBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
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

TraceBuffer::pos_type TraceBuffer::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(position, std::ios_base::beg, which);
}

#ifdef __GLIBCXX__
// Does the work of init(), which this constructor of the base class leaves to the derived one. The
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

// Flat: most parts of a message come this way.
__attribute__((flatten)) void TraceStream::Put(std::string_view text) {
    if (!IsPlain()) {
        static_cast<std::ostream&>(*this) << text;
    } else if (good()) {
        m_buffer.Put(text);
    }
}

bool TraceStream::PutNumber(long long number) {
    char digits[internal::c_longestNumber];
    return PutDigits(internal::PutNumberBefore(std::end(digits), number), std::end(digits));
}

bool TraceStream::PutNumber(unsigned long long number) {
    char digits[internal::c_longestNumber];
    return PutDigits(internal::PutNumberBefore(std::end(digits), number), std::end(digits));
}

bool TraceStream::PutDigits(const char* first, const char* last) {
    if (!IsPlain()) {
        return false;
    }
    Put({first, static_cast<std::size_t>(last - first)});
    return true;
}

// Every message has a stream of its own, so that it may itself trace or throw, and leaves nothing
// behind.
TraceMessage::TraceMessage() {
    m_errno.Restore();
}

TraceMessage::~TraceMessage() = default;

void TraceMessage::Write(TraceLevel_e level, const char* /*function*/, const char* file,
                         int line) const noexcept {
    const TraceBuffer& buffer = m_stream.Buffer();
    if (!buffer.IsWhole()) {
        return;
    }
    char* const text = buffer.Begin();
    *buffer.End() = '\0';
    try {
        internal::TraceFileInternals::WriteLine(
            TraceFile::GetInstance(), level, file, line,
            {text, text + std::strlen(text), TraceBuffer::c_gap});
    } catch (...) {
        // Sites are in destructors and in the last handlers of threads: a line is not worth that.
    }
}

}  // namespace quor::detail
