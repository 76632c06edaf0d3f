// Runs an operation with a fault at each of its steps. Each run has its own process, with a development
// server, a proxy that causes the fault, a registry and a log.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ado/connection.h"
#include "fakes/dev_server.h"
#include "support/children.h"
#include "support/fault_proxy.h"

namespace kv {

using Lines = std::vector<std::string>;

class FaultFixture {
  public:
    /// Starts an empty server.
    FaultFixture();
    /// Starts a copy of the server that SaveAs has saved, and attaches every database with files in the old
    /// folder.
    explicit FaultFixture(const std::filesystem::path& model);

    /// Sets the manager up for the server, through the proxy, with the data folder.
    template <class Manager>
    void Fill(Manager& manager) const {
        manager.UseServerA(true);
        manager.ServerA(ServerName());
        manager.UserA("sa");
        manager.PasswordA("Test-1");
        manager.ServerB("other");
        manager.UserB("sb");
        manager.PasswordB("pwB");
        manager.SQLDataPathA(DataFolder().string());
    }

    /// The proxy's name in a connection string.
    std::string ServerName() const { return "127.0.0.1," + std::to_string(proxy_.Port()); }
    const std::filesystem::path& Folder() const { return server_.Folder(); }
    std::filesystem::path DataFolder() const { return server_.Folder() / "data"; }
    std::filesystem::path OldFolder() const { return server_.Folder() / "old"; }
    support::FaultProxy& Proxy() { return proxy_; }
    /// Starts the server again after it was killed.
    void RestartServer();

    /// Creates a database with two files below the old folder, called NAME_dat.mdf and NAME_lg.ldf, and runs
    /// the batches in it.
    void CreateDatabase(const std::string& name, const Lines& batches);
    /// Detaches all databases, stops the server and copies everything into the folder.
    void SaveAs(const std::filesystem::path& model);
    /// The rows of the statement's first result, with blanks between the columns. Does not use the proxy.
    Lines Ask(const std::string& database, const std::string& statement) const;
    /// The first row, or "" if there is none.
    std::string AskOne(const std::string& database, const std::string& statement) const;
    bool HasDatabase(const std::string& name) const;

    /// The lines of the program's log; none if there is no log.
    Lines LogLines() const;

  private:
    void SetUp();
    /// The names of the databases whose data files are in the old folder.
    Lines DatabasesInOldFolder() const;
    ado::Connection Connect(const std::string& database) const;

    fakes::DevServer server_;
    support::FaultProxy proxy_;
    mutable std::optional<ado::Connection>
        master_; ///< a connection that Ask keeps: opening one each time would take most of a test's time
};

/// A step of an operation as the server sees it.
struct Step {
    /// "login" or a statement, with "{data}" for the data folder and "{server}" for the server's name.
    std::string event;
    /// The state after the step.
    std::string state;
    /// The state before the step, if it differs from that after the previous step: the program itself has
    /// changed files in between.
    std::string state_before{};
};

/// An operation, its steps and its expected states.
struct FaultyOperation {
    /// Makes the databases that the operation needs.
    std::function<void(FaultFixture&)> prepare;
    /// Runs the operation. Returns true if it has succeeded.
    std::function<bool(FaultFixture&)> run;
    /// Describes the databases on the server and their files.
    std::function<std::string(FaultFixture&)> state;
    std::string state_before;
    std::vector<Step> steps;
    /// The lines of the log when the step with this number, counted from 0, fails.
    std::function<Lines(std::size_t)> log_lines;
};

/// How many faults are tried at the same time. It may be more than the processor's cores, because most of
/// them only wait.
inline constexpr std::size_t kFaultsAtOnce = 16;

/// True if the environment variable KV_EVERY_FAULT asks for every fault, as the soak does. Otherwise only
/// those are tried that differ most from each other.
bool EveryFault();

/// Prepares a server in another process and saves it in the folder for FaultFixture's second constructor.
void MakeServerModel(const std::function<void(FaultFixture&)>& prepare, const std::filesystem::path& model);

/// Runs the operation once without a fault and once for each fault at each step, several at a time, and
/// prints the number of faults.
void TryEveryFault(const char* name, const FaultyOperation& operation);

} // namespace kv
