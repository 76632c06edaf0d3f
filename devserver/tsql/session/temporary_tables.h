// The temporary tables that a session has made, and for how long each one lives.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "devserver/storage/catalogue.h"

namespace devsql {

class Identities;
class Interruption;
class SqliteConnection;

/// "#t": seen by one session alone. "##t" is not.
bool IsSessionTable(std::string_view name);
bool IsGlobalTable(std::string_view name);

class TemporaryTables {
  public:
    TemporaryTables(SqliteConnection& connection, Identities& identities, Interruption& interruption)
        : connection_(connection), identities_(identities), interruption_(interruption) {}

    /// Null for an unknown name. A procedure's table hides its caller's of the same name.
    TablePtr Find(const std::string& name) const;
    /// Whether the running batch or procedure itself has made it.
    bool HasOwn(const std::string& name) const;
    /// Adds a table, or replaces the definition of the one with the same id.
    void Add(TableDef table);
    void Remove(const std::string& name);
    /// The id of the next temporary table; below 0, so that no stored table has it.
    std::int64_t NextId() { return next_id_--; }

    /// Makes the session the owner of a ## table, which is in tempdb for all sessions. The table is dropped
    /// when its owner ends.
    void OwnGlobal(const std::string& name);
    /// Returns the folded names of the ## tables that the session owns, and forgets them.
    std::set<std::string> TakeGlobals() { return std::exchange(globals_, {}); }

    /// How many calls are open. A table that a call makes is dropped when the call ends.
    void SetNesting(int nesting) { nesting_ = nesting; }
    /// Drops the tables that the running call has made, and its table variables.
    void EndCall(const std::map<std::string, TablePtr, std::less<>>& variables);

    /// By folded name and the number of calls that were open.
    using List = std::map<std::pair<std::string, int>, TablePtr>;
    const List& list() const { return list_; }
    /// After a rollback: the tables as they were before. Those of calls that have ended meanwhile are
    /// dropped.
    void Restore(const List& before);

  private:
    /// The level of a table that is made now: 0 in a batch, whose tables live as long as the session;
    /// otherwise the number of open calls.
    int Level() const { return nesting_ > 1 ? nesting_ : 0; }
    void DropFrom(int level);

    SqliteConnection& connection_;
    Identities& identities_;
    Interruption& interruption_;
    List list_;
    std::set<std::string> globals_;
    std::int64_t next_id_ = -1;
    int nesting_ = 0;
};

} // namespace devsql
