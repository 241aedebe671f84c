#include "support.h"

#include <climits>
#include <future>

extern "C" __attribute__((noinline)) std::string QuorTestCFunction() {
    return quor::ThisFncName();
}

namespace quor_test {

struct Stack {
    std::vector<std::string> entries;
};

__attribute__((noinline)) Stack StackAt(int frames, int depth) {
    Stack stack = frames > 1 ? StackAt(frames - 1, depth) : Stack{GetExecutionStack(depth)};
    __asm__ volatile("");
    return stack;
}

template <int... Numbers>
__attribute__((noinline)) std::string LongName(std::integer_sequence<int, Numbers...> /*unused*/) {
    return ThisFncName();
}

TEST(CppName, IsTheReadableNameOrTheTextItself) {
    EXPECT_EQ(CppName("_Z3foov"), "foo()");
    EXPECT_EQ(CppName("main"), "main");
    EXPECT_EQ(CppName(""), "");
    EXPECT_EQ(CppName(typeid(int)), "int");
    EXPECT_EQ(CppName(typeid(std::string)),
              "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >");
}

TEST(ExecutionStack, StartsWithTheCallerAndHasAtMost128Entries) {
    char expected[500];
    std::snprintf(expected, sizeof(expected), "%s(quor_test::StackAt(int, int)) [%p]",
                  program_invocation_name, reinterpret_cast<void*>(StackAt));
    const std::vector<std::string> stack = StackAt(2, 3).entries;
    ASSERT_EQ(stack.size(), 3u);
    EXPECT_EQ(stack[0], expected);
    EXPECT_EQ(stack[1], expected);
    EXPECT_NE(stack[2], expected);
    for (const int depth : {0, -1, -5, INT_MIN, 1, 128, 129, 1000, INT_MAX}) {
        EXPECT_EQ(StackAt(200, depth).entries.size(), std::clamp(depth, 0, 128)) << depth;
    }
}

TEST(ThisFncName, IsCutAt499CharactersOrTheCLibrarysTextWithoutACxxName) {
    EXPECT_EQ(LongName(std::make_integer_sequence<int, 120>()).size(), 499u);
    EXPECT_THAT(Masked(QuorTestCFunction()),
                testing::EndsWith("quor_tests(QuorTestCFunction+#) [#]"));
}

TEST(Process, KnowsItsNameAndTheIdsOfProcessAndThread) {
    EXPECT_STREQ(GetProgName(), "quor_tests");
    EXPECT_EQ(GetPid(), getpid());
    EXPECT_EQ(GetTid(), getpid());
    EXPECT_NE(std::async(std::launch::async, GetTid).get(), getpid());
}

TEST(GetTidProcess, IsTheChildsOwnAfterAFork) {
    EXPECT_EQ(GetTid(), getpid());
    Child child([](Pipe& parent) { parent.Send(GetTid()); });
    EXPECT_EQ(child.Receive<pid_t>(), child.pid);
    EXPECT_EQ(child.Exit(), 0);
}

}  // namespace quor_test
