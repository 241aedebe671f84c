#include <quor/ver_info.h>

#include <quor/internal/joined.h>
#include <iostream>
#include <utility>

// Macros of the C library that would take over the accessors' names.
#undef major
#undef minor

namespace quor {

VerInfo::VerInfo() : m_label("build info not set") {}

VerInfo::~VerInfo() = default;

VerInfo& VerInfo::GetInstance() {
    static VerInfo& instance = *new VerInfo;
    return instance;
}

void VerInfo::Init(int major, int minor, int build, int revision, const char* label,
                   const char* compiler, const char* buildTime, const char* buildMachine,
                   const char* buildUser) {
    // Built aside: if memory is short, the record stays as it is.
    VerInfo info;
    info.m_major = major;
    info.m_minor = minor;
    info.m_build = build;
    info.m_revision = revision;
    info.m_label = label;
    info.m_buildCompiler = compiler;
    info.m_buildTime = buildTime;
    info.m_buildMachine = buildMachine;
    info.m_buildUser = buildUser;
    info.m_versionString =
        internal::Joined({major, ".", minor, "-", build, "-r", revision, " ", label});
    GetInstance() = std::move(info);
}

int VerInfo::Major() {
    return GetInstance().m_major;
}

int VerInfo::Minor() {
    return GetInstance().m_minor;
}

int VerInfo::Build() {
    return GetInstance().m_build;
}

int VerInfo::Revision() {
    return GetInstance().m_revision;
}

const std::string& VerInfo::Label() {
    return GetInstance().m_label;
}

const std::string& VerInfo::VersionString() {
    return GetInstance().m_versionString;
}

const std::string& VerInfo::BuildCompiler() {
    return GetInstance().m_buildCompiler;
}

const std::string& VerInfo::BuildTime() {
    return GetInstance().m_buildTime;
}

const std::string& VerInfo::BuildMachine() {
    return GetInstance().m_buildMachine;
}

const std::string& VerInfo::BuildUser() {
    return GetInstance().m_buildUser;
}

void VerInfo::Dump() {
    std::cout << "Revision:      " << VersionString() << std::endl
              << "Compiler:      " << BuildCompiler() << std::endl
              << "Build Time:    " << BuildTime() << std::endl
              << "Build Machine: " << BuildMachine() << std::endl
              << "Build User:    " << BuildUser() << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const VerInfo& /*verInfo*/) {
    return stream << VerInfo::VersionString();
}

}  // namespace quor
