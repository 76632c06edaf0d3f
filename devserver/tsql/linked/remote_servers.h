// A session's connections to linked servers, and how they take part in its transaction. Knows nothing of
// tables and procedures on these servers.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/linked/remote.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/tsql/parse/ast_query.h"

namespace devsql {

/// The session that the connections belong to, as they need it.
class RemoteServersOwner {
  public:
    virtual ~RemoteServersOwner() = default;

    /// The session's connection to SQLite; its main file is master.
    virtual SqliteConnection& connection() = 0;
    virtual const std::string& server_name() const = 0;
    /// The name and the password with which the client logged in.
    virtual const std::string& login() const = 0;
    virtual const std::string& password() const = 0;
    /// Opens connections; empty if this server can't reach others.
    virtual const RemoteConnector& connector() const = 0;
    virtual LinkedLogins Logins() = 0;
    /// True if a client with that application name is connected to this server.
    virtual bool HasSession(const std::string& application) = 0;
    /// The id of the next temporary table.
    virtual std::int64_t NextTableId() = 0;
    /// Throws Cancelled once a stop of the running call has been requested.
    virtual void CheckCancelled() const = 0;
    /// Sends a message of the message table to the client.
    virtual void Inform(std::int32_t number, std::initializer_list<std::string_view> arguments) = 0;

    virtual bool InTransaction() const = 0;
    virtual bool HasSavepoints() const = 0;
    /// Makes the session's transaction unfit for anything but a rollback.
    virtual void DoomTransaction() = 0;
};

/// Keeps the results of a batch: its rows, the number of rows it touched, its first error.
class RemoteAnswer : public RemoteSink {
  public:
    void Columns(const std::vector<Column>& given) override { columns = given; }
    void Row(const std::vector<Value>& values) override { rows.push_back(values); }
    void Count(std::int64_t touched) override { count += touched; }
    void Said(const Message& message) override;
    /// Raises the first error, under its own number.
    void RequireSuccess() const;

    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows;
    std::int64_t count = 0;
    std::optional<Message> error;
};

/// The connections of one session. A connection is opened when it is first needed and kept until Release.
class RemoteServers {
  public:
    explicit RemoteServers(RemoteServersOwner& owner) : owner_(owner) {}

    RemoteServersOwner& owner() { return owner_; }

    /// True for a name of four parts whose first is another server than this one.
    bool Means(const ast::Name& name) const;
    /// The settings of a linked server. Raises 7202 if there is none of that name.
    LinkedServer Find(const std::string& name) const;

    /// Runs a batch there, connecting first where needed. Errors of the other server go to the sink. Raises
    /// 7303, 7399, 7403, 7416 and the error with which the other server refuses a login.
    void Run(const LinkedServer& server, const std::string& sql, RemoteSink& sink);
    /// Runs a batch and raises its first error under its own number. Returns the number of rows touched.
    std::int64_t Execute(const LinkedServer& server, const std::string& sql);
    /// Runs `work`, which changes something there, whole or not at all: as a part of the session's
    /// transaction, or in one of its own. Raises 3910 for a server that is this one while the session is in a
    /// transaction, 3933 where that has savepoints.
    void Change(const LinkedServer& server, const std::function<void()>& work);
    /// Takes the connection into the session's transaction, if there is one. Raises 3910, 3933.
    void Join(const LinkedServer& server);

    /// True if another server takes part in the session's transaction.
    bool InTransaction() const;
    /// Raises the error of the first server that cannot commit; the others are then rolled back.
    void Commit();
    /// Closes the connections that take part in the transaction, which rolls their changes back.
    void Rollback() noexcept;
    /// Closes the connections that no transaction holds.
    void Release();
    /// Closes the connection to that server, if there is one.
    void Forget(const std::string& name) { links_.erase(Key(name)); }
    /// Ends the batch that runs at another server; from any thread.
    void Cancel();

  private:
    struct Link {
        std::unique_ptr<RemoteConnection> connection;
        bool loopback = false;       ///< the other server is this one
        bool in_transaction = false; ///< takes part in the session's transaction
    };

    static std::string Key(const std::string& name);
    Link& Connect(const LinkedServer& server);
    RemoteSource SourceOf(const LinkedServer& server) const;
    void RunOn(Link& link, const LinkedServer& server, const std::string& sql, RemoteSink& sink);
    [[noreturn]] void RaiseRemote(const LinkedServer& server, const RemoteFailure& failure);
    /// Dooms the session's transaction if an error has ended the transaction at the other server.
    void NoticeEnd(Link& link, const LinkedServer& server);

    RemoteServersOwner& owner_;
    std::map<std::string, Link> links_; ///< by folded name of the server
    std::mutex mutex_;
    RemoteConnection* running_ = nullptr; ///< runs a batch at the moment, else null; under `mutex_`
};

} // namespace devsql
