// The databases that a session has entered: their catalogues, and the parts of them that it has read.
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
    /// That of the running procedure, else the session's own.
    Catalogue& Current() { return Get(CurrentName()); }
    const std::string& CurrentName() const;
    /// The session's own, which USE changes.
    const std::string& own() const { return own_; }
    void Use(const std::string& name);

    /// Leaves every database but the session's own; between batches, outside transactions.
    void ReleaseOthers();
    void Release(const std::string& name);
    /// Leaves every database, for a session that ends.
    void ReleaseAll();

    /// A table by its object, read once for each version of the catalogue.
    TablePtr Table(Catalogue& catalogue, std::int64_t id);
    /// The object of that name, likewise.
    std::optional<ObjectDef> Object(Catalogue& catalogue, const std::string& schema, const std::string& name);
    /// A procedure's tree, likewise.
    std::shared_ptr<const ast::CreateModuleStatement> Module(Catalogue& catalogue, const ObjectDef& object);
    /// After a rollback: what has been read may never have been.
    void ForgetTables();

  private:
    struct Entry {
        int id = 0;
        std::unique_ptr<Catalogue> catalogue;
        std::int64_t last_use = 0;
        std::int64_t version = -1;
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
    std::map<std::string, std::int64_t> created_; ///< when the database was made that an alias meant last
    std::int64_t uses_ = 0;
    std::string own_ = "master";
};

} // namespace devsql
