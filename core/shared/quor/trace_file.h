#ifndef QUOR_TRACE_FILE_H
#define QUOR_TRACE_FILE_H

#include <quor/log_file.h>
#include <quor/time.h>
#include <quor/trace_level.h>

#include <atomic>
#include <mutex>
#include <string>

namespace quor {

bool TraceGateOpen(TraceLevel_e level) noexcept;
void TraceWrite(TraceLevel_e level, const char* function, const char* file, int line,
                const std::string& text);

/// The trace of the process: leveled lines in a file or on standard output.
///
/// It is stopped (no file), running, or paused (file open, gate closed). Call Init() during
/// start-up, then Start() or SetLevel(); lines come from QUOR_TRACE and QUOR_TRACE_FNC
/// (quor/trace.h). With the default flags a line reads
///
///     [01234: 15:53:46.123456789]   76: text
///
/// with the thread id, the local time of day, and the source line. The text is written as it is:
/// what comes from outside the program is escaped by the host.
///
/// All operations but Init() are safe from any thread and may be mixed with tracing. The trace
/// file's mutex is the innermost of the library; no code of the host runs under it. I/O errors are
/// not reported: a file that cannot be opened leaves the trace stopped, a failed write closes the
/// file and later lines are dropped until Stop() and Start() revive it. Operations throw
/// std::bad_alloc, and std::system_error when the mutex cannot be locked.
///
/// The one instance lives as long as the process. When the static objects are destroyed, at the
/// place that its first use gave it, it writes the trailer and stays stopped for good: tracing
/// from later destructors or from threads that still run does nothing.
class TraceFile : public LogFile {
public:
    ~TraceFile() override;

    /// The one instance, made at the first call.
    static TraceFile& GetInstance();

    /// Sets the names for the next Start(). An empty `fileName` or "-" means standard output (which
    /// Stop() closes), "+" the GeneratedTraceFileName(), any other name a file in `directory`, or
    /// in the working directory when that is empty.
    static void Init(const std::string& fileName, const std::string& directory);

    /// Opens the trace at `level`. Does nothing when a file is open, paused or not, or when
    /// `level` is Off. The stack dump stays as it is, even at Detail: see SetLevel().
    void Start(TraceLevel_e level);
    /// Closes the trace; the level stays.
    void Stop();
    /// Lets go of the file, which may have been renamed, and opens it anew at the same level. Lines
    /// that other threads trace meanwhile wait and are not lost. Also revives a trace that a failed
    /// write had closed. Does nothing while the trace is stopped or on standard output; a file that
    /// cannot be opened leaves it stopped.
    void Reopen();
    /// Closes the gate and leaves the file open.
    void Pause();
    /// Opens the gate again, even when there is no file.
    void Continue();

    /// Changes the level: starts a stopped trace, stops it at Off, leaves a paused one paused, and
    /// turns the stack dump on at Detail and off at any other level. Does nothing when `level` is
    /// the level already, which Stop(), or a Start() that failed, had left. Returns true.
    bool SetLevel(const TraceLevel_e& level);
    /// The level last set, whether or not the trace runs. Returns true.
    bool GetLevel(TraceLevel_e& level) const;

    /// Whether lines show the source file name; false at first. A name that ends in a digit cannot
    /// be told from the line number that follows it. Returns true.
    /// @{
    bool SetPrintFile(const bool& value);
    bool GetPrintFile(bool& value) const;
    /// @}
    /// Whether lines show the source line, four wide; true at first. Returns true.
    /// @{
    bool SetPrintLine(const bool& value);
    bool GetPrintLine(bool& value) const;
    /// @}
    /// Whether DumpStack() writes; false at first. Returns true.
    /// @{
    bool SetDumpStack(const bool& value);
    bool GetDumpStack(bool& value) const;
    /// @}

    /// Whether the trace runs; lock-free.
    bool IsActive() const { return m_active.load(std::memory_order_relaxed); }

    /// Writes one line when `level` is at most the trace's and not Off, also while it is paused.
    /// `function` is not printed.
    void Trace(TraceLevel_e level, const char* function, const char* file, int line,
               const std::string& text);
    /// Writes the caller's stack as one entry of up to 64 numbered lines and an empty one, when
    /// the trace runs and the stack dump is on.
    void DumpStack();

    /// The directory ("." when none is set), "/", the program's name, "_", the process id, ".log".
    std::string GeneratedTraceFileName() const;

private:
    friend bool TraceGateOpen(TraceLevel_e level) noexcept;
    friend void TraceWrite(TraceLevel_e level, const char* function, const char* file, int line,
                           const std::string& text);
    friend class TraceMessage;
    friend class Log;
    struct AtExit;
    struct __attribute__((visibility("hidden"))) Access;

    // Built before a mutex is locked under which the trace may be closed. That a trailer was lost
    // is said when the last one goes: the host may have pointed std::cerr at the log or the trace.
    class __attribute__((visibility("hidden"))) ReportsLater {
    public:
        ReportsLater();
        ReportsLater(const ReportsLater&) = delete;
        ReportsLater& operator=(const ReportsLater&) = delete;
        ~ReportsLater();
    };

    TraceFile();
    __attribute__((visibility("hidden"))) static TraceFile& MakeInstance();

    std::string FileHeader() const override;
    std::string AppendBanner() const override;
    std::string FileTrailer() const override;
    std::string LineHeader() const override;
    __attribute__((visibility("hidden"))) void Error(int errorCode) override;

    // Trace() of a C string in the one instance. Keeps errno. All but the stamp is put together
    // before m_mutex is taken.
    __attribute__((visibility("hidden"))) static void TraceLine(TraceLevel_e level,
                                                                const char* file, int line,
                                                                const char* text);

    // All but End() and ReportFailure() are called with m_mutex held.
    __attribute__((visibility("hidden"))) void PutStamp(char* end) const;
    void StartLocked(TraceLevel_e level);
    void StopLocked();
    __attribute__((visibility("hidden"))) void CloseLocked();
    __attribute__((visibility("hidden"))) void ReportFailure() noexcept;
    void End();
    bool IsOnStandardOutput() const;
    bool OpenChosenFile();
    void SetState(TraceLevel_e level, bool active);
    void WriteEntry(const std::string& text);
    std::string GeneratedNameLocked() const;
    std::string OpeningBlock(const char* event) const;

    // What the gate compares with: the level while the trace runs, c_gateClosed otherwise. Mirrors
    // m_level and m_active in one word that every trace site reads in place, so it is there before
    // any code runs and stays until the end.
    static constexpr int c_gateClosed = -1;
    static std::atomic<int> m_gate;

    std::atomic<TraceLevel_e> m_level;
    std::atomic<bool> m_active;
    Time m_lineTime;                // guarded by m_mutex
    mutable Time::Zone m_lineZone;  // of m_lineTime's text; guarded by m_mutex
    std::string m_traceFileName;    // guarded by m_mutex
    std::string m_traceDirectory;   // guarded by m_mutex
    std::atomic<bool> m_printFile;
    std::atomic<bool> m_printLine;
    std::atomic<bool> m_dumpStack;
    mutable std::mutex m_mutex;
    bool m_ended;  // the process is exiting; guarded by m_mutex
};

}  // namespace quor

#endif
