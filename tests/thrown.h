#ifndef QUOR_TESTS_THROWN_H
#define QUOR_TESTS_THROWN_H

#include <gtest/gtest.h>
#include <quor/exception.h>

#include <string>

#include "support.h"

namespace quor_test {

constexpr const char* c_nothing = "nothing was thrown";

/// The text of the quor::Exception that `action` throws, which must also have reported itself.
template <typename Action>
std::string Thrown(const Action& action) {
    TraceTap trace;
    try {
        action();
    } catch (const quor::Exception& exception) {
        const std::string report = "** Thrown quor::Exception: " + std::string(exception.what());
        EXPECT_NE(trace.News().find(report + '\n'), std::string::npos) << report;
        return exception.what();
    }
    return c_nothing;
}

}  // namespace quor_test

#endif
