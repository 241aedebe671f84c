#ifndef QUOR_PROCESS_H
#define QUOR_PROCESS_H

#include <sys/types.h>

#include <string>
#include <typeinfo>
#include <vector>

/// @file
/// Who and where the running code is. All functions are safe from any thread at any time and keep
/// no state; they throw nothing but std::bad_alloc.

namespace quor {

/// The short name of the running program, as the C library keeps it: the last path component of
/// the first command-line argument. Valid for the life of the process.
const char* GetProgName();

/// The process id.
pid_t GetPid();

/// The kernel's id of the calling thread, asked of the kernel at every call, so it is right in a
/// forked child; equals GetPid() on the main thread.
pid_t GetTid();

/// The readable form of a mangled symbol or encoded type name; `mangled` itself when there is none.
std::string CppName(const char* mangled);
/// The readable name of a type.
std::string CppName(const std::type_info& type);

/// One text per stack frame of the caller, innermost first, at most `depth` and never more than
/// 128; none for a depth of zero or less.
///
/// A frame reads "object(function) [0xstart]" with the address at which the function starts, cut at
/// 499 characters. Frames without a C++ symbol read as backtrace_symbols(3) gives them. Names of
/// functions in a program are found only when it is linked with -rdynamic. The frame of a call that
/// never returns may show the function that follows in memory, a fact of return addresses.
std::vector<std::string> GetExecutionStack(int depth);

/// The text that a frame with this return address has in GetExecutionStack(), or an empty one when
/// memory is short. Only for the library: not exported.
__attribute__((visibility("hidden"))) std::string FrameText(void* address);

/// The stack text of the calling function, or an empty text when there is no stack.
std::string ThisFncName();

}  // namespace quor

#endif
