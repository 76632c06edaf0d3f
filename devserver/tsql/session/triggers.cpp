// Finds the triggers that fire, and the functions that a trigger's body calls.
#include "devserver/tsql/session/triggers.h"

#include <algorithm>
#include <iterator>

#include "devserver/storage/databases.h"
#include "devserver/tsql/session/session_function_parts.h"

namespace devsql {

std::uint8_t EventsOfTrigger(SessionCore& session, Catalogue& catalogue, const ObjectDef& object) {
    return object.type == "TR" ? session.databases().Module(catalogue, object)->events : std::uint8_t{0};
}

bool HasTrigger(SessionCore& session, Catalogue* catalogue, const TableDef& table, std::uint8_t events) {
    return catalogue != nullptr && std::ranges::any_of(table.triggers, [&](const TriggerDef& trigger) {
               const std::optional<ObjectDef> object =
                   trigger.disabled ? std::nullopt : catalogue->FindObject(trigger.id);
               return object && (EventsOfTrigger(session, *catalogue, *object) & events) != 0;
           });
}

const TriggerRun* InnermostTrigger(const SessionCore& session) {
    const Frame* frame = &session.calls().frame();
    while (frame != nullptr && frame->trigger == nullptr) {
        frame = frame->caller;
    }
    return frame == nullptr ? nullptr : frame->trigger;
}

void AddFiring(std::vector<Firing>& firings, Firing firing) {
    const auto known = std::ranges::find_if(firings, [&](const Firing& other) {
        return other.table->id == firing.table->id && other.event == firing.event;
    });
    if (known == firings.end()) {
        firings.push_back(std::move(firing));
        return;
    }
    std::ranges::move(firing.deleted, std::back_inserter(known->deleted));
    std::ranges::move(firing.inserted, std::back_inserter(known->inserted));
    known->columns.merge(firing.columns);
}

bool IsOwnFiring(SessionCore& session, const Firing& firing, std::int64_t id) {
    const TriggerRun* const running = InnermostTrigger(session);
    if (running == nullptr || running->id != id || running->firing.database != firing.database) {
        return false;
    }
    const std::optional<DatabaseInfo> database = FindDatabase(session.connection(), firing.database);
    return !database || !database->Option("RECURSIVE_TRIGGERS");
}

namespace {

/// UPDATE(column): true for every column after an INSERT, and for those that SET names after an UPDATE.
Value Updated(SessionCore& session, Values values, Types types) {
    const TriggerRun* const run = session.calls().frame().trigger;
    if (run == nullptr) { // within an expression; the parser refuses only a predicate
        RaiseError(140);
    }
    const Firing& firing = run->firing;
    const ColumnDef* column = firing.table->Find(TextOf(values, types, 0));
    if (column == nullptr) {
        RaiseError(207, {TextOf(values, types, 0)});
    }
    return std::int64_t{firing.event == ast::kOnInsert ||
                        (firing.event == ast::kOnUpdate && firing.columns.contains(column->id))};
}

/// A bit for each column, by its id: the first column is the lowest bit of the first byte.
Value ColumnsUpdated(SessionCore& session, Values, Types) {
    const TriggerRun* run = session.calls().frame().trigger;
    if (run == nullptr) {
        return {};
    }
    constexpr int kBits = 8;
    std::string bytes;
    for (const ColumnDef& column : run->firing.table->columns) {
        const auto place = static_cast<std::size_t>((column.id - 1) / kBits);
        bytes.resize(std::max(bytes.size(), place + 1));
        if (run->firing.event == ast::kOnInsert || run->firing.columns.contains(column.id)) {
            bytes[place] = static_cast<char>(bytes[place] | (1 << ((column.id - 1) % kBits)));
        }
    }
    return Bytes{bytes};
}

/// How many triggers run within each other; with an argument, how often that one does.
Value TriggerNestLevel(SessionCore& session, Values values, Types types) {
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    std::int64_t level = 0;
    for (const Frame* frame = &session.calls().frame(); frame != nullptr; frame = frame->caller) {
        const bool counts = frame->trigger != nullptr && (!id || *id == 0 || frame->trigger->id == *id);
        level += counts ? 1 : 0;
    }
    return level;
}

constexpr SessionFunction kFunctions[] = {
    {"UPDATE", 1, 1, Simple(TypeId::Bit), Updated, true},
    {"COLUMNS_UPDATED", 0, 0, Sized(TypeId::VarBinary, 128), ColumnsUpdated, true},
    {"TRIGGER_NESTLEVEL", 0, 3, Simple(TypeId::Int), TriggerNestLevel, true},
};

} // namespace

std::span<const SessionFunction> TriggerFunctions() {
    return kFunctions;
}

} // namespace devsql
