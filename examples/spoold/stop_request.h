#ifndef SPOOLD_STOP_REQUEST_H
#define SPOOLD_STOP_REQUEST_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace spoold {

/// The wish that the program ends: an operator's, or because something failed. Any thread.
class StopRequest {
public:
    StopRequest() = default;
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    void Request() { Fail(""); }
    /// Of several failures the first one counts.
    void Fail(const std::string& failure);

    bool IsRequested() const;
    /// Sleeps until there is a wish.
    void Await() const;
    /// The same, but no longer than `limit`.
    void AwaitFor(std::chrono::milliseconds limit) const;
    /// What went wrong; empty when nothing did.
    std::string Failure() const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_condition;
    bool m_requested = false;  // guarded by m_mutex
    std::string m_failure;     // guarded by m_mutex
};

}  // namespace spoold

#endif
