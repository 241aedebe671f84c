#include "spool.h"

#include <fcntl.h>
#include <quor/exception.h>
#include <quor/trace.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "text.h"

namespace spoold {
namespace {

constexpr const char* c_reportSuffix = ".report";
constexpr std::size_t c_maxName = 200;  // bytes; leaves room for number and suffix
constexpr mode_t c_roomMode = 0750;
constexpr mode_t c_lockMode = 0640;

bool IsReportName(const std::string& name) {
    const std::string suffix = c_reportSuffix;
    return name.size() >= suffix.size() &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

// Not in the unnamed namespace: the trace could not name them as the place of a throw.
std::string MakeRoom(const std::string& path) {
    if (mkdir(path.c_str(), c_roomMode) != 0 && errno != EEXIST) {
        throw quor::Exception(SystemError("Cannot make " + Quoted(path)), true);
    }
    return path + "/";
}

void Move(const std::string& from, const std::string& to) {
    if (rename(from.c_str(), to.c_str()) != 0) {
        throw quor::Exception(SystemError("Cannot move " + Quoted(from)), true);
    }
}

// Finds a link to nowhere, too.
bool Exists(const std::string& path) {
    struct stat status {};
    const bool found = lstat(path.c_str(), &status) == 0;
    if (!found && errno != ENOENT) {
        throw quor::Exception(SystemError("Cannot look at " + Quoted(path)), true);
    }
    return found;
}

// Sorted, without the names that begin with a dot.
std::vector<std::string> ListNames(const std::string& folder) {
    using Iterator = std::filesystem::directory_iterator;
    std::vector<std::string> names;
    std::error_code error;
    for (Iterator entry(folder, error); !error && entry != Iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.front() != '.') {
            names.push_back(name);
        }
    }
    if (error) {
        errno = error.value();
        throw quor::Exception(SystemError("Cannot list " + Quoted(folder)), true);
    }
    std::sort(names.begin(), names.end());
    return names;
}

Spool::Spool(const std::string& folder)
    : m_folder(folder + "/"),
      m_work(MakeRoom(m_folder + "work")),
      m_done(MakeRoom(m_folder + "done")),
      m_failed(MakeRoom(m_folder + "failed")),
      // Never removed: a lock on a file that is gone would keep nobody out.
      m_lock(open((m_work + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, c_lockMode)) {
    if (!m_lock.IsOpen() || flock(m_lock.Fd(), LOCK_EX | LOCK_NB) != 0) {
        const bool held = m_lock.IsOpen() && errno == EWOULDBLOCK;
        throw quor::Exception(held ? "Another spoold holds " + Quoted(folder)
                                   : SystemError("Cannot lock " + Quoted(folder)),
                              true);
    }
}

std::string Spool::Take(const std::string& name) {
    QUOR_TRACE_FNC();
    const std::lock_guard<std::mutex> lock(m_taking);
    std::string freeName = FreeName(name);
    if (rename((m_folder + name).c_str(), WorkPath(freeName).c_str()) == 0) {
        QUOR_TRACE(quor::Low, "Taken: " << Quoted(name) << " as " << Quoted(freeName));
        return freeName;
    }
    if (errno != ENOENT || Exists(m_folder + name)) {
        throw quor::Exception(SystemError("Cannot take " + Quoted(name)), true);
    }
    return {};
}

void Spool::Finish(const std::string& name) const {
    Move(WorkPath(name), m_done + name);
    QUOR_TRACE(quor::Low, "Done: " << Quoted(name));
}

void Spool::Fail(const std::string& name) const {
    Move(WorkPath(name), m_failed + name);
    QUOR_TRACE(quor::Low, "Failed: " << Quoted(name));
}

std::vector<std::string> Spool::Waiting() const {
    std::vector<std::string> names = ListNames(m_folder);
    const auto isRoom = [](const std::string& name) {
        return name == "work" || name == "done" || name == "failed";
    };
    names.erase(std::remove_if(names.begin(), names.end(), isRoom), names.end());
    return names;
}

std::vector<std::string> Spool::Taken() const {
    return ListNames(m_work);
}

bool Spool::HasReport(const std::string& name) const {
    return Exists(ReportPath(name));
}

std::string Spool::WorkPath(const std::string& name) const {
    return m_work + name;
}

std::string Spool::ReportPath(const std::string& name) const {
    return m_done + name + c_reportSuffix;
}

std::string Spool::GrowingReportPath(const std::string& name) const {
    return m_work + "." + name + c_reportSuffix;
}

// A file never gets the name of a report: those end in the suffix, and a number ends in none.
std::string Spool::FreeName(const std::string& name) const {
    const std::string stem = name.substr(0, c_maxName);
    std::string freeName = stem;
    for (int number = 2; IsReportName(freeName) || !IsFree(freeName); ++number) {
        freeName = stem + "." + std::to_string(number);
    }
    return freeName;
}

// In the order in which a file moves, so that one that moves meanwhile is seen.
bool Spool::IsFree(const std::string& name) const {
    return !Exists(WorkPath(name)) && !Exists(m_done + name) && !Exists(m_failed + name) &&
           !HasReport(name);
}

}  // namespace spoold
