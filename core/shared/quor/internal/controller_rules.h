#ifndef QUOR_INTERNAL_CONTROLLER_RULES_H
#define QUOR_INTERNAL_CONTROLLER_RULES_H

#include <quor/thread_controller.h>

namespace quor::internal {

// How a thread controller may come into a state. The texts follow its name. They are arrays, which
// unlike pointers need no relocation.
struct ControllerRule {
    ThreadController::State_e from;
    char refusal[72];                   // thrown in other states
    bool tellsState;                    // the refusal ends in the state found
    ThreadController::State_e settled;  // nothing is to be done in this state; `from` for none
    char settledText[24];               // traced then
};

constexpr ControllerRule c_controllerRules[] = {
    {ThreadController::eTerminating, " could be stopped from eTerminating state. Current state: ",
     true, ThreadController::eTerminating, ""},
    {ThreadController::eStopped, " could not be started since it is not in eStopped state.", false,
     ThreadController::eRunning, " is already running."},
    {ThreadController::eStarting, " could be started only from eStarting state. Current state: ",
     true, ThreadController::eStarting, ""},
    {ThreadController::eRunning, " is not running, thus it could not be terminated.", false,
     ThreadController::eStopped, " is already stopped."}};

// Any value that is no state counts as eStopped.
inline const ControllerRule& RuleFor(ThreadController::State_e wanted) {
    const bool known =
        wanted >= ThreadController::eStopped && wanted <= ThreadController::eTerminating;
    return c_controllerRules[known ? wanted : ThreadController::eStopped];
}

}  // namespace quor::internal

#endif
