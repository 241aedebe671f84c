#ifndef QUOR_DAEMON_H
#define QUOR_DAEMON_H

#include <sys/types.h>

#include <string>

namespace quor {

/// Turns the process into a background daemon with a PID file.
///
/// The file holds the daemon's process id in decimal and a line feed. It is deleted by Stop(), or
/// when the process that wrote it exits normally. Messages go to standard error, which daemonising
/// leaves open, like the other standard streams and the working directory.
///
/// Nothing is locked: for the main thread, at start-up and shut-down. Throws nothing of its own.
/// Children that the daemon forks leave by _exit() or exec. A trace that was started before Start()
/// carries the id of the process that ended there.
class Daemon {
public:
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;
    /// Stops, in the process that daemonised.
    ~Daemon();

    /// The one instance, made at the first call and destroyed at the end of the process.
    static Daemon& Instance();

    /// Deletes the PID file of another instance, whether or not that still runs; then detaches, so
    /// that the calling process ends and a child goes on, and writes the file `pidFile`. Call it
    /// before any thread exists: only the calling one goes on. Returns 0; also when the file could
    /// not be written, and, the path unchanged, when called again. Returns -1 when the other
    /// instance's file cannot be deleted, or when detaching failed, after which the object counts
    /// as daemonised.
    int Start(const std::string& pidFile);

    /// Deletes the PID file. Returns 0, also when there was no Start(), or -1 when it cannot be
    /// deleted.
    int Stop();

private:
    Daemon();

    bool RemoveOldFile() const;
    void WriteFile() const;

    std::string m_pidFile;
    bool m_daemonised;
    pid_t m_owner;  // the process that daemonised
};

}  // namespace quor

#endif
