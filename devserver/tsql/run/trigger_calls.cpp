// Runs the triggers of the tables that a statement has written to, after the statement's own work and within
// its transaction.
#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/session/triggers.h"

namespace devsql {
namespace {

/// INSERTED or DELETED: a table of SQLite's own temporary database, for as long as the trigger runs.
TablePtr MakeTransitionTable(SessionCore& session, const TableDef& base, const std::string& name,
                             const std::vector<std::vector<Value>>& rows) {
    TableDef table;
    table.id = session.temporaries().NextId();
    table.alias = "temp";
    table.schema = "dbo";
    table.name = name;
    table.physical = name + std::to_string(table.id);
    table.columns = base.columns;
    session.connection().Execute(CreateTableText(table));
    std::string places;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        places += (i == 0 ? "?" : ", ?") + std::to_string(i + 1);
    }
    SqliteStatement insert =
        session.connection().Prepare("INSERT INTO " + table.Qualified() + " VALUES(" + places + ")");
    for (const std::vector<Value>& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            insert.Bind(static_cast<int>(i + 1), row[i], table.columns[i].type);
        }
        insert.Run();
    }
    return std::make_shared<const TableDef>(std::move(table));
}

} // namespace

void Interpreter::Fire(const std::vector<Firing>& firings) {
    const TriggerRun* const around = InnermostTrigger(session_);
    if (around != nullptr && around->ended_transactions != session_.transactions().ended()) {
        return; // After its ROLLBACK a trigger fires no others.
    }
    const bool alone = session_.transactions().count() == 0;
    if (alone) {
        session_.transactions().Begin("");
    }
    const std::int64_t transaction = session_.transactions().ended();
    const bool xact_abort = std::exchange(session_.options().xact_abort, true);
    const auto leave = [&](bool failed) {
        session_.options().xact_abort = xact_abort;
        if (session_.transactions().ended() != transaction) {
            return;
        }
        if (alone) {
            session_.transactions().EndForTriggers();
        } else if (failed) {
            session_.transactions().Doom();
        }
    };
    try {
        for (const Firing& firing : firings) {
            for (const TriggerDef& trigger : firing.table->triggers) {
                if (!trigger.disabled) {
                    RunTrigger(firing, trigger.id);
                }
            }
        }
        if (alone) {
            session_.remote().Commit();
        }
    } catch (...) {
        leave(true);
        throw;
    }
    leave(false);
}

void Interpreter::RunTrigger(const Firing& firing, std::int64_t id) {
    Catalogue& catalogue = session_.databases().Get(firing.database);
    const std::optional<ObjectDef> object = catalogue.FindObject(id);
    if (!object || (EventsOfTrigger(session_, catalogue, *object) & firing.event) == 0 ||
        IsOwnFiring(session_, firing, id)) {
        return; // A trigger that ran before may have dropped it.
    }
    const TriggerRun run{firing, id, session_.transactions().ended()};
    Frame frame;
    frame.procedure = object->name;
    frame.procedure_id = id;
    frame.database = firing.database;
    frame.trigger = &run;
    frame.tables["INSERTED"] = MakeTransitionTable(session_, *firing.table, "INSERTED", firing.inserted);
    frame.tables["DELETED"] = MakeTransitionTable(session_, *firing.table, "DELETED", firing.deleted);
    session_.status().last_error = 0;
    session_.status().row_count = std::ssize(firing.inserted.empty() ? firing.deleted : firing.inserted);
    const std::shared_ptr<const ast::CreateModuleStatement> module =
        session_.databases().Module(catalogue, *object);
    RunBody(*object, frame, *module);
    if (run.ended_transactions != session_.transactions().ended()) {
        RaiseError(3609);
    }
    if (session_.transactions().doomed()) {
        RaiseError(3616);
    }
}

} // namespace devsql
