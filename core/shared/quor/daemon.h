#ifndef QUOR_DAEMON_H
#define QUOR_DAEMON_H

#include <sys/types.h>

#include <string>

namespace quor {

/// Turns the process into a background daemon with a PID file.
///
///     if (Daemon::Instance().Start("/run/spoold.pid") != 0) {
///         return 1;
///     }
///     ...                         // trace, threads, signals
///     Daemon::Instance().Stop();  // or leave that to the end of the process
///
/// The caller must ensure that
///   - Start() comes before any thread exists: only the calling thread goes on in the daemon;
///   - a trace is started after it: one from before carries the id of the process that ended;
///   - only the main thread uses the class, at start-up and shut-down: nothing is locked;
///   - children that the daemon forks leave by _exit() or exec, and do not call Stop().
/// The class guarantees that
///   - the file holds the daemon's process id in decimal and a line feed. Stop() deletes it, and so
///     does the normal end of the process that wrote it, but not that of its children;
///   - the standard streams and the working directory stay as they are.
///
/// Messages go to standard error. Throws nothing of its own, and nothing from the destructor.
class Daemon {
public:
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;
    /// Calls Stop() in the process that daemonised.
    ~Daemon();

    /// Returns the one instance, made at the first call and destroyed at the end of the process.
    static Daemon& Instance();

    /// Deletes the PID file of another instance, whether or not it is still running. Then detaches:
    /// the calling process ends, and a child goes on and writes the file `pidFile`.
    ///
    /// Returns 0, also if the file could not be written, and if called again, which changes
    /// nothing. Returns -1 if the other instance's file cannot be deleted, or if detaching failed;
    /// after the latter the object counts as daemonised.
    int Start(const std::string& pidFile);

    /// Deletes the PID file, in any process that calls it. Returns 0, also if there was no Start();
    /// -1 if the file cannot be deleted.
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
