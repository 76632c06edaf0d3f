// Attaches databases to the session's connection, and keeps the definitions that are read from them.
#include "devserver/tsql/session/open_databases.h"

#include <stdexcept>
#include <vector>

#include "devserver/storage/databases.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

/// SQLite's own limit.
constexpr std::size_t kAttachedDatabases = 10;
/// The connection's main file, which is never left.
constexpr const char* kMaster = "master";

} // namespace

Catalogue& OpenDatabases::Get(const std::string& name) {
    const std::string folded = Folded(name);
    if (const auto known = entries_.find(folded); known != entries_.end()) {
        known->second.last_use = ++uses_;
        return *known->second.catalogue;
    }
    Entry entry;
    std::string alias = "main";
    if (folded != kMaster) {
        const DatabaseInfo info = session_.server().users().Enter(name, session_);
        entry.id = info.id;
        try {
            alias = Attach(info);
        } catch (...) {
            session_.server().users().Leave(info.id, session_);
            throw;
        }
    }
    entry.catalogue = std::make_unique<Catalogue>(session_.connection(), alias);
    entry.last_use = ++uses_;
    return *entries_.emplace(folded, std::move(entry)).first->second.catalogue;
}

/// Attaches a database that the session has entered. Returns its alias in SQLite's SQL.
std::string OpenDatabases::Attach(const DatabaseInfo& info) {
    MakeRoom();
    const std::string alias = "db" + std::to_string(info.id);
    try {
        session_.connection().Attach(info.DataFile().path, alias);
    } catch (const StorageError& error) {
        session_.CheckCancelled(); // SQLite gives up waiting then, and says that the file is locked.
        RaiseError(5120, {info.DataFile().client_path, std::to_string(error.primary_code()), error.what()});
    }
    // Another database may have had this id before: its identity values don't count for the new one.
    if (std::int64_t& created = created_[alias]; created != info.created) {
        session_.identities().ForgetDatabase(alias);
        created = info.created;
    }
    return alias;
}

/// Makes room for one more attached database: leaves those that were used longest ago. Does nothing inside a
/// transaction of SQLite.
void OpenDatabases::MakeRoom() {
    while (entries_.size() >= kAttachedDatabases && !session_.connection().InTransaction()) {
        auto oldest = entries_.end();
        for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
            if (entry->first != kMaster && entry->first != Folded(own_) &&
                (oldest == entries_.end() || entry->second.last_use < oldest->second.last_use)) {
                oldest = entry;
            }
        }
        Release(oldest->first);
    }
}

const std::string& OpenDatabases::CurrentName() const {
    const std::string& of_frame = session_.calls().frame().database;
    return of_frame.empty() ? own_ : of_frame;
}

void OpenDatabases::Use(const std::string& name) {
    Get(name); // From here on no other session can rename or remove it.
    const std::optional<DatabaseInfo> info = FindDatabase(session_.connection(), name);
    if (!info) { // Renamed since the session's transaction has read the list: it sees the list as it was.
        RaiseError(911, {name});
    }
    const std::string from = std::exchange(own_, info->name);
    Results& results = session_.results();
    if (results.open()) {
        results.sink().DatabaseChanged(from, own_);
        results.Info(5701, {own_}, 2);
    }
}

void OpenDatabases::ReleaseOthers() {
    const Interruption::Block block(session_.interruption());
    if (session_.connection().InTransaction()) {
        return;
    }
    std::vector<std::string> others;
    for (const auto& [name, entry] : entries_) {
        if (name != kMaster && name != Folded(own_)) {
            others.push_back(name);
        }
    }
    for (const std::string& name : others) {
        Release(name);
    }
}

void OpenDatabases::Release(const std::string& name) {
    const std::string folded = Folded(name);
    const auto found = entries_.find(folded);
    if (found == entries_.end() || folded == kMaster) {
        return;
    }
    const Interruption::Block block(session_.interruption());
    const int database = found->second.id;
    session_.connection().Detach(found->second.catalogue->alias());
    entries_.erase(found);
    session_.server().users().Leave(database, session_);
}

void OpenDatabases::ReleaseAll() {
    ReleaseOthers();
    Release(std::exchange(own_, kMaster));
}

/// The definitions that have been read from a database; none of them if its catalogue has changed since.
OpenDatabases::Entry& OpenDatabases::Read(Catalogue& catalogue) {
    for (auto& [name, entry] : entries_) {
        if (entry.catalogue.get() != &catalogue) {
            continue;
        }
        const std::int64_t version = catalogue.Version();
        if (entry.version != version) {
            entry.tables.clear();
            entry.objects.clear();
            entry.modules.clear();
            entry.version = version;
        }
        return entry;
    }
    throw std::logic_error("a catalogue that is not attached");
}

TablePtr OpenDatabases::Table(Catalogue& catalogue, std::int64_t id) {
    TablePtr& table = Read(catalogue).tables[id];
    if (!table) {
        table = catalogue.LoadTable(id);
    }
    return table;
}

std::optional<ObjectDef> OpenDatabases::Object(Catalogue& catalogue, const std::string& schema,
                                               const std::string& name) {
    auto& objects = Read(catalogue).objects;
    const auto known = objects.find({schema, name});
    return known != objects.end()
               ? known->second
               : objects.emplace(std::pair(schema, name), catalogue.FindObject(schema, name)).first->second;
}

std::shared_ptr<const ast::CreateModuleStatement> OpenDatabases::Module(Catalogue& catalogue,
                                                                        const ObjectDef& object) {
    auto& module = Read(catalogue).modules[object.id];
    if (!module) {
        module = std::make_shared<const ast::CreateModuleStatement>(
            ParseModule(object.text, object.quoted_identifier));
    }
    return module;
}

void OpenDatabases::ForgetTables() {
    for (auto& [name, entry] : entries_) {
        entry.version = -1;
    }
}

} // namespace devsql
