// Must not compile, and the compiler must say why.
#include <quor/any_reference.h>

void Probe() {
    long variable = 0;
    const quor::AnyReference reference(variable);
}
