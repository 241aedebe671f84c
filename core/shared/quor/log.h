#ifndef QUOR_LOG_H
#define QUOR_LOG_H

#include <quor/log_file.h>
#include <quor/time.h>
#include <quor/trace.h>

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>

namespace quor {

/// The application log of the process: messages of four severities, a line each:
///
///     [2020-01-31 08:00:00] Critical: disk full
///
/// Every message opens the file, appends its line and closes it again, so the file may be renamed
/// or removed at any time and comes back with its header. While the trace runs, every message is
/// copied there at level Low. When there is no file, or it cannot be opened, and the trace does not
/// run, the message goes to standard output, without a time and not flushed.
///
/// Messages may be logged from any thread: one mutex holds over the whole message, and the trace
/// file's is taken inside it. I/O errors are not reported. Throws std::bad_alloc, and
/// std::system_error when the mutex cannot be locked. The one instance lives as long as the
/// process.
class Log : private LogFile {
public:
    /// True from the first GetInstance() until the static objects are destroyed.
    static std::atomic<bool> m_enabled;

    ~Log() override;

    /// The one instance, made at the first call.
    static Log& GetInstance();

    /// Sets the log file, and creates it with its header when it is missing or empty. False when it
    /// cannot be opened; each message tries it again. An empty name means standard output and
    /// gives false. Takes no lock: call it during start-up, before other threads log.
    static bool Init(const std::string& fileName);

    /// Logs one message of that severity.
    /// @{
    void Info(const std::string& text);
    void Warning(const std::string& text);
    void Error(const std::string& text);
    void Critical(const std::string& text);
    /// @}

private:
    struct AtExit;
    struct FileCloser;

    Log();

    std::string FileHeader() const override;
    std::string LineHeader() const override;
    // Declared again, since Error(text) would hide it.
    void Error(int errorCode) override;

    void WriteMessage(const std::string& levelName, const std::string& text);
    bool WriteToFile(std::string_view message);
    __attribute__((visibility("hidden"))) char* PutHeader(char* end) const;

    const std::string m_levelNames[4];
    Time m_lineTime;                // guarded by m_mutex
    mutable Time::Zone m_lineZone;  // of m_lineTime's text; guarded by m_mutex
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
