#include "base/failure.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "fakes/fake_files.h"
#include "packages/packages.h"

namespace kv {
namespace {

class FailureTest : public ::testing::Test {
  protected:
    fakes::FakeFiles files_;
};

template <class Throw>
Failure Caught(Throw&& body) {
    Failure seen(0, "", "");
    WithFailureHandler(std::forward<Throw>(body), [&](const Failure& failure) { seen = failure; });
    return seen;
}

TEST_F(FailureTest, ARaisedFailureIsTheCurrentErrorInItsHandler) {
    WithFailureHandler([] { RaiseFailure(kProgramFailure, "modMain", "text"); },
                       [](const Failure& failure) {
                           EXPECT_EQ(failure.Number(), -2147221503);
                           EXPECT_EQ(CurrentError().number, kProgramFailure);
                           EXPECT_EQ(CurrentError().source, "modMain");
                           EXPECT_EQ(CurrentError().description, "text");
                       });
    EXPECT_EQ(CurrentError().number, 0);
}

TEST_F(FailureTest, ArmingAHandlerClearsTheCurrentErrorAndSoDoesLeavingIt) {
    WithFailureHandler([] { RaiseRunTimeFailure(run_time::kOverflow); },
                       [](const Failure&) {
                           EXPECT_EQ(CurrentError().number, run_time::kOverflow);
                           WithFailureHandler([] { EXPECT_EQ(CurrentError().number, 0); },
                                              [](const Failure&) {});
                           EXPECT_EQ(CurrentError().number, 0);
                       });
}

TEST_F(FailureTest, AFailureInAHandlerGoesToTheCallersHandler) {
    const Failure seen = Caught([] {
        WithFailureHandler([] { RaiseRunTimeFailure(run_time::kOverflow); },
                           [](const Failure&) { RaiseRunTimeFailure(run_time::kPathNotFound); });
        FAIL() << "the routine went on after its handler failed";
    });
    EXPECT_EQ(seen.Number(), run_time::kPathNotFound);
    EXPECT_EQ(seen.Description(), "Path not found");
}

TEST_F(FailureTest, AnErrorOfTheSystemBecomesAFailureOfTheRunTime) {
    using platform::FileError;
    using platform::FileFault;
    struct Case {
        FileFault fault;
        std::int32_t number;
    };
    for (const Case& c :
         {Case{FileFault::NotFound, 53}, Case{FileFault::PathNotFound, 76}, Case{FileFault::AccessDenied, 75},
          Case{FileFault::InUse, 70}, Case{FileFault::AlreadyExists, 58}, Case{FileFault::DiskFull, 61},
          Case{FileFault::Other, 57}}) {
        const Failure seen = Caught([&] { throw FileError(c.fault, "path", 1); });
        EXPECT_EQ(seen.Number(), c.number);
        EXPECT_EQ(seen.Source(), "KVLSQLDbMgr");
        EXPECT_EQ(seen.Description(), run_time::Description(c.number));
    }
    EXPECT_EQ(Caught([] { throw std::bad_alloc(); }).Number(), run_time::kOutOfMemory);
    const Failure package = Caught([] { throw packages::PackageError(-2147217843, "ODBC", "Login failed"); });
    EXPECT_EQ(package.Number(), -2147217843);
    EXPECT_EQ(package.Source(), "ODBC");
    EXPECT_EQ(package.Description(), "Login failed");
    const Failure other = Caught([] { throw std::runtime_error("odd"); });
    EXPECT_EQ(other.Number(), run_time::kInternalError);
    EXPECT_EQ(other.Description(), "odd");
}

TEST_F(FailureTest, AnUnknownNumberHasTheGeneralText) {
    EXPECT_STREQ(run_time::Description(12345), "Application-defined or object-defined error");
}

} // namespace
} // namespace kv
