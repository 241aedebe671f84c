#include "support.h"

#include <iomanip>
#include <iostream>
#include <limits>
#include <locale>
#include <map>

namespace quor_test {

void Stripped(int& evaluated);

TEST(TraceMacro, EvaluatesTheLevelOnceAndTheMessageOnlyWhileTheGateIsOpen) {
    const TraceTap trace(Medium);
    int levels = 0;
    int messages = 0;
    const auto level = [&levels](TraceLevel_e value) { return ++levels, value; };
    const auto site = [&](TraceLevel_e value) { QUOR_TRACE(level(value), ++messages); };
    site(High);
    TraceFile::GetInstance().Pause();
    site(Low);
    TraceFile::GetInstance().Continue();
    site(Medium);
    TraceFile::GetInstance().Stop();
    site(Low);
    EXPECT_EQ(levels, 4);
    EXPECT_EQ(messages, 1);
}

template <typename T>
int AmongNeighbours(T kind) {
    // NOLINTBEGIN(readability-identifier-naming): names that a host may have
    [[maybe_unused]] struct ostringstream {
    } quor, std, level, line, file, text, siteLevel, TraceWrite, TraceMessage;
    // NOLINTEND(readability-identifier-naming)
    int passes = 0;
    if (kind == 0)
        QUOR_TRACE(::quor::Low, "if " << kind);
    else
        QUOR_TRACE(::quor::Low, "else " << ++passes);
    switch (kind) {
        case 0:
            QUOR_TRACE(::quor::Low, (::std::map<int, int>{{1, 2}, {3, 4}}.size()));
            break;
        default:
            QUOR_TRACE(
                ::quor::Low, "outer " << [&passes] {
                    QUOR_TRACE(
                        ::quor::Low, "inner " << [&passes] {
                            QUOR_TRACE(::quor::Low, "innermost");
                            return ++passes;
                        }());
                    return ++passes;
                }());
    }
    return passes;
}

TEST(TraceMacro, IsOneStatementThatMeetsNoNameOfTheHost) {
    TraceTap trace;
    TraceFile::GetInstance().SetPrintLine(false);
    EXPECT_EQ(AmongNeighbours(0), 0);
    EXPECT_EQ(AmongNeighbours(1L), 3);
    EXPECT_EQ(trace.News(),
              "[#: #] if 0\n[#: #] 2\n[#: #] else 1\n[#: #] innermost\n"
              "[#: #] inner 2\n[#: #] outer 3\n");
}

TEST(TraceMacro, NamesFileStemAndLineAndIsStrippedAboveTheLevelOfItsSource) {
    TraceTap trace(Detail);
    TraceFile::GetInstance().SetPrintFile(true);
    int evaluated = 0;
    Stripped(evaluated);
    EXPECT_EQ(evaluated, 1);
    EXPECT_EQ(trace.News(), "[#: #] strange.name12345: kept 1\n");
    EXPECT_STREQ(detail::FileStem("a.b/c").m_text, "c");
    EXPECT_STREQ(detail::FileStem("a/.b").m_text, ".b");
}

struct Grouping : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
};

std::string StateOf(std::ostream& stream, int word) {
    std::ostringstream state;
    state.imbue(std::locale::classic());
    state << stream.flags() << ' ' << stream.precision() << ' ' << stream.width() << " '"
          << stream.fill() << "' " << stream.exceptions() << ' ' << stream.rdstate() << ' '
          << stream.tie() << ' ' << stream.getloc().name() << ' ' << stream.rdbuf()->getloc().name()
          << ' ' << stream.iword(word) << ' ' << stream.pword(word);
    return state.str();
}

// Takes the state of the message's stream, and leaves another behind.
struct Foul {
    std::string& state;
    int word;
};

std::ostream& operator<<(std::ostream& stream, const Foul& foul) {
    foul.state = StateOf(stream, foul.word);
    stream.imbue(std::locale());
    stream.tie(&std::cout);
    stream.exceptions(std::ios_base::badbit);
    stream.iword(foul.word) = 1;
    stream.pword(foul.word) = &stream;
    stream << std::hex << std::setprecision(2) << std::setfill('*') << std::setw(9);
    stream.setstate(std::ios_base::failbit);
    return stream;
}

TEST(TraceMacro, BuildsEachMessageOnAStreamAsGoodAsNew) {
    const TraceTap trace;
    const int word = 20 + std::ios_base::xalloc();  // beyond what a stream has room for
    std::ostringstream fresh;
    fresh.imbue(std::locale::classic());
    const std::string expected = StateOf(fresh, word);
    const std::locale previous = std::locale();
    for (const std::locale& global :
         {std::locale::classic(), std::locale(std::locale::classic(), new Grouping)}) {
        std::locale::global(global);
        for (int pass = 0; pass < 2; ++pass) {
            std::string state;
            QUOR_TRACE(Low, (Foul{state, word}));
            EXPECT_EQ(state, expected) << global.name() << ", pass " << pass;
        }
    }
    std::locale::global(previous);
}

struct Hex {};
template <class Stream>
Stream& operator<<(Stream& stream, Hex) {
    stream << std::hex << std::setw(3);
    return stream;
}
enum Plain { ePlain = 7 };
enum Named { eNamed };
std::ostream& operator<<(std::ostream& stream, Named) {
    return stream << "named";
}
struct Limits {
    static const int c_neverDefined = 5;
};
struct Converts {
    operator const char*() const { return "converted"; }
    operator int() const { return 1; }
};
std::ostream& operator<<(std::ostream& stream, const Converts&) {
    return stream << "its own";
}

TEST(TraceMacro, PrintsEachPartAsAnOstreamDoes) {
    TraceTap trace;
    TraceFile::GetInstance().SetPrintLine(false);
    std::ostringstream expected;
    const auto print = [&expected](const auto& part) {
        expected << "[#: #] " << part << "|" << std::endl;
        QUOR_TRACE(Low, part << "|");
    };
    const auto printLimits = [&print](auto... zeros) {
        (print(std::numeric_limits<decltype(zeros)>::min()), ...);
        (print(std::numeric_limits<decltype(zeros)>::max()), ...);
    };
    printLimits(short{}, static_cast<unsigned short>(0), 0, 0U, 0L, 0UL, 0LL, 0ULL, 0.0);
    char array[] = "array\0unseen";
    print(array);
    print(static_cast<char*>(array));
    print(std::string("text"));
    print(std::string_view("text", 2));
    print(std::string_view());
    print('c');
    print(static_cast<signed char>('s'));
    print(true);
    print(ePlain);
    print(eNamed);
    print(Converts());
    print(std::setw(4));
    EXPECT_EQ(trace.News(), expected.str());
    QUOR_TRACE(Low, Limits::c_neverDefined << std::setw(3) << 1 << std::hex << 255 << 'h');
    QUOR_TRACE(Low, "seen" << static_cast<const char*>(nullptr) << "not seen" << 1);
    QUOR_TRACE(Low, Hex() << 255 << -1 << Hex() << "t");
    EXPECT_EQ(trace.News(), "[#: #] 5  1ffh\n[#: #] seen\n[#: #]  ffffffffff  t\n");
}

TEST(TraceMacro, NeedsNoMemoryUpTo400CharactersAndKeepsLongerTextsWhole) {
    TraceTap trace;
    TraceFile::GetInstance().SetPrintLine(false);
    const std::string text(399, 'x');
    {
        const ScopedValue memory(Hooks::allocations, 0);
        QUOR_TRACE(Low, text << 1);
        QUOR_TRACE(Low, text << 12 << (Hooks::allocations = -1) << text);  // lost, not cut
    }
    QUOR_TRACE(Low, text << 23 << text << text << text << '\0' << text);
    EXPECT_EQ(trace.News(),
              "[#: #] " + text + "1\n[#: #] " + text + "23" + text + text + text + "\n");
}

// Takes its last comma back, then the first bracket, then pads, as is done on string streams.
struct Listed {};

std::ostream& operator<<(std::ostream& stream, Listed /*list*/) {
    const std::ostream::pos_type start = stream.tellp();
    stream << "(1, 2, 3, ";
    stream.seekp(-2, std::ios_base::cur) << ']';
    stream.seekp(start) << '[';
    stream.seekp(0, std::ios_base::end);
    for (int blanks = 0; stream.tellp() - start < 16 && blanks < 16; ++blanks) {
        stream << '.';
    }
    return stream << stream.tellp() << stream.rdbuf()->pubseekoff(1, std::ios_base::end);
}

TEST(TraceMacro, KnowsPositionsAsAStringStreamDoes) {
    TraceTap trace;
    TraceFile::GetInstance().SetPrintLine(false);
    for (const std::size_t length : {0U, 386U, 392U, 399U, 400U, 2000U}) {
        const std::string before(length, 'x');
        std::ostringstream expected;
        expected << before << Listed() << before;
        QUOR_TRACE(Low, before << Listed() << before);
        EXPECT_EQ(trace.News(), "[#: #] " + expected.str() + "\n") << length;
    }
}

TEST(TraceMacro, KeepsErrnoAndLetsOutOnlyWhatTheMessageThrows) {
    TraceTap trace(High);
    const Redirected errors(STDERR_FILENO, "errors");
    const auto fail = []() -> const char* { return errno = ENOENT, ""; };
    const auto fling = [&fail]() -> int { throw std::string(fail()); };
    errno = EXDEV;
    QUOR_TRACE(Low, fail());
    EXPECT_THROW(QUOR_TRACE(Low, fling()), std::string);
    EXPECT_EQ(errno, EXDEV);
    const ScopedValue full(g_hooks.diskFull, true);
    { const TraceFnc scope("f", "file", 1); }
    EXPECT_EQ(errno, EXDEV);
}

void Drain(int level) {
#line 76
    QUOR_TRACE_FNC();
    TraceFile::GetInstance().SetLevel(static_cast<TraceLevel_e>(level));
}

TEST(TraceFnc, MarksEntryAndExitEachAsTheGateStandsThen) {
    TraceTap trace(Medium);
    for (const TraceLevel_e level : {Medium, High, Detail, Low}) {
        Drain(level);
    }
    const std::string changed = "[#: #] *** Trace level changed to ";
    const std::string enter = "[#: #]   76: ==> void quor_test::Drain(int)\n";
    const std::string leave = "[#: #]   76: <== void quor_test::Drain(int)\n";
    EXPECT_EQ(trace.News(),
              changed + "3\n" + leave + enter + changed + "4\n" + leave + enter + changed + "1\n");
}

}  // namespace quor_test
