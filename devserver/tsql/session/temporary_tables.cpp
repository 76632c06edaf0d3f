// Finds temporary tables by name and nesting level, and drops those of calls that end.
#include "devserver/tsql/session/temporary_tables.h"

#include <algorithm>
#include <limits>

#include "devserver/storage/sqlite.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/identities.h"
#include "devserver/tsql/session/interruption.h"

namespace devsql {

bool IsGlobalTable(std::string_view name) {
    return name.starts_with("##");
}

bool IsSessionTable(std::string_view name) {
    return name.starts_with("#") && !IsGlobalTable(name);
}

TablePtr TemporaryTables::Find(const std::string& name) const {
    const std::string folded = Folded(name);
    const auto after = list_.upper_bound({folded, std::numeric_limits<int>::max()});
    return after == list_.begin() || std::prev(after)->first.first != folded ? nullptr
                                                                             : std::prev(after)->second;
}

bool TemporaryTables::HasOwn(const std::string& name) const {
    return list_.contains({Folded(name), Level()});
}

void TemporaryTables::Add(TableDef table) {
    const auto known = std::find_if(list_.begin(), list_.end(),
                                    [&](const auto& entry) { return entry.second->id == table.id; });
    const auto key = known == list_.end() ? std::pair(Folded(table.name), Level()) : known->first;
    list_[key] = std::make_shared<const TableDef>(std::move(table));
}

void TemporaryTables::Remove(const std::string& name) {
    if (const TablePtr table = Find(name)) {
        identities_.SetTemporary(table->id, std::nullopt);
        std::erase_if(list_, [&](const auto& entry) { return entry.second == table; });
    }
}

void TemporaryTables::OwnGlobal(const std::string& name) {
    globals_.insert(Folded(name));
}

void TemporaryTables::EndCall(const std::map<std::string, TablePtr, std::less<>>& variables) {
    const Interruption::Block block(interruption_);
    for (const auto& [name, table] : variables) {
        identities_.SetTemporary(table->id, std::nullopt);
        connection_.Execute("DROP TABLE IF EXISTS " + table->Qualified());
    }
    if (Level() > 0) {
        DropFrom(Level());
    }
}

void TemporaryTables::DropFrom(int level) {
    std::erase_if(list_, [&](const auto& entry) {
        const auto& [key, table] = entry;
        if (key.second < level) {
            return false;
        }
        identities_.SetTemporary(table->id, std::nullopt);
        connection_.Execute("DROP TABLE IF EXISTS " + table->Qualified());
        return true;
    });
}

void TemporaryTables::Restore(const List& before) {
    list_ = before;
    DropFrom(nesting_ + 1);
}

} // namespace devsql
