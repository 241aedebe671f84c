#ifndef QUOR_INTERNAL_CANCELLATION_OFF_H
#define QUOR_INTERNAL_CANCELLATION_OFF_H

#include <pthread.h>

namespace quor::internal {

// Keeps the calling thread from being cancelled in its scope. A thread cancelled in the middle of a
// line would lose it, and cancellation that unwinds through a destructor ends the process.
class CancellationOff {
public:
    CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_previous); }
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;
    ~CancellationOff() { pthread_setcancelstate(m_previous, nullptr); }

private:
    int m_previous = PTHREAD_CANCEL_ENABLE;
};

}  // namespace quor::internal

#endif
