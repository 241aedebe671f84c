#ifndef QUOR_INTERNAL_LOG_FILE_INTERNALS_H
#define QUOR_INTERNAL_LOG_FILE_INTERNALS_H

#include <quor/log_file.h>

#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

namespace quor::internal {

// What log and trace need of a LogFile beyond its contract. The caller has locked the object, and
// holds a CancellationOff around whatever calls the system.
struct LogFileInternals {
    static constexpr int c_closed = -1;
    static constexpr int c_standardOutput = 1;

    static bool IsOpen(const LogFile& file) { return file.m_fd != c_closed; }
    // Not so for a named file that was given descriptor 1.
    static bool IsOnStandardOutput(const LogFile& file) {
        return IsOpen(file) && file.m_fileName.empty();
    }
    static bool PrintsLineHeader(const LogFile& file) { return file.m_printLineHeader; }
    // The name last given to Open().
    static const std::string& FileName(const LogFile& file) { return file.m_fileName; }
    // Sets the name for the next Open().
    static void SetFileName(LogFile& file, const std::string& name) { file.m_fileName = name; }

    enum class Found { eNothing, eEmpty, eData };
    // Opens the file of that name and goes to its end; without a name, standard output. A failure
    // has reached Error() when this returns eNothing.
    static Found OpenDescriptor(LogFile& file);
    // As Close(), with a trailer that was built before.
    static void CloseWith(LogFile& file, const std::string& trailer);
    // Writes a complete line, its line feed included.
    static void WriteFinished(LogFile& file, std::string_view line) {
        if (write(file.m_fd, line.data(), line.size()) < 0) {
            file.HandleError(errno);
        }
        if (file.m_sync && file.m_fd != c_standardOutput) {
            fsync(file.m_fd);
        }
    }
};

}  // namespace quor::internal

#endif
