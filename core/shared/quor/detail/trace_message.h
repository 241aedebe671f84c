#ifndef QUOR_DETAIL_TRACE_MESSAGE_H
#define QUOR_DETAIL_TRACE_MESSAGE_H

#include <quor/detail/errno_keeper.h>
#include <quor/trace_level.h>

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <type_traits>

namespace quor::detail {

// Holds the text of a message where the line is written from: behind a gap in which the head of the
// line is put, and with room for a line feed. Knows positions as a string buffer does. Allocates
// nothing up to 400 characters.
class TraceBuffer final : public std::streambuf {
public:
    static constexpr std::size_t c_gap = 96;

    TraceBuffer() { setp(m_stack + c_gap, m_stack + sizeof(m_stack) - 1); }

    void Put(std::string_view text);

    char* Begin() const { return pbase(); }
    // Behind the last character that was ever put: who goes back in the text keeps what follows.
    char* End() const { return egptr() > pptr() ? egptr() : pptr(); }
    // False once memory ran out: the rest of the text is missing.
    bool IsWhole() const { return m_whole; }

protected:
    int_type overflow(int_type next) override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    bool MakeRoom(std::size_t more);

    // The area for reading is empty. It marks the text's end once somebody went back.
    bool m_whole = true;
    char m_stack[c_gap + 400 + 1];
    std::string m_heap;  // gap and text, when the text is longer
};

// What the message of a trace site is streamed into: an std::ostream in the classic locale, with a
// fast path for strings and integers, which make up most messages. Everything else, and anything
// after a manipulator, is formatted by std::ostream.
class TraceStream final : public std::ostream {
    template <class Value, class... Types>
    using IfOneOf = std::enable_if_t<(std::is_same_v<Value, Types> || ...), TraceStream&>;

public:
    TraceStream();
    TraceStream(const TraceStream&) = delete;
    TraceStream& operator=(const TraceStream&) = delete;
    ~TraceStream() override;

    // These take no other types, not even by conversion: a type may have an operator of its own.
    template <class Value>
    friend IfOneOf<Value, const char*, char*, char, short, unsigned short, int, unsigned int, long,
                   unsigned long, long long, unsigned long long>
    operator<<(TraceStream& stream, Value value) {
        if constexpr (std::is_pointer_v<Value>) {
            value != nullptr ? stream.Put(value) : stream.setstate(badbit);
        } else if constexpr (std::is_same_v<Value, char>) {
            stream.Put({&value, 1});
        } else {
            using Widest =
                std::conditional_t<std::is_signed_v<Value>, long long, unsigned long long>;
            if (!stream.PutNumber(static_cast<Widest>(value))) {
                static_cast<std::ostream&>(stream) << value;
            }
        }
        return stream;
    }
    template <class Value>
    friend IfOneOf<Value, std::string, std::string_view> operator<<(TraceStream& stream,
                                                                    const Value& value) {
        stream.Put(value);
        return stream;
    }

    const TraceBuffer& Buffer() const { return m_buffer; }

private:
    // Whether no manipulator has been used, nor an operator that is a template for any stream.
    bool IsPlain() const;
    void Put(std::string_view text);
    // These return false if std::ostream has to format the number.
    bool PutNumber(long long number);
    bool PutNumber(unsigned long long number);
    bool PutDigits(const char* first, const char* last);

    TraceBuffer m_buffer;
};

// The message of one trace site, while it is built and until it is written. Keeps errno.
class TraceMessage {
public:
    // Cold: the compiler then moves a site's message out of the path of a closed gate.
    __attribute__((cold)) TraceMessage();
    TraceMessage(const TraceMessage&) = delete;
    TraceMessage& operator=(const TraceMessage&) = delete;
    ~TraceMessage();

    TraceStream& Stream() { return m_stream; }
    // Writes the line. Drops it if memory runs out, or ran out while the message was built.
    void Write(TraceLevel_e level, const char* function, const char* file, int line) const noexcept;

private:
    const ErrnoKeeper m_errno;  // outlives the stream
    TraceStream m_stream;
};

}  // namespace quor::detail

#endif
