#ifndef QUOR_INTERNAL_CANCELLATION_OFF_H
#define QUOR_INTERNAL_CANCELLATION_OFF_H

#include <pthread.h>

namespace quor::internal {

// How many CancellationOff the thread holds, and what was before the first of them.
struct CancellationState {
    unsigned depth;
    int previous;
};
extern __thread CancellationState t_cancellation;

// Keeps the calling thread from being cancelled in its scope. A thread cancelled in the middle of a
// line would lose it, and cancellation that unwinds through a destructor ends the process. One
// within another costs next to nothing.
class CancellationOff {
public:
    CancellationOff() {
        if (t_cancellation.depth++ == 0) {
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &t_cancellation.previous);
        }
    }
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;
    ~CancellationOff() {
        if (--t_cancellation.depth == 0) {
            pthread_setcancelstate(t_cancellation.previous, nullptr);
        }
    }
};

}  // namespace quor::internal

#endif
