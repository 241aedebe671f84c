#include <quor/assert.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

void Drain(int files) {
    QUOR_ASSERT(files >= 0);
}

int main() {
    quor::TraceFile::Init("assertion.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    Drain(-1);
}
