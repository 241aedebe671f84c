#ifndef QUOR_LOG_FILE_H
#define QUOR_LOG_FILE_H

#include <atomic>
#include <string>

namespace quor {

namespace internal {
struct LogFileInternals;
}

/// Writes a text file of lines, with a block of text at its opening and at its closing. Log and
/// TraceFile are made of it.
///
///     class Notes : public quor::LogFile {
///     public:
///         explicit Notes(const std::string& name) { Open(name, false); }
///         ~Notes() override { Close(); }
///         void Add(const std::string& text) { Write(text.c_str(), 0); }
///     private:
///         std::string FileTrailer() const override { return "* end of notes\n"; }
///     };
///
/// A new or empty file starts with FileHeader(). A file that holds data gets AppendBanner() and
/// keeps its lines. Standard output, whose name is empty, always gets FileHeader(). Each line and
/// each block is one write(2), and an empty block is none. Nothing is retried: a failed call
/// reaches Error(), which closes the file, and later lines are dropped until the owner opens it
/// again.
///
/// Files are created with mode 0666 whatever the process's mask, so keep them in a directory that
/// only the daemon may enter.
///
/// The caller must serialise the operations of one object, except for the four flag accessors,
/// which are atomic. No operation is a cancellation point. Throws std::bad_alloc, and what the host
/// makes std::cerr throw.
class LogFile {
public:
    /// A single line feed, for users of the library.
    static const std::string c_emptyLine;

    LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    /// Closes the file with an empty trailer. A derived class that has a trailer calls Close() in
    /// its own destructor.
    virtual ~LogFile();

    /// Sets or reads whether LineHeader() precedes each line; true by default. Returns true.
    /// @{
    bool SetPrintLineHeader(const bool& value);
    bool GetPrintLineHeader(bool& value) const;
    /// @}
    /// Sets or reads whether LineTrailer() follows the text of each line; true by default. Returns
    /// true.
    /// @{
    bool SetPrintLineTrailer(const bool& value);
    bool GetPrintLineTrailer(bool& value) const;
    /// @}

protected:
    /// The empty string, the name of standard output.
    static const std::string c_emptyStr;

    /// Return the five texts; all are empty here. Blocks are written as they are, line feeds
    /// included.
    /// @{
    virtual std::string FileHeader() const;
    virtual std::string AppendBanner() const;
    virtual std::string FileTrailer() const;
    virtual std::string LineHeader() const;
    virtual std::string LineTrailer() const;
    /// @}

    /// Reacts to a failed call; `errorCode` is its errno. Closes the file here.
    virtual void Error(int errorCode);

    /// Opens `fileName`, or standard output if it is empty, and writes the opening block. The
    /// object must be closed. With `sync`, each line is followed by fsync(2), except on descriptor
    /// 1. Returns false if the file cannot be opened, positioned (a pipe) or written.
    bool Open(const std::string& fileName, bool sync);
    /// Opens standard output.
    bool Open();
    /// Writes the trailer and closes the descriptor; standard output, too, once std::cout and
    /// stdout are flushed. Reports to std::cerr if the trailer cannot be written. Does nothing on a
    /// closed object.
    void Close();

    /// Writes one line: header, `text` up to its NUL, trailer, line feed. `length` is ignored. Does
    /// nothing on a closed object.
    void Write(const char* text, unsigned int length);
    /// Writes `block` unchanged. Returns false if that failed.
    bool WriteHeader(std::string& block);
    /// Calls Error(), unless it is already running.
    void HandleError(int errorCode);

private:
    friend struct internal::LogFileInternals;

    std::string m_fileName;  // empty: standard output
    bool m_sync;
    int m_fd;  // -1 closed, 1 standard output
    bool m_handlingError;
    std::atomic<bool> m_printLineHeader;
    std::atomic<bool> m_printLineTrailer;
};

}  // namespace quor

#endif
