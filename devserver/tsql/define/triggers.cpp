// Triggers as objects of a database: the table that they belong to, and switching them on and off.
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {

std::int64_t TableOfTrigger(SessionCore& session, const ast::CreateModuleStatement& trigger,
                            std::string& schema) {
    const std::string_view word = trigger.alter ? "alter" : "create";
    if (IsSessionTable(trigger.table.last()) || IsGlobalTable(trigger.table.last())) {
        RaiseError(40517, {"trigger on a temporary table"});
    }
    const ObjectPlace place = PlaceOf(session, trigger.table);
    if (CompareText(place.database, session.databases().CurrentName()) != 0) {
        RaiseError(2108, {word, trigger.table.text()});
    }
    const std::optional<ObjectDef> table = session.databases().Current().FindObject(place.schema, place.name);
    if (!table || table->type != "U") {
        RaiseError(8197, {trigger.table.text()}, 4);
    }
    if (trigger.name.parts.size() < 2) {
        schema = table->schema;
    } else if (CompareText(schema, table->schema) != 0) {
        RaiseError(2103, {word, trigger.name.text()});
    }
    return table->id;
}

void RunSwitchTriggers(SessionCore& session, const ast::SwitchTriggersStatement& triggers) {
    constexpr std::int32_t kOfAlterTable = 4920;
    Emission emission(session);
    const Target target =
        BindTargetAs(session, emission, triggers.table, triggers.missing == kOfAlterTable ? 4902 : 1088);
    if (target.catalogue == nullptr) {
        RaiseError(40517, {"trigger on a temporary table"});
    }
    session.transactions().Write(target.table->alias, [&] {
        for (const std::string& name : triggers.names) {
            bool found = name == "ALL";
            for (const TriggerDef& trigger : target.table->triggers) {
                if (name == "ALL" || CompareText(trigger.name, name) == 0) {
                    found = true;
                    target.catalogue->SetDisabled(trigger.id, !triggers.enable);
                }
            }
            if (!found) {
                RaiseError(triggers.missing, {name, triggers.table.text()});
            }
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql
