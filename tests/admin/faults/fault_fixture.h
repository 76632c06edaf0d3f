// Where an operation meets a fault: a development server with the database "Batch" on it, a proxy in front of
// it, a registry and a log. One for each fault, in a process of its own.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ado/connection.h"
#include "fakes/dts_dev_server.h"
#include "support/children.h"
#include "support/fault_proxy.h"

namespace kv {

using Lines = std::vector<std::string>;

class FaultRoom {
  public:
    /// An empty server.
    FaultRoom();
    /// What KeepAs has put away, with every database attached whose files lie in the old folder.
    explicit FaultRoom(const std::filesystem::path& model);

    /// Makes the manager work on the server, through the proxy, with the data folder.
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

    /// The proxy, as a connection string names it.
    std::string ServerName() const { return "127.0.0.1," + std::to_string(proxy_.Port()); }
    const std::filesystem::path& Folder() const { return server_.Folder(); }
    std::filesystem::path DataFolder() const { return server_.Folder() / "data"; }
    std::filesystem::path OldFolder() const { return server_.Folder() / "old"; }
    support::FaultProxy& Proxy() { return proxy_; }
    /// Starts the server again behind a kill.
    void StartServerAgain();

    /// Creates a database with two files below the old folder, called NAME_dat.mdf and NAME_lg.ldf, and runs
    /// the batches in it.
    void CreateDatabase(const std::string& name, const Lines& batches);
    /// Detaches all databases, stops the server and copies everything into the folder.
    void KeepAs(const std::filesystem::path& model);
    /// The values of the first result, row by row, columns separated by blanks; not through the proxy.
    Lines Ask(const std::string& database, const std::string& statement) const;
    /// The first value, or "" where there is none.
    std::string AskOne(const std::string& database, const std::string& statement) const;
    bool HasDatabase(const std::string& name) const;

    /// The log's lines without date and " : Error in ".
    Lines LogLines() const;

  private:
    void SetUp();
    /// The names of those whose data files lie there.
    Lines DatabasesInOldFolder() const;
    ado::Connection Connect(const std::string& database) const;

    fakes::DevServer server_;
    support::FaultProxy proxy_;
    mutable std::optional<ado::Connection>
        master_; ///< of Ask; a new one each time costs most of a test's time
};

/// A step of an operation as the server sees it: "login" or a statement, with "{data}" for the data folder
/// and "{server}" for the server's name; and what stands when it has been done.
struct Step {
    std::string event;
    std::string state;
    /// Where the program does something of its own in front of the step; else what the step before left
    /// stands.
    std::string state_before{};
};

/// An operation, and everything that can be told of it.
struct FaultyOperation {
    std::function<void(FaultRoom&)> prepare;
    std::function<bool(FaultRoom&)> run;
    /// What stands on the server and on disk.
    std::function<std::string(FaultRoom&)> state;
    std::string state_before;
    std::vector<Step> steps;
    /// The lines of the log when the step with this number, counted from 0, fails.
    std::function<Lines(std::size_t)> log_lines;
};

/// Most of the faults wait.
inline constexpr std::size_t kFaultsAtOnce = 16;

/// Prepares a room, in a process of its own, and keeps it in the folder for FaultRoom's second constructor.
void MakeModel(const std::function<void(FaultRoom&)>& prepare, const std::filesystem::path& model);

/// Runs the operation once without a fault and once for each fault at each step, side by side, and prints how
/// many faults there were.
void TryEveryFault(const char* name, const FaultyOperation& operation);

} // namespace kv
