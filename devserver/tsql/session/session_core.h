// One session: its connection to SQLite and the parts that keep its state, each with one job. All rooms above
// work on it. Knows nothing of how statements are bound and run.
#pragma once

#include <atomic>
#include <cstdint>

#include "devserver/engine/engine.h"
#include "devserver/storage/catalogue.h"
#include "devserver/storage/sqlite.h"
#include "devserver/tsql/linked/remote_servers.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/session/call_stack.h"
#include "devserver/tsql/session/client_info.h"
#include "devserver/tsql/session/identities.h"
#include "devserver/tsql/session/interruption.h"
#include "devserver/tsql/session/open_databases.h"
#include "devserver/tsql/session/options.h"
#include "devserver/tsql/session/prepared_texts.h"
#include "devserver/tsql/session/remote_owner.h"
#include "devserver/tsql/session/results.h"
#include "devserver/tsql/session/session_function.h"
#include "devserver/tsql/session/sqlite_functions.h"
#include "devserver/tsql/session/status.h"
#include "devserver/tsql/session/temporary_tables.h"
#include "devserver/tsql/session/transactions.h"
#include "devserver/tsql/session/trigger_runner.h"

namespace devsql {

class Server;

class SessionCore {
  public:
    SessionCore(Server& server, ClientInfo client);
    ~SessionCore();
    SessionCore(const SessionCore&) = delete;
    SessionCore& operator=(const SessionCore&) = delete;

    Server& server() const { return server_; }
    const ClientInfo& client() const { return client_; }
    std::int32_t id() const { return client_.id; }
    /// The connection's main file is master; other databases are attached to it.
    SqliteConnection& connection() { return connection_; }

    Options& options() { return options_; }
    const Options& options() const { return options_; }
    /// Replaces all options, as at the end of a procedure.
    void SetOptions(const Options& options);
    void SetIsolationLevel(std::int16_t level);
    /// The isolation level of the options. From any thread.
    std::int16_t isolation_level() const { return isolation_level_; }

    Status& status() { return status_; }
    const Status& status() const { return status_; }
    Results& results() { return results_; }
    CallStack& calls() { return calls_; }
    const CallStack& calls() const { return calls_; }
    OpenDatabases& databases() { return databases_; }
    const OpenDatabases& databases() const { return databases_; }
    TemporaryTables& temporaries() { return temporaries_; }
    Identities& identities() { return identities_; }
    Transactions& transactions() { return transactions_; }
    const Transactions& transactions() const { return transactions_; }
    TriggerRunner& triggers() { return triggers_; }
    PreparedTexts& prepared() { return prepared_; }
    SqliteFunctions& functions() { return functions_; }
    /// The connections to linked servers.
    RemoteServers& remote() { return remote_; }

    Interruption& interruption() { return interruption_; }
    const Interruption& interruption() const { return interruption_; }
    /// Throws Cancelled once a stop has been requested.
    void CheckCancelled() const { interruption_.Check(); }
    /// Makes the running call stop soon, here and at a linked server. From any thread.
    void Cancel();

  private:
    /// Drops the ## tables that the session owns.
    void DropGlobalTables();

    Server& server_;
    const ClientInfo client_;
    SqliteConnection connection_;
    Options options_;
    std::atomic<std::int16_t> isolation_level_ = options_.isolation_level;
    Status status_;
    Identities identities_;
    Interruption interruption_{connection_};
    TemporaryTables temporaries_{connection_, identities_, interruption_};
    CallStack calls_{temporaries_};
    Results results_{options_, status_, calls_};
    PreparedTexts prepared_;
    RemoteOwner remote_owner_{*this};
    RemoteServers remote_{remote_owner_};
    OpenDatabases databases_{*this};
    Transactions transactions_{*this};
    TriggerRunner triggers_;
    SqliteFunctions functions_{*this};
};

} // namespace devsql
