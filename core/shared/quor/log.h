#ifndef QUOR_LOG_H
#define QUOR_LOG_H

#include <quor/log_file.h>
#include <quor/time.h>
#include <quor/trace.h>

#include <atomic>
#include <mutex>
#include <string>

namespace quor {

namespace internal {
struct LogInternals;
}

/// Writes the application log of the process: messages of four severities, a line each.
///
///     if (!quor::Log::Init("/var/log/spoold.log")) return 1;
///     quor::Log::GetInstance().Info("spoold is ready");  // [2020-01-31 08:00:00] Info    : ...
///
/// Every message opens the file, appends its line and closes it, so the file may be renamed or
/// removed at any time and comes back with its header. While the trace runs, every message is
/// copied there at level Low. If there is no file, or it cannot be opened, and the trace does not
/// run, the message goes to standard output, without a time and not flushed.
///
/// The caller must ensure that
///   - Init() is called during start-up, before other threads log;
///   - text from outside the program is escaped: it is written as it is;
///   - a child that is forked while other threads run does not log before it calls exec;
///   - the buffer of std::cout does not itself log: a message that goes there would block its own
///     thread.
/// The log guarantees that
///   - messages may be logged from any thread, and lines never mix: one mutex is held during the
///     whole message, and the trace's is taken inside it;
///   - logging is not a cancellation point.
///
/// I/O errors are not reported: a message that meets a full disk is lost, and the next one tries
/// again. Throws std::bad_alloc, std::system_error if the mutex cannot be locked, and what the host
/// makes std::cout throw. The one instance lives as long as the process.
class Log : private LogFile {
public:
    /// True from the first GetInstance() until the static objects are destroyed.
    static std::atomic<bool> m_enabled;

    ~Log() override;

    /// Returns the one instance, made at the first call.
    static Log& GetInstance();

    /// Sets the log file, and creates it with its header if it is missing or empty. Returns false
    /// if it cannot be opened; each message tries again. An empty name means standard output and
    /// returns false. Takes no lock.
    static bool Init(const std::string& fileName);

    /// Log one message of that severity.
    /// @{
    void Info(const std::string& text);
    void Warning(const std::string& text);
    void Error(const std::string& text);
    void Critical(const std::string& text);
    /// @}

private:
    friend struct internal::LogInternals;

    Log();

    std::string FileHeader() const override;
    std::string LineHeader() const override;
    // Declared again, since Error(text) would hide it.
    void Error(int errorCode) override;

    void WriteMessage(const std::string& levelName, const std::string& text);

    const std::string m_levelNames[4];
    Time m_lineTime;  // guarded by m_mutex
    std::mutex m_mutex;
};

/// Traces `text` at level Low and logs it as critical; with the trace running it therefore appears
/// there twice. Only traces while there is no log. Any thread; throws as Log does.
inline void LogCritical(const std::string& text) {
    if (TraceGateOpen(Low)) {
        TraceWrite(Low, __PRETTY_FUNCTION__, "log", __LINE__, text);
    }
    if (Log::m_enabled) {
        Log::GetInstance().Critical(text);
    }
}

}  // namespace quor

#endif
