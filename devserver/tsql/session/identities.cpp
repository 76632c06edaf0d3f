// The identity values of a session, by table.
#include "devserver/tsql/session/identities.h"

namespace devsql {
namespace {

template <class Map, class Key>
std::optional<std::int64_t> Find(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::string Identities::Key(const TableDef& table) {
    return table.alias + "." + std::to_string(table.id);
}

std::optional<std::int64_t> Identities::Given(const TableDef& table) const {
    return Find(given_, Key(table));
}

std::optional<std::int64_t> Identities::Temporary(std::int64_t table) const {
    return Find(temporary_, table);
}

void Identities::ForgetDatabase(const std::string& alias) {
    std::erase_if(given_, [&](const auto& entry) { return entry.first.starts_with(alias + "."); });
}

void Identities::SetTemporary(std::int64_t table, std::optional<std::int64_t> value) {
    if (value) {
        temporary_[table] = *value;
    } else {
        temporary_.erase(table);
    }
}

} // namespace devsql
