#ifndef QUOR_VER_INFO_H
#define QUOR_VER_INFO_H

#include <iosfwd>
#include <string>

namespace quor {

/// Holds the version and build facts of the host program, one record per process.
///
///     quor::VerInfo::Init(2, 8, 40, 1234, "rc1", __VERSION__, "2026-01-31", "builder", "ci");
///
/// Log and trace print VersionString() in their file headers. Until Init() the numbers are 0,
/// Label() is "build info not set" and the other texts are empty.
///
/// The caller must ensure that Init() is called before other threads read the record: they hold
/// references into it. The record is created on first use, on any thread, and never destroyed.
class VerInfo {
public:
    VerInfo(const VerInfo&) = delete;
    VerInfo& operator=(const VerInfo&) = delete;
    virtual ~VerInfo();

    /// Returns the record.
    static VerInfo& GetInstance();

    /// Overwrites the whole record; no text may be null. Changes nothing if it throws
    /// std::bad_alloc.
    static void Init(int major, int minor, int build, int revision, const char* label,
                     const char* compiler, const char* buildTime, const char* buildMachine,
                     const char* buildUser);

    /// Return what was given to Init().
    /// @{
    static int Major();
    static int Minor();
    static int Build();
    static int Revision();
    static const std::string& Label();
    static const std::string& BuildCompiler();
    static const std::string& BuildTime();
    static const std::string& BuildMachine();
    static const std::string& BuildUser();
    /// @}
    /// Returns "major.minor-build-rrevision label"; with an empty label it ends in the blank.
    static const std::string& VersionString();

    /// Prints the record to standard output: five lines, each flushed; "Revision:" is the version.
    static void Dump();

private:
    VerInfo();
    VerInfo& operator=(VerInfo&&) = default;

    int m_major = 0;
    int m_minor = 0;
    int m_build = 0;
    int m_revision = 0;
    std::string m_label;
    std::string m_versionString;
    std::string m_buildCompiler;
    std::string m_buildTime;
    std::string m_buildMachine;
    std::string m_buildUser;
};

/// Prints VersionString().
std::ostream& operator<<(std::ostream& stream, const VerInfo& verInfo);

}  // namespace quor

#endif
