#ifndef QUOR_PROCESS_H
#define QUOR_PROCESS_H

#include <sys/types.h>

#include <string>
#include <typeinfo>
#include <vector>

/// @file
/// Tells running code who and where it is. All functions may be called from any thread at any time
/// and keep no state. They throw only std::bad_alloc.

namespace quor {

/// Returns the short name of the running program, as the C library keeps it: the last path
/// component of the first command-line argument. Valid for the life of the process.
const char* GetProgName();

/// Returns the process id.
pid_t GetPid();

/// Returns the kernel's id of the calling thread; equals GetPid() on the main thread. Asks the
/// kernel at every call, so it is right in a forked child.
pid_t GetTid();

/// Return the readable form of a mangled symbol or of a type's name; `mangled` itself if there is
/// none.
/// @{
std::string CppName(const char* mangled);
std::string CppName(const std::type_info& type);
/// @}

/// Returns one text per stack frame of the caller, innermost first, at most `depth` and never more
/// than 128; none for a depth of zero or less.
///
/// A frame reads "object(function) [0xstart]" with the address at which the function starts, cut at
/// 499 characters. Frames without a C++ symbol read as backtrace_symbols(3) gives them. Names of
/// functions in a program are found only when it is linked with -rdynamic. The frame of a call that
/// never returns may show the function that follows in memory, a fact of return addresses.
std::vector<std::string> GetExecutionStack(int depth);

/// Returns the stack text of the calling function, or an empty text if there is no stack.
std::string ThisFncName();

}  // namespace quor

#endif
