#include "stop_request.h"

namespace spoold {

void StopRequest::Fail(const std::string& failure) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requested = true;
    if (m_failure.empty()) {
        m_failure = failure;
    }
    m_condition.notify_all();
}

bool StopRequest::IsRequested() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requested;
}

void StopRequest::Await() const {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait(lock, [this] { return m_requested; });
}

void StopRequest::AwaitFor(std::chrono::milliseconds limit) const {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait_for(lock, limit, [this] { return m_requested; });
}

std::string StopRequest::Failure() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_failure;
}

}  // namespace spoold
