#ifndef QUOR_TESTS_FUZZ_H
#define QUOR_TESTS_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

#endif
