// The block of connection and path settings of the redundant pair that every manager class carries.
// Validates nothing and reads no settings by itself: whoever makes a manager writes what its operations need.
#pragma once

#include <string>

namespace kv {

class ServerPairSettings {
  public:
    /// True: the object works on Server A. False: on Server B.
    bool UseServerA() const { return use_server_a_; }
    void UseServerA(bool value) { use_server_a_ = value; }

    /// Server names as typed; they may name an instance.
    const std::string& ServerA() const { return server_a_; }
    void ServerA(const std::string& value) { server_a_ = value; }
    const std::string& ServerB() const { return server_b_; }
    void ServerB(const std::string& value) { server_b_ = value; }

    const std::string& UserA() const { return user_a_; }
    void UserA(const std::string& value) { user_a_ = value; }
    const std::string& UserB() const { return user_b_; }
    void UserB(const std::string& value) { user_b_ = value; }

    /// In clear text.
    const std::string& PasswordA() const { return password_a_; }
    void PasswordA(const std::string& value) { password_a_ = value; }
    const std::string& PasswordB() const { return password_b_; }
    void PasswordB(const std::string& value) { password_b_ = value; }

    /// Folders for data and log files; one trailing "\" is cut when they are written.
    const std::string& SQLDataPathA() const { return sql_data_path_a_; }
    void SQLDataPathA(const std::string& value) { sql_data_path_a_ = WithoutTrailingBackslash(value); }
    const std::string& SQLDataPathB() const { return sql_data_path_b_; }
    void SQLDataPathB(const std::string& value) { sql_data_path_b_ = WithoutTrailingBackslash(value); }

    /// UNC paths of the replication data folders, cut likewise.
    const std::string& SQLUNCReplDataPathA() const { return sql_unc_repl_data_path_a_; }
    void SQLUNCReplDataPathA(const std::string& value) {
        sql_unc_repl_data_path_a_ = WithoutTrailingBackslash(value);
    }
    const std::string& SQLUNCReplDataPathB() const { return sql_unc_repl_data_path_b_; }
    void SQLUNCReplDataPathB(const std::string& value) {
        sql_unc_repl_data_path_b_ = WithoutTrailingBackslash(value);
    }

    /// The members of the server that UseServerA selects.
    const std::string& SelectedServer() const { return use_server_a_ ? server_a_ : server_b_; }
    const std::string& SelectedUser() const { return use_server_a_ ? user_a_ : user_b_; }
    const std::string& SelectedPassword() const { return use_server_a_ ? password_a_ : password_b_; }
    const std::string& SelectedSQLDataPath() const {
        return use_server_a_ ? sql_data_path_a_ : sql_data_path_b_;
    }
    const std::string& SelectedSQLUNCReplDataPath() const {
        return use_server_a_ ? sql_unc_repl_data_path_a_ : sql_unc_repl_data_path_b_;
    }

  protected:
    ~ServerPairSettings() = default;

  private:
    static std::string WithoutTrailingBackslash(const std::string& path) {
        return !path.empty() && path.back() == '\\' ? path.substr(0, path.size() - 1) : path;
    }

    bool use_server_a_ = false;
    std::string server_a_;
    std::string server_b_;
    std::string user_a_;
    std::string user_b_;
    std::string password_a_;
    std::string password_b_;
    std::string sql_data_path_a_;
    std::string sql_data_path_b_;
    std::string sql_unc_repl_data_path_a_;
    std::string sql_unc_repl_data_path_b_;
};

} // namespace kv
