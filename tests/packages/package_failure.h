// The failure of a call of the package objects, for tests that expect one.
#pragma once

#include <utility>

#include <gtest/gtest.h>

#include "packages/packages.h"

namespace package_tests {

/// Runs the call and returns its failure. A call that succeeds fails the test.
template <class Call>
packages::PackageError FailureOf(Call&& call) {
    try {
        std::forward<Call>(call)();
    } catch (const packages::PackageError& error) {
        return error;
    }
    ADD_FAILURE() << "the call did not fail";
    return {0, "", ""};
}

} // namespace package_tests
