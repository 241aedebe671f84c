#ifndef QUOR_ASSERT_H
#define QUOR_ASSERT_H

#include <quor/trace.h>

/// Ends the process through LoggedAssert() if `condition` is false:
///
///     QUOR_ASSERT(!queue.empty());
///
/// Evaluates the condition once. It is an expression of type void, and active in every build.
#define QUOR_ASSERT(...)                                                                    \
    ((__VA_ARGS__) ? static_cast<void>(0)                                                   \
                   : ::quor::LoggedAssert(QUOR_FILE_STEM_(), __LINE__, __PRETTY_FUNCTION__, \
                                          "Assertion condition: " #__VA_ARGS__))

namespace quor {

/// Reports a failure that must not be survived, then ends the process with abort().
///
/// Writes the report, with up to 64 entries of the call stack, to the file "assert_" process id "_"
/// thread id ".log" in the assert directory. That directory is fixed when the library is built (by
/// default /var/opt/zelvar/log) and is not created. Until the report is complete, everything
/// written through std::cerr goes to the file too. If the file cannot be opened or the disk is
/// full, the report goes to standard error instead; if memory runs out, it is cut down to the file
/// name, line and reason.
///
/// Also traces the failure and logs it as critical. That copy is lost if neither a log file nor a
/// trace is in use, and so is text that std::cout has not flushed. Synchronises the disks and waits
/// 200 ms before the end. If a step hangs, on a mutex or a pipe, the process ends after a minute:
/// SIGALRM is taken over for that.
///
/// Any thread may call it. Two failures at once write two files, but their reports may mix. `file`
/// is the name of the source file and `function` its full signature. No text may be null.
[[noreturn]] void LoggedAssert(const char* file, int line, const char* function,
                               const char* reason) noexcept;

}  // namespace quor

#endif
