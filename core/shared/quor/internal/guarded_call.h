#ifndef QUOR_INTERNAL_GUARDED_CALL_H
#define QUOR_INTERNAL_GUARDED_CALL_H

#include <exception>

namespace quor::internal {

// Runs code of the host and keeps its exceptions inside: `report` is called with the text of a
// std::exception, or with null for anything else. Returns whether nothing was thrown.
//
// pthread_exit() and cancellation pass through. They unwind without a current exception, and end
// the process if a handler keeps them.
template <typename Function, typename Report>
bool CallGuarded(const Function& function, const Report& report) {
    try {
        function();
        return true;
    } catch (const std::exception& error) {
        report(error.what());
    } catch (...) {
        if (std::current_exception() == nullptr) {
            throw;
        }
        report(nullptr);
    }
    return false;
}

}  // namespace quor::internal

#endif
