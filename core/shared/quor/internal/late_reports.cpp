#include <quor/internal/late_reports.h>

#include <quor/internal/cancellation_off.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace quor::internal {
namespace {

// Allocated by the C library: the list must not need a destructor at the thread's end.
struct Report {
    Report* next;
    char fileName[1];
};

struct Pending {
    unsigned guards;
    bool nameless;  // a report that memory was too short for
    Report* first;
};
__attribute__((tls_model("initial-exec"))) thread_local Pending t_pending{};

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

// The host's stream may itself log or trace, and so come back here.
__attribute__((noinline)) void SayPending() noexcept {
    const CancellationOff cancellationOff;
    while (Report* const report = t_pending.first) {
        t_pending.first = report->next;
        SayGuarded(report->fileName);
        std::free(report);
    }
    if (t_pending.nameless) {
        t_pending.nameless = false;
        SayGuarded("");
    }
}

}  // namespace

LateReports::LateReports() {
    ++t_pending.guards;
}

LateReports::~LateReports() {
    if (--t_pending.guards == 0 && (t_pending.first != nullptr || t_pending.nameless)) {
        SayPending();
    }
}

bool LateReports::IsHeld() {
    return t_pending.guards != 0;
}

void LateReports::LostTrailer(const std::string& fileName) {
    if (!IsHeld()) {
        const CancellationOff cancellationOff;
        Say(fileName.c_str());
        return;
    }
    auto* const report = static_cast<Report*>(std::malloc(sizeof(Report) + fileName.size()));
    if (report == nullptr) {
        t_pending.nameless = true;
        return;
    }
    report->next = nullptr;
    std::memcpy(report->fileName, fileName.c_str(), fileName.size() + 1);
    Report** last = &t_pending.first;
    while (*last != nullptr) {
        last = &(*last)->next;
    }
    *last = report;
}

}  // namespace quor::internal
