#ifndef QUOR_LOG_FILE_H
#define QUOR_LOG_FILE_H

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace quor {

/// The life of a text file of lines: how it is opened, which block opens it, how a line is framed
/// and which block closes it. Log and TraceFile supply the texts.
///
/// A new or empty file starts with FileHeader(); a file that holds data gets AppendBanner() and
/// keeps its old lines; standard output (an empty name) always gets FileHeader(). Each line, and
/// each block, is one write(2). There is no retry: a failed call reaches Error(), which closes the
/// file, and later lines are dropped until the owner opens it again. Files are created with mode
/// 0666 whatever the process's mask, so they belong in a directory that only the daemon enters.
///
/// Nothing is locked: the derived classes serialise the operations of one object. The four flag
/// accessors are atomic. Only std::bad_alloc is thrown. No operation is a cancellation point.
class LogFile {
public:
    /// A single line feed, for users of the library.
    static const std::string c_emptyLine;

    LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    /// Closes the file. The trailer written from here is empty: a derived class that has one calls
    /// Close() in its own destructor.
    virtual ~LogFile();

    /// Whether LineHeader() stands in front of each line; true at first. Returns true.
    /// @{
    bool SetPrintLineHeader(const bool& value);
    bool GetPrintLineHeader(bool& value) const;
    /// @}
    /// Whether LineTrailer() stands behind the text of each line; true at first. Returns true.
    /// @{
    bool SetPrintLineTrailer(const bool& value);
    bool GetPrintLineTrailer(bool& value) const;
    /// @}

protected:
    /// Nothing, the name of standard output.
    static const std::string c_emptyStr;

    /// Room for one line.
    class LineRoom;
    /// Copies `text` to `end` and gives the new end.
    static char* Put(char* end, std::string_view text) {
        std::memcpy(end, text.data(), text.size());
        return end + text.size();
    }

    /// The five texts; all empty here. Blocks are written as they are, line feeds included.
    /// @{
    virtual std::string FileHeader() const;
    virtual std::string AppendBanner() const;
    virtual std::string FileTrailer() const;
    virtual std::string LineHeader() const;
    virtual std::string LineTrailer() const;
    /// @}

    /// Called with the errno of a failed call; closes the file.
    virtual void Error(int errorCode);

    /// Opens `fileName`, or standard output when it is empty, and writes the opening block. Only
    /// for a closed object. With `sync`, each line is followed by fsync(2), except on descriptor 1.
    /// Returns false when the file cannot be opened, positioned (a pipe) or written.
    bool Open(const std::string& fileName, bool sync);
    /// Opens standard output.
    bool Open();
    /// Writes the trailer and closes the descriptor, standard output's too. When the trailer cannot
    /// be written, says so on std::cerr. Does nothing on a closed object.
    void Close();
    /// Close() without the word on std::cerr; false when there is one to say. Only for the library.
    __attribute__((visibility("hidden"))) bool CloseSilently();
    /// Says on std::cerr that the trailer of `fileName` could not be written. Only for the library.
    __attribute__((visibility("hidden"))) static void ReportLostTrailer(
        const std::string& fileName);

    /// Writes one line: header, `text` up to its NUL, trailer, line feed. `length` is not looked
    /// at. Does nothing on a closed object.
    void Write(const char* text, unsigned int length);
    /// Writes a complete line, its line feed included, as Write() does. Only for the library.
    __attribute__((visibility("hidden"))) void WriteFinished(std::string_view line);
    /// Writes `block` unchanged; false when that failed.
    bool WriteHeader(std::string& block);
    /// Calls Error(), unless it is running already.
    void HandleError(int errorCode);

    /// What GetPrintLineHeader() fills in.
    bool PrintsLineHeader() const { return m_printLineHeader; }
    /// Whether there is a descriptor.
    bool IsOpen() const { return m_fd != -1; }
    /// The name last given to Open().
    const std::string& FileName() const { return m_fileName; }
    /// Changes the name that FileName() gives, for the next Open().
    void SetFileName(const std::string& fileName) { m_fileName = fileName; }

private:
    bool OpenDescriptor();
    bool WriteOpeningBlock(bool append);

    std::string m_fileName;  // empty means standard output
    bool m_sync;
    int m_fd;  // -1 closed, 1 standard output
    bool m_handlingError;
    std::atomic<bool> m_printLineHeader;
    std::atomic<bool> m_printLineTrailer;
};

/// The room in which the library puts a line together: on the stack unless it is long. Who fills it
/// keeps the end himself, so that it stays in a register.
class LogFile::LineRoom {
public:
    /// Room for `size` characters.
    explicit LineRoom(std::size_t size)
        : m_heap(size > sizeof(m_stack) ? new char[size] : nullptr) {}
    LineRoom(const LineRoom&) = delete;
    LineRoom& operator=(const LineRoom&) = delete;
    ~LineRoom() = default;

    /// Where to write, `size` characters at most.
    char* Begin() { return m_heap != nullptr ? m_heap.get() : m_stack; }
    /// What was written, up to `end`.
    std::string_view TextTo(const char* end) {
        return {Begin(), static_cast<std::size_t>(end - Begin())};
    }

private:
    char m_stack[640];
    std::unique_ptr<char[]> m_heap;
};

}  // namespace quor

#endif
