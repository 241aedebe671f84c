#include "support.h"

#include <climits>
#include <map>

extern "C" __attribute__((noinline)) void QuorTestCFunction(std::string& name) {
    name = quor::ThisFncName();
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

template <typename T>
__attribute__((noinline)) void LongName(std::string& name) {
    name = ThisFncName();
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
    std::string name;
    LongName<std::map<std::map<std::string, std::string>, std::map<std::string, std::string>>>(
        name);
    EXPECT_EQ(name.size(), 499u);
    QuorTestCFunction(name);
    EXPECT_THAT(Masked(name), testing::EndsWith("quor_tests(QuorTestCFunction+#) [#]"));
}

}  // namespace quor_test
