#ifndef SPOOLD_SPOOL_H
#define SPOOLD_SPOOL_H

#include <mutex>
#include <string>
#include <vector>

#include "file.h"

namespace spoold {

/// The spool folder with its rooms work/, done/ and failed/, held by one process at a time.
///
/// A file only ever moves by rename(2), so it is in exactly one place whenever the program dies:
/// waiting, in work/, or at its end in done/ or failed/. What a dead program left in work/ is
/// Taken() and goes through the same steps again. The name under which a file is taken is free in
/// all rooms and stays its name to the end.
///
/// Any thread. All operations throw quor::Exception when the system refuses.
class Spool {
public:
    /// Makes the rooms where they are missing and locks the spool, or throws when another process
    /// holds it. The lock ends with the process, however that ends.
    explicit Spool(const std::string& folder);
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// Moves a waiting file to work/. Returns its name from now on, empty when the file is gone.
    std::string Take(const std::string& name);
    /// Moves a taken file, whose report is there, to done/.
    void Finish(const std::string& name) const;
    /// Moves a taken file to failed/.
    void Fail(const std::string& name) const;

    /// The names of dropped files.
    std::vector<std::string> Waiting() const;
    /// The names in work/.
    std::vector<std::string> Taken() const;
    /// Whether a taken file has its report already: the program died just before it moved the file.
    bool HasReport(const std::string& name) const;

    std::string WorkPath(const std::string& name) const;
    std::string ReportPath(const std::string& name) const;
    /// Where a report grows until it is whole. Beside the taken file, so that a report left
    /// half-written is overwritten.
    std::string GrowingReportPath(const std::string& name) const;

private:
    std::string FreeName(const std::string& name) const;
    bool IsFree(const std::string& name) const;

    const std::string m_folder;
    const std::string m_work;
    const std::string m_done;
    const std::string m_failed;
    const File m_lock;
    std::mutex m_taking;  // a free name stays free until it is used
};

}  // namespace spoold

#endif
