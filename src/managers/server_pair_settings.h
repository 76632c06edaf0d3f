// The settings of the redundant pair of servers. Every manager class has them. They are not checked and not
// read from anywhere: the caller that makes a manager sets those that the manager's operations need.
#pragma once

#include <string>

namespace kv {

/// The settings of one server of the pair.
struct ServerSettings {
    std::string server; ///< the name as typed, optionally with an instance: "host\instance"
    std::string user;
    std::string password;               ///< in clear text
    std::string sql_data_path;          ///< the folder for data and log files
    std::string sql_unc_repl_data_path; ///< the UNC path of the folder for replication data
};

/// The settings of Server A and Server B. A function without an argument returns the setting, one with an
/// argument sets it. Each setter of a path cuts one "\" at its end.
class ServerPairSettings {
  public:
    /// True if the manager works on Server A, false if it works on Server B.
    bool UseServerA() const { return use_server_a_; }
    void UseServerA(bool value) { use_server_a_ = value; }

    const std::string& ServerA() const { return a_.server; }
    void ServerA(const std::string& value) { a_.server = value; }
    const std::string& ServerB() const { return b_.server; }
    void ServerB(const std::string& value) { b_.server = value; }

    const std::string& UserA() const { return a_.user; }
    void UserA(const std::string& value) { a_.user = value; }
    const std::string& UserB() const { return b_.user; }
    void UserB(const std::string& value) { b_.user = value; }

    const std::string& PasswordA() const { return a_.password; }
    void PasswordA(const std::string& value) { a_.password = value; }
    const std::string& PasswordB() const { return b_.password; }
    void PasswordB(const std::string& value) { b_.password = value; }

    const std::string& SQLDataPathA() const { return a_.sql_data_path; }
    void SQLDataPathA(const std::string& value) { a_.sql_data_path = WithoutTrailingBackslash(value); }
    const std::string& SQLDataPathB() const { return b_.sql_data_path; }
    void SQLDataPathB(const std::string& value) { b_.sql_data_path = WithoutTrailingBackslash(value); }

    const std::string& SQLUNCReplDataPathA() const { return a_.sql_unc_repl_data_path; }
    void SQLUNCReplDataPathA(const std::string& value) {
        a_.sql_unc_repl_data_path = WithoutTrailingBackslash(value);
    }
    const std::string& SQLUNCReplDataPathB() const { return b_.sql_unc_repl_data_path; }
    void SQLUNCReplDataPathB(const std::string& value) {
        b_.sql_unc_repl_data_path = WithoutTrailingBackslash(value);
    }

    // The settings of the server that UseServerA selects, and those of the other server.

    const ServerSettings& Selected() const { return use_server_a_ ? a_ : b_; }
    const ServerSettings& Other() const { return use_server_a_ ? b_ : a_; }

  protected:
    ~ServerPairSettings() = default;

  private:
    static std::string WithoutTrailingBackslash(const std::string& path) {
        return !path.empty() && path.back() == '\\' ? path.substr(0, path.size() - 1) : path;
    }

    bool use_server_a_ = false;
    ServerSettings a_;
    ServerSettings b_;
};

} // namespace kv
