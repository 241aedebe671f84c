#include "support.h"

#include <iostream>

namespace quor_test {

// Init cannot be undone: in a process that did nothing before.
void PrintVersions() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::cout << VerInfo::GetInstance() << VerInfo::Label() << VerInfo::BuildUser()
              << VerInfo::Major() + VerInfo::Minor() + VerInfo::Build() + VerInfo::Revision();
    VerInfo::Init(9, 9, 9, 9, "nine", "c", "t", "m", "u");
    VerInfo::Init(1, 2, 3, 4, "", "gcc 12", "today", "box", "me");
    std::cout << '<' << VerInfo::GetInstance() << '>' << VerInfo::Label() << VerInfo::Major()
              << VerInfo::Minor() << VerInfo::Build() << VerInfo::Revision() << '\n';
    VerInfo::Init(1, 2, 3, 4, "beta", "gcc 12", "today", "box", "me");
    VerInfo::Dump();
    _exit(0);  // nothing waits to be flushed
}

TEST(VerInfoDeathTest, IsNotSetBeforeInitAndFollowsEveryInit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        PrintVersions(), testing::ExitedWithCode(0),
        "build info not set0<1\\.2-3-r4 >1234\nRevision:      1\\.2-3-r4 beta\n"
        "Compiler:      gcc 12\nBuild Time:    today\nBuild Machine: box\nBuild User:    me\n");
}

}  // namespace quor_test
