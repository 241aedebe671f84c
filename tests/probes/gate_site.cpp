// Compiled, never linked: scripts/check-gate reads the machine code of these functions.
#include <quor/trace.h>

void Site(int files) {
    QUOR_TRACE(quor::Low, "files waiting: " << files);
}

int SiteWithWorkAfterIt(int files) {
    QUOR_TRACE(quor::Detail, "files waiting: " << files);
    return files * 3 + 1;
}

int FunctionTracer(int files) {
    QUOR_TRACE_FNC();
    return files * 3 + 1;
}
