#include <quor/daemon.h>

#include <quor/internal/cancellation_off.h>
#include <quor/internal/guarded_call.h>
#include <quor/process.h>

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>

namespace quor {

Daemon::Daemon() : m_daemonised(false), m_owner(0) {}

Daemon::~Daemon() {
    // A forked child that exits must not take its parent's file away.
    if (m_owner == GetPid()) {
        const internal::CancellationOff cancellationOff;
        // A host may let std::cerr throw.
        internal::CallGuarded([this] { Stop(); }, [](const char* /*error*/) {});
    }
}

Daemon& Daemon::Instance() {
    static Daemon instance;
    return instance;
}

int Daemon::Start(const std::string& pidFile) {
    if (m_daemonised) {
        std::cerr << "Process already daemonised. Ignoring." << std::endl;
        return 0;
    }
    m_pidFile = pidFile;
    if (!RemoveOldFile()) {
        return -1;
    }
    m_daemonised = true;
    const int result = daemon(1, 1);
    const int error = errno;
    m_owner = GetPid();
    if (result == -1) {
        std::cerr << "Daemonizing error: " << std::strerror(error) << std::endl;
        return -1;
    }
    WriteFile();
    return 0;
}

bool Daemon::RemoveOldFile() const {
    std::string word;
    {
        // Closed before anything is said: without standard streams it may sit on descriptor 2.
        std::ifstream file(m_pidFile);
        if (!file.good()) {
            return true;
        }
        file >> word;
    }
    const bool removed = std::remove(m_pidFile.c_str()) == 0;
    std::cerr << "Found PID file for another instance of " << GetProgName() << "(" << word << "). "
              << (removed ? "Delete file: " : "Can't delete file: ") << m_pidFile << std::endl;
    return removed;
}

void Daemon::WriteFile() const {
    bool written = false;
    {
        // Closed before anything is said: without standard streams it may sit on descriptor 2.
        std::ofstream file(m_pidFile, std::ios::trunc);
        file << std::to_string(GetPid()) << std::endl;
        written = file.good();
    }
    if (!written) {
        std::cerr << "Error writing to PID file " << m_pidFile << std::endl;
    }
}

int Daemon::Stop() {
    if (!m_daemonised) {
        return 0;
    }
    m_daemonised = false;
    if (std::remove(m_pidFile.c_str()) != 0) {
        std::cerr << "PID file can't be deleted." << std::endl;
        return -1;
    }
    return 0;
}

}  // namespace quor
