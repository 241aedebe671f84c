#ifndef QUOR_TRACE_FILE_H
#define QUOR_TRACE_FILE_H

#include <quor/log_file.h>
#include <quor/time.h>
#include <quor/trace_level.h>

#include <atomic>
#include <mutex>
#include <string>

namespace quor {

namespace internal {
struct TraceFileInternals;
}

/// Writes the trace of the process: leveled lines in a file or on standard output.
///
///     quor::TraceFile::Init("spoold.trace", "/var/log/spoold");
///     quor::TraceFile& trace = quor::TraceFile::GetInstance();
///     trace.Start(quor::Low);
///     if (!trace.IsActive()) quor::Log::GetInstance().Warning("the trace cannot be opened");
///
/// The trace is stopped (no file), running, or paused (file open, gate closed). Lines come from
/// QUOR_TRACE and QUOR_TRACE_FNC (quor/trace.h). With the default flags a line reads
///
///     [01234: 15:53:46.123456789]   76: text
///
/// with the thread id, the local time of day, and the source line.
///
/// The caller must ensure that
///   - text from outside the program is escaped: it is written as it is;
///   - a child that is forked while other threads run neither traces nor logs, since one of them
///     may have held a mutex, and leaves by _exit() or exec. A child that calls exit() may close
///     the trace it inherited with a trailer of its own.
/// The trace guarantees that
///   - all operations may be called from any thread and mixed with tracing; its mutex is the
///     innermost of the library, and no host code runs while it is held;
///   - a line traced after Start() or SetLevel() has returned, on any thread, follows their lines;
///     no line is written after Stop() has returned.
///
/// A file that cannot be opened leaves the trace stopped. A failed write closes the file: later
/// lines are dropped and IsActive() stays true, until Start() or Reopen() opens it. (A critical log
/// message is then lost unless there is a log file.) Only a trailer that cannot be
/// written is reported, on std::cerr. Operations throw std::bad_alloc, and std::system_error if the
/// mutex cannot be locked.
///
/// The one instance is never destroyed. When static objects are destroyed, in the order that its
/// first use determined, it writes the trailer and stays stopped for good; tracing from later
/// destructors or from threads that still run does nothing. It waits for its mutex there for up to
/// 100 ms; if a thread that is gone, or a signal handler's own thread, still holds it, there is no
/// trailer.
class TraceFile : public LogFile {
public:
    ~TraceFile() override;

    /// Returns the one instance, made at the first call.
    static TraceFile& GetInstance();

    /// Sets the names for the next Start(). An empty `fileName` or "-" means standard output (which
    /// Stop() closes, once std::cout and stdout are flushed), "+" the GeneratedTraceFileName(), any
    /// other name a file in `directory`, or in the working directory if that is empty.
    static void Init(const std::string& fileName, const std::string& directory);

    /// Opens the trace at `level`. Does nothing if a file is open, paused or not, or if `level` is
    /// Off. Does not change the stack dump, not even at Detail: see SetLevel().
    void Start(TraceLevel_e level);
    /// Closes the trace; keeps the level.
    void Stop();
    /// Closes the file, which may have been renamed, and opens its name again at the same level.
    /// Other threads' lines wait meanwhile and are not lost. Also revives a running trace that
    /// a failed write has closed. Does nothing while the trace is stopped or on standard output. A
    /// file that cannot be opened leaves it stopped; if memory is short, nothing changes.
    void Reopen();
    /// Closes the gate and leaves the file open.
    void Pause();
    /// Opens the gate again, even without a file.
    void Continue();

    /// Changes the level: starts a stopped trace, stops it at Off, leaves a paused one paused, and
    /// turns the stack dump on at Detail and off at any other level. Does nothing if `level` is
    /// already set; Stop() and a failed Start() keep the level. Returns true.
    bool SetLevel(const TraceLevel_e& level);
    /// Reads the level last set, whether or not the trace runs. Returns true.
    bool GetLevel(TraceLevel_e& level) const;

    /// Sets or reads whether lines show the source file's name; false by default. A reader cannot
    /// tell a name that ends in a digit from the line number behind it. Returns true.
    /// @{
    bool SetPrintFile(const bool& value);
    bool GetPrintFile(bool& value) const;
    /// @}
    /// Sets or reads whether lines show the source line, four wide; true by default. Returns true.
    /// @{
    bool SetPrintLine(const bool& value);
    bool GetPrintLine(bool& value) const;
    /// @}
    /// Sets or reads whether DumpStack() writes; false by default. Returns true.
    /// @{
    bool SetDumpStack(const bool& value);
    bool GetDumpStack(bool& value) const;
    /// @}

    /// Returns whether the trace runs, without a lock.
    bool IsActive() const { return m_active.load(std::memory_order_relaxed); }

    /// Writes one line if `level` is at most the trace's and not Off, also while it is paused.
    /// `function` is not printed. Keeps errno.
    void Trace(TraceLevel_e level, const char* function, const char* file, int line,
               const std::string& text);
    /// Writes the caller's stack as one entry of up to 64 numbered lines and an empty one, if the
    /// trace runs and the stack dump is on.
    void DumpStack();

    /// Returns the directory ("." if none is set), "/", the program's name, "_", the process id and
    /// ".log".
    std::string GeneratedTraceFileName();

private:
    friend struct internal::TraceFileInternals;

    TraceFile();

    std::string FileHeader() const override;
    std::string AppendBanner() const override;
    std::string FileTrailer() const override;
    std::string LineHeader() const override;

    std::atomic<TraceLevel_e> m_level;
    std::atomic<bool> m_active;
    Time m_lineTime;               // guarded by m_mutex
    std::string m_traceFileName;   // guarded by m_mutex
    std::string m_traceDirectory;  // guarded by m_mutex
    std::atomic<bool> m_printFile;
    std::atomic<bool> m_printLine;
    std::atomic<bool> m_dumpStack;
    std::mutex m_mutex;
};

}  // namespace quor

#endif
