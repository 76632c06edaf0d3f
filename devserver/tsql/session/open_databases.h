// The databases that a session has entered (DatabaseUsers::Enter), their catalogues, and the definitions that
// it has read from them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "devserver/storage/catalogue.h"
#include "devserver/tsql/parse/ast_definitions.h"

namespace devsql {

class SessionCore;
struct DatabaseInfo;

class OpenDatabases {
  public:
    explicit OpenDatabases(SessionCore& session) : session_(session) {}

    /// The catalogue of a database, which the session enters if it hasn't yet. Raises 911 for an unknown
    /// name, 942 and 924 for one that can't be used.
    Catalogue& Get(const std::string& name);
    /// The catalogue of the database in which the running procedure looks up its names, otherwise of the
    /// session's own.
    Catalogue& Current() { return Get(CurrentName()); }
    const std::string& CurrentName() const;
    /// The session's own, which USE changes.
    const std::string& own() const { return own_; }
    /// USE: enters the database, makes it the session's own and reports that to the client. Raises as Get
    /// does.
    void Use(const std::string& name);

    /// Leaves every database but the session's own; between batches, outside transactions.
    void ReleaseOthers();
    /// Leaves one database, if the session has entered it; master is never left.
    void Release(const std::string& name);
    /// Leaves every database, for a session that ends.
    void ReleaseAll();

    /// A table by its object's id. It is read once for each version of the catalogue.
    TablePtr Table(Catalogue& catalogue, std::int64_t id);
    /// The object of that name, cached in the same way; nothing if there is none.
    std::optional<ObjectDef> Object(Catalogue& catalogue, const std::string& schema, const std::string& name);
    /// The tree of a view, procedure, function or trigger, cached in the same way.
    std::shared_ptr<const ast::CreateModuleStatement> Module(Catalogue& catalogue, const ObjectDef& object);
    /// To be called after a rollback, which may have taken back definitions that were read: all are read
    /// again.
    void ForgetTables();

  private:
    struct Entry {
        int id = 0; ///< 0 for master
        std::unique_ptr<Catalogue> catalogue;
        std::int64_t last_use = 0; ///< `uses_` at the last Get
        std::int64_t version = -1; ///< of the catalogue when the rest was read; -1: read all again
        std::map<std::int64_t, TablePtr> tables;
        std::map<std::pair<std::string, std::string>, std::optional<ObjectDef>>
            objects; ///< by schema and name
        std::map<std::int64_t, std::shared_ptr<const ast::CreateModuleStatement>> modules;
    };

    std::string Attach(const DatabaseInfo& info);
    void MakeRoom();
    Entry& Read(Catalogue& catalogue);

    SessionCore& session_;
    std::map<std::string, Entry, std::less<>> entries_; ///< by folded name
    std::map<std::string, std::int64_t> created_; ///< by alias: when the database that had it last was made
    std::int64_t uses_ = 0;                       ///< counts the calls of Get
    std::string own_ = "master";
};

} // namespace devsql
