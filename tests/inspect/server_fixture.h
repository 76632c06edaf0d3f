// What the tests of CViewDataMgr on a running server have in common: a database of the program's own, made
// once, and a machine in memory for the log.
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

/// The manager, with its errors in the open.
class TestedManager : public CViewDataMgr {
  public:
    /// "native number text" of each, the text without the components that it passed.
    Lines Reported() const;
    /// The number of each.
    std::vector<std::int32_t> Numbers() const;
};

class ServerTest : public ::testing::Test {
  protected:
    static constexpr char kDatabase[] = "Inspect";

    ServerTest();

    /// Runs statements in the database, beside the manager.
    static void Do(const std::string& statement, const std::string& database = kDatabase);

    /// A table of the database whole; adds a failure to the test if it cannot be had.
    TextTable Data(const std::string& table);
    /// Runs a procedure with the values, in the order of its parameters behind the return value.
    bool Call(const std::string& procedure, const std::vector<ado::Variant>& values = {});
    /// The rows of the last call from row 0 on: cells between bars.
    Lines Rows() const { return Rows(data_); }
    static Lines Rows(const TextTable& table);
    /// How many failures the log has.
    std::size_t LoggedFailures() const;
    /// The boxes that ShowDbError of the manager brings up.
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
