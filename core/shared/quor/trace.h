#ifndef QUOR_TRACE_H
#define QUOR_TRACE_H

#include <quor/trace_file.h>
#include <quor/trace_level.h>

#include <cerrno>
#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <type_traits>

/// Sites above this level are left out at compile time; their messages are still type-checked.
/// Define it before the first include, or for the whole program. The default keeps every site.
#ifndef QUOR_TRACE_MAX_LEVEL
#define QUOR_TRACE_MAX_LEVEL ::quor::Detail
#endif

/// Traces a stream expression at a level:
///
///     QUOR_TRACE(quor::Low, "Worker thread: " << m_name << ": START");
///
/// `level` is evaluated once, the message only when the gate is open, before any lock is taken: it
/// may itself trace. Numbers print without the digit grouping of the host's locale, and
/// manipulators do not reach the next message. One statement. errno stays what it was. Throws only
/// what the message throws, and writes nothing then; a line that memory is too short for is lost.
#define QUOR_TRACE(level, ...) QUOR_TRACE_SITE_(__COUNTER__, level, __VA_ARGS__)

/// Traces the entry of the enclosing scope here, and its exit, at level High.
#define QUOR_TRACE_FNC()                                                            \
    const ::quor::TraceFnc QUOR_JOIN_(quorTraceFnc_, __LINE__)(__PRETTY_FUNCTION__, \
                                                               QUOR_FILE_STEM_(), __LINE__)

// The names end in a number of their own, since a message may hold a lambda that traces.
#define QUOR_TRACE_SITE_(number, level, ...)                                                  \
    QUOR_TRACE_BODY_(QUOR_JOIN_(quorLevel_, number), QUOR_JOIN_(quorMessage_, number), level, \
                     __VA_ARGS__)
#define QUOR_TRACE_BODY_(siteLevel, siteMessage, level, ...)                                \
    do {                                                                                    \
        const ::quor::TraceLevel_e siteLevel = (level);                                     \
        if (siteLevel <= QUOR_TRACE_MAX_LEVEL && ::quor::TraceGateOpen(siteLevel)) {        \
            ::quor::TraceMessage siteMessage;                                               \
            siteMessage.Stream() << __VA_ARGS__;                                            \
            siteMessage.Write(siteLevel, __PRETTY_FUNCTION__, QUOR_FILE_STEM_(), __LINE__); \
        }                                                                                   \
    } while (false)
#define QUOR_FILE_STEM_()                                                        \
    ([]() noexcept -> const char* {                                              \
        static constexpr ::quor::FileStem<sizeof(__FILE__)> quorStem_(__FILE__); \
        return quorStem_.m_text;                                                 \
    }())
#define QUOR_JOIN_(left, right) QUOR_JOIN_EXPANDED_(left, right)
#define QUOR_JOIN_EXPANDED_(left, right) left##right

namespace quor {

/// Whether a message of `level` would be written: the trace runs, and at `level` or a more verbose
/// one. One relaxed read in place, no call; any thread, at any time of the process's life.
inline bool TraceGateOpen(TraceLevel_e level) noexcept {
    return TraceFile::m_gate.load(std::memory_order_relaxed) >= static_cast<int>(level);
}

/// The trace file's level, whether or not the trace runs.
TraceLevel_e TraceActiveLevel();

/// Writes one trace line without testing the gate: it appears while a file is open, also a paused
/// one, and `level` is at most the trace's. `function` is not printed; `file` and `line` are where
/// the trace file's options ask for them. Any thread; keeps errno; throws as TraceFile::Trace().
void TraceWrite(TraceLevel_e level, const char* function, const char* file, int line,
                const std::string& text);

/// Marks the entry into a scope and the exit from it in the trace, at level High: "==> " or "<== "
/// and the function's text.
///
/// The gate is asked at either end, so a change of level in between leaves one without the other.
/// The texts are not copied and must outlive the object. Throws nothing.
class TraceFnc {
public:
    /// Marks the entry; takes what __PRETTY_FUNCTION__, FileStem and __LINE__ give.
    TraceFnc(const char* function, const char* file, int line) noexcept
        : m_function(function), m_file(file), m_line(line) {
        if (TraceGateOpen(High)) {
            Write("==> ", m_function, m_file, m_line);
        }
    }
    TraceFnc(const TraceFnc&) = delete;
    TraceFnc& operator=(const TraceFnc&) = delete;
    virtual ~TraceFnc() {
        if (TraceGateOpen(High)) {
            Write("<== ", m_function, m_file, m_line);
        }
    }

private:
    // Static: an object whose address goes nowhere is not even built while the gate is closed.
    static void Write(const char* arrow, const char* function, const char* file, int line) noexcept;

    const char* m_function;
    const char* m_file;
    int m_line;
};

/// What the message of a trace site is streamed into: an std::ostream in the classic locale, with a
/// short way for texts and whole numbers, of which most messages are made. Every other part, and
/// what a manipulator has been at, goes the std::ostream's own way. Knows positions as a string
/// stream does. Allocates nothing up to 400 characters.
class TraceStream : public std::ostream {
    template <class Value, class... Types>
    using IfOneOf = std::enable_if_t<(std::is_same_v<Value, Types> || ...), TraceStream&>;

public:
    TraceStream();
    TraceStream(const TraceStream&) = delete;
    TraceStream& operator=(const TraceStream&) = delete;
    ~TraceStream() override;

    /// A text or number as the std::ostream would print it. These take no other types, not even
    /// what would convert: that may have an operator of its own.
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
    /// The same for texts with a length, which may hold NULs.
    template <class Value>
    friend IfOneOf<Value, std::string, std::string_view> operator<<(TraceStream& stream,
                                                                    const Value& value) {
        stream.Put(value);
        return stream;
    }

    /// The message so far, with a NUL behind it.
    const char* Text() const { return m_buffer.Text(); }

private:
    class Buffer : public std::streambuf {
    public:
        Buffer() { setp(m_stack, m_stack + sizeof(m_stack) - 1); }
        void Put(std::string_view text);
        const char* Text() const {
            *End() = '\0';
            return pbase();
        }

    protected:
        int_type overflow(int_type next) override;
        // For what is padded by tellp(), or goes back over a comma by seekp(): as in a string
        // stream, what was put behind the new position stays.
        __attribute__((visibility("hidden"))) pos_type seekoff(
            off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which) override;
        __attribute__((visibility("hidden"))) pos_type seekpos(
            pos_type position, std::ios_base::openmode which) override;

    private:
        // The area for reading is empty, and stands at the text's end once somebody went back.
        char* End() const { return egptr() > pptr() ? egptr() : pptr(); }

        char m_stack[401];
        std::string m_heap;  // holds a longer text
    };

    // No manipulator has been at it; nor an operator that is a template for any stream.
    bool IsPlain() const;
    void Put(std::string_view text);
    // False when the number must go the other way.
    bool PutNumber(long long number);
    bool PutNumber(unsigned long long number);
    bool PutDigits(const char* first, const char* last);

    Buffer m_buffer;
};

/// The message of one trace site while it is built; made by QUOR_TRACE. Keeps errno.
class TraceMessage {
public:
    TraceMessage();
    TraceMessage(const TraceMessage&) = delete;
    TraceMessage& operator=(const TraceMessage&) = delete;
    ~TraceMessage();

    /// Takes the message.
    TraceStream& Stream() { return m_stream; }
    /// Writes the line, or loses it when memory is short.
    void Write(TraceLevel_e level, const char* function, const char* file, int line) const noexcept;

private:
    struct ErrnoKeeper {
        const int m_errno = errno;
        ~ErrnoKeeper() { errno = m_errno; }
    };

    const ErrnoKeeper m_errno;  // outlives the stream
    TraceStream m_stream;
};

/// The base name of a source file without its extension, made by the compiler.
template <std::size_t Size>
struct FileStem {
    /// Takes __FILE__.
    explicit constexpr FileStem(const char (&path)[Size]) : m_text{} {
        std::size_t begin = 0;
        for (std::size_t index = 0; path[index] != '\0'; ++index) {
            begin = path[index] == '/' ? index + 1 : begin;
        }
        std::size_t length = 0;
        std::size_t end = 0;
        for (; path[begin + length] != '\0'; ++length) {
            m_text[length] = path[begin + length];
            end = path[begin + length] == '.' && length > 0 ? length : end;
        }
        m_text[end > 0 ? end : length] = '\0';
    }

    char m_text[Size];  ///< the name, with a NUL behind it
};

}  // namespace quor

#endif
