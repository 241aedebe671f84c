#define QUOR_TRACE_MAX_LEVEL ::quor::Medium
#include <quor/trace.h>

namespace quor_test {

void Stripped(int& evaluated) {
    QUOR_TRACE(quor::High, "stripped " << ++evaluated);
#line 12345 "some/dir.d/strange.name.cpp"
    QUOR_TRACE(quor::Medium, "kept " << ++evaluated);
}

}  // namespace quor_test
