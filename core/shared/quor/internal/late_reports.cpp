#include <quor/internal/late_reports.h>

#include <quor/internal/cancellation_off.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace quor::internal {

// Allocated by the C library: the list must not need a destructor at the thread's end.
struct LateReport {
    LateReport* next;
    char fileName[1];
};

__thread PendingReports t_pendingReports{};

namespace {

void Say(const char* fileName) {
    std::cerr << "Unable to write to log file: " << fileName << std::endl;
}

void SayGuarded(const char* fileName) noexcept {
    try {
        Say(fileName);
    } catch (...) {
        // The host's stream must not do more harm than the full disk.
    }
}

}  // namespace

// The host's stream may itself log or trace, and so come back here.
void SayPendingReports() noexcept {
    const CancellationOff cancellationOff;
    PendingReports& pending = t_pendingReports;
    while (LateReport* const report = pending.first) {
        pending.first = report->next;
        SayGuarded(report->fileName);
        std::free(report);
    }
    if (pending.nameless) {
        pending.nameless = false;
        SayGuarded("");
    }
}

void LateReports::LostTrailer(const std::string& fileName) {
    if (!IsHeld()) {
        Say(fileName.c_str());
        return;
    }
    auto* const report =
        static_cast<LateReport*>(std::malloc(sizeof(LateReport) + fileName.size()));
    if (report == nullptr) {
        t_pendingReports.nameless = true;
        return;
    }
    report->next = nullptr;
    std::memcpy(report->fileName, fileName.c_str(), fileName.size() + 1);
    LateReport** last = &t_pendingReports.first;
    while (*last != nullptr) {
        last = &(*last)->next;
    }
    *last = report;
}

}  // namespace quor::internal
