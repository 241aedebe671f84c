#ifndef QUOR_ASSERT_H
#define QUOR_ASSERT_H

#include <quor/trace.h>

/// Ends the process through LoggedAssert() when `condition`, evaluated once, is false. An
/// expression; active in every build.
#define QUOR_ASSERT(...)                                                                    \
    ((__VA_ARGS__) ? static_cast<void>(0)                                                   \
                   : ::quor::LoggedAssert(QUOR_FILE_STEM_(), __LINE__, __PRETTY_FUNCTION__, \
                                          "Assertion condition: " #__VA_ARGS__))

namespace quor {

/// Reports a failure that must not be survived, then ends the process with abort().
///
/// The report, with up to 64 entries of the call stack, goes to the file "assert_" process id "_"
/// thread id ".log" in the assert directory, which is fixed when the library is built (by default
/// /var/opt/zelvar/log) and is not created; when the file cannot be written, to standard error.
/// Meanwhile all that is written through std::cerr goes there too. The failure is also traced and
/// logged as critical, which is lost where neither a log file nor a trace is in use. Disks are
/// synchronised and 200 ms pass before the end.
///
/// Any thread; two failures at once write two files, though their reports may mix. `file` is the
/// source file's name, `function` its full signature. No text may be null.
[[noreturn]] void LoggedAssert(const char* file, int line, const char* function,
                               const char* reason) noexcept;

}  // namespace quor

#endif
