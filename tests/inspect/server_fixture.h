// The fixture of CViewDataMgr's tests on a running server: a database that the test program creates once, and
// a registry and files in memory for the log.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_screen.h"
#include "inspect/view_data_mgr.h"

#include <gtest/gtest.h>

namespace kv {

using Lines = std::vector<std::string>;

/// The manager, with access to its collected errors.
class TestedManager : public CViewDataMgr {
  public:
    /// "native number text" of each error, the text without the names of the components in front.
    Lines Reported() const;
    /// The number of each error.
    std::vector<std::int32_t> Numbers() const;
};

class ServerTest : public ::testing::Test {
  protected:
    static constexpr char kDatabase[] = "Inspect";

    ServerTest();

    /// Runs a statement in the database on another connection than the manager's.
    static void Do(const std::string& statement, const std::string& database = kDatabase);

    /// Reads a whole table; the test fails if it cannot be read.
    TextTable Data(const std::string& table);
    /// Runs a procedure with the values, in the order of its parameters after the return value.
    bool Call(const std::string& procedure, const std::vector<ado::Variant>& values = {});
    /// The rows of the last call from row 0 on, the cells joined by "|".
    Lines Rows() const { return Rows(data_); }
    static Lines Rows(const TextTable& table);
    /// The number of failures in the log.
    std::size_t LoggedFailures() const;
    /// The text of the boxes that the manager's ShowDbError shows.
    std::string ShownErrors();

    Lines identifiers_;
    TextTable data_;
    ParameterArray parameters_;
    TestedManager manager_;

  private:
    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
    fakes::FakeScreen screen_;
};

} // namespace kv
