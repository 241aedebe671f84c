#ifndef QUOR_VER_INFO_H
#define QUOR_VER_INFO_H

#include <iosfwd>
#include <string>

namespace quor {

/// The version and build facts of the host program, one record per process.
///
/// The host fills it once at start-up, before other threads read it; the values come from its own
/// build. File headers of the log and the trace print VersionString(). Until Init() the numbers
/// are 0, Label() is "build info not set" and the other texts are empty.
///
/// Creation of the record is thread-safe. Init() is not synchronised with readers, who hold
/// references into the record. The record is never destroyed, so that headers can be written
/// until the very end of the process.
class VerInfo {
public:
    VerInfo(const VerInfo&) = delete;
    VerInfo& operator=(const VerInfo&) = delete;
    virtual ~VerInfo();

    /// The record.
    static VerInfo& GetInstance();

    /// Overwrites the whole record; may be called again. No text may be null.
    static void Init(int major, int minor, int build, int revision, const char* label,
                     const char* compiler, const char* buildTime, const char* buildMachine,
                     const char* buildUser);

    /// As given to Init().
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
    /// "major.minor-build-rrevision label"; with an empty label it ends in the blank.
    static const std::string& VersionString();

    /// Prints the record to standard output, five lines, each flushed. The line "Revision:" shows
    /// the whole version string.
    static void Dump();

private:
    VerInfo();

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
