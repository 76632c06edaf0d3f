// Procedures, functions, views and triggers, user types, and DROP of any object.
#include <algorithm>

#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {
namespace {

struct KindInfo {
    ast::ObjectKind kind;
    std::string_view type; ///< of devsql_objects
    std::string_view word; ///< of messages
};
constexpr KindInfo kKinds[] = {{ast::ObjectKind::Table, "U", "table"},
                               {ast::ObjectKind::View, "V", "view"},
                               {ast::ObjectKind::Procedure, "P", "procedure"},
                               {ast::ObjectKind::Function, "FN", "function"},
                               {ast::ObjectKind::Trigger, "TR", "trigger"}};

const KindInfo* InfoOf(ast::ObjectKind kind) {
    const auto* found = std::ranges::find(kKinds, kind, &KindInfo::kind);
    return found == std::end(kKinds) ? nullptr : found;
}

std::vector<ParameterDef> DefineParameters(SessionCore& session,
                                           const std::vector<ast::Parameter>& parameters) {
    std::vector<ParameterDef> defined;
    for (const ast::Parameter& parameter : parameters) {
        ParameterDef definition;
        definition.name = parameter.name;
        Emission emission(session);
        definition.type = Binder(session, emission).ResolveType(parameter.type, 1, &definition.user_type);
        definition.has_default = parameter.default_value != nullptr;
        definition.default_text = parameter.default_text;
        definition.output = parameter.output;
        defined.push_back(std::move(definition));
    }
    return defined;
}

std::vector<ColumnDef> ViewColumns(const std::vector<Column>& columns) {
    std::vector<ColumnDef> defined;
    for (const Column& column : columns) {
        ColumnDef definition;
        definition.id = static_cast<int>(defined.size() + 1);
        definition.name = column.name;
        definition.type = column.type;
        definition.nullable = column.nullable;
        defined.push_back(std::move(definition));
    }
    return defined;
}

template <class Node, class... Others>
constexpr bool IsOneOf = (std::is_same_v<Node, Others> || ...);

/// Raises 443 and 444 for a statement that changes or returns something, which a function must not.
void RequirePure(const ast::Statement& statement) {
    std::visit(
        Overloaded{
            [](const ast::IfStatement& s) {
                RequirePure(*s.then);
                if (s.otherwise) {
                    RequirePure(*s.otherwise);
                }
            },
            [](const ast::WhileStatement& s) { RequirePure(*s.body); },
            [](const ast::BlockStatement& s) {
                for (const ast::StatementPtr& inner : s.statements) {
                    RequirePure(*inner);
                }
            },
            [](const ast::DeclareStatement& s) {
                RaiseIf(
                    std::ranges::any_of(s.declarations, [](const auto& d) { return d.table.has_value(); }),
                    40517, {"table variable in a function"});
            },
            [](const ast::QueryPtr& s) { RaiseIf(!ast::IsAssignment(*s), 444, {}, 2); },
            []<class Node>(const Node&) {
                if constexpr (!IsOneOf<Node, ast::SetVariableStatement, ast::BreakStatement,
                                       ast::ContinueStatement, ast::ReturnStatement, ast::GotoStatement,
                                       ast::LabelStatement, ast::CursorDeclareStatement, ast::CursorStatement,
                                       ast::FetchStatement>) {
                    RaiseError(443,
                               {IsOneOf<Node, ast::InsertStatement>      ? "INSERT"
                                : IsOneOf<Node, ast::UpdateStatement>    ? "UPDATE"
                                : IsOneOf<Node, ast::DeleteStatement>    ? "DELETE"
                                : IsOneOf<Node, ast::PrintStatement>     ? "PRINT"
                                : IsOneOf<Node, ast::ExecuteStatement>   ? "EXECUTE"
                                : IsOneOf<Node, ast::SetOptionStatement> ? "SET"
                                : IsOneOf<Node, ast::TryStatement>       ? "BEGIN TRY"
                                                                         : "this statement"},
                               15);
                }
            },
        },
        statement.node);
}

void RequireFunctionBody(const ast::StatementList& body) {
    RequirePure(*body.front());
    const ast::StatementList& statements = std::get<ast::BlockStatement>(body.front()->node).statements;
    RaiseIf(statements.empty() || !std::holds_alternative<ast::ReturnStatement>(statements.back()->node), 455,
            {}, 2);
}

/// Raises 3701 for DROP of an object that does not exist, unless it is DROP … IF EXISTS.
void RequireExists(bool exists, bool if_exists, std::string_view word, const ast::Name& name) {
    RaiseIf(!exists && !if_exists, 3701, {"drop", word, name.text()}, 5);
}

void DropSessionTable(SessionCore& session, const ast::Name& name, bool if_exists) {
    const TablePtr table = session.temporaries().Find(name.last());
    RequireExists(table != nullptr, if_exists, "table", name);
    if (table) {
        session.transactions().Write("temp", [&] {
            session.connection().Execute("DROP TABLE " + table->Qualified());
            session.temporaries().Remove(name.last());
        });
    }
}

void DropTable(SessionCore& session, Catalogue& catalogue, const ObjectDef& object, const ast::Name& name) {
    const TablePtr table = catalogue.LoadTable(object.id);
    for (const ForeignKeyDef& key : table->referencing) {
        RaiseIf(key.table != table->id, 3726, {name.text()});
    }
    session.transactions().Write(catalogue.alias(), [&] {
        session.connection().Execute("DROP TABLE " + table->Qualified());
        catalogue.RemoveObject(table->id);
    });
}

void DropObject(SessionCore& session, const KindInfo& info, const ast::Name& name, bool if_exists) {
    if (IsSessionTable(name.last()) && info.kind == ast::ObjectKind::Table) {
        DropSessionTable(session, name, if_exists);
        return;
    }
    const ObjectPlace place = PlaceOf(session, name);
    Catalogue& catalogue = session.databases().Get(place.database);
    const std::optional<ObjectDef> object = catalogue.FindObject(place.schema, place.name);
    const auto* found = std::ranges::find(kKinds, object ? object->type : "", &KindInfo::type);
    RequireExists(found != std::end(kKinds), if_exists, info.word, name);
    if (found == std::end(kKinds)) {
        return;
    }
    if (found->kind != info.kind) {
        RaiseError(3705,
                   {AsciiUpper(info.word), name.text(), found->word, "DROP " + AsciiUpper(found->word)});
    }
    if (info.kind == ast::ObjectKind::Table) {
        DropTable(session, catalogue, *object, name);
        return;
    }
    session.transactions().Write(catalogue.alias(), [&] { catalogue.RemoveObject(object->id); });
}

void DropType(SessionCore& session, const ast::Name& name, bool if_exists) {
    Catalogue& catalogue = session.databases().Current();
    const std::optional<UserTypeDef> type = catalogue.FindType("", name.last());
    RaiseIf(!type && !if_exists, 218, {name.text()});
    if (!type) {
        return;
    }
    SqliteStatement used =
        catalogue.Prepare("SELECT o.name FROM {db}.devsql_columns c JOIN {db}.devsql_objects o ON o.id = "
                          "c.object WHERE c.user_type = ?1");
    if (used.BindText(1, type->schema + "." + type->name).Step()) {
        RaiseError(3732, {name.text(), used.Text(0)});
    }
    session.transactions().Write(catalogue.alias(), [&] { catalogue.RemoveType(type->schema, type->name); });
}

/// The module that ALTER names; nothing for CREATE. Raises 2714, 2010, 208, 2110. `table` is a trigger's, 0
/// for any other module.
std::optional<ObjectDef> ModuleToAlter(Catalogue& catalogue, const ast::CreateModuleStatement& create,
                                       const ObjectPlace& place, std::int64_t table) {
    std::optional<ObjectDef> existing = catalogue.FindObject(place.schema, place.name);
    const bool alter = create.alter || (create.or_alter && existing);
    RaiseIf(existing && !alter, 2714, {place.name}, 3);
    if (alter && (!existing || existing->type != InfoOf(create.kind)->type)) {
        RaiseError(existing ? 2010 : 208, {create.name.text()}, 6);
    }
    RaiseIf(existing && existing->parent != table, 2110, {create.name.text(), create.table.text()});
    return existing;
}

} // namespace

void RunCreateModule(SessionCore& session, const ast::CreateModuleStatement& create) {
    const KindInfo& info = *InfoOf(create.kind);
    if (create.name.parts.size() > 2) {
        RaiseError(166, {"CREATE/ALTER " + AsciiUpper(info.word)});
    }
    RaiseIf(create.name.last().starts_with("#"), 40517, {"temporary procedure"});
    if (create.kind == ast::ObjectKind::Function) {
        RequireFunctionBody(create.body);
    }
    ObjectPlace place = PlaceOf(session, create.name);
    Catalogue& catalogue = session.databases().Current();
    session.transactions().Write(catalogue.alias(), [&] {
        const std::int64_t table =
            create.kind == ast::ObjectKind::Trigger ? TableOfTrigger(session, create, place.schema) : 0;
        const std::optional<ObjectDef> existing = ModuleToAlter(catalogue, create, place, table);
        RequireSchema(catalogue, place.schema);
        ObjectDef object = existing.value_or(ObjectDef{});
        object.parent = table;
        object.schema = place.schema;
        object.name = existing ? existing->name : place.name;
        object.type = info.type;
        object.text = create.text;
        object.quoted_identifier = session.options().quoted_identifier;
        object.ansi_nulls = session.options().ansi_nulls;
        object.encrypted = create.encrypted;
        const std::vector<Column> columns =
            create.kind == ast::ObjectKind::View ? DescribeView(session, create) : std::vector<Column>();
        const std::vector<ParameterDef> parameters = DefineParameters(session, create.parameters);
        if (existing) {
            catalogue.ReplaceText(object);
        } else {
            object.id = catalogue.AddObject(object);
        }
        if (create.kind == ast::ObjectKind::View) {
            catalogue.SetViewColumns(object.id, ViewColumns(columns));
        } else {
            catalogue.SetParameters(object.id, parameters);
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

void RunDrop(SessionCore& session, const ast::DropStatement& drop) {
    for (const ast::Name& name : drop.names) {
        if (const KindInfo* info = InfoOf(drop.kind)) {
            DropObject(session, *info, name, drop.if_exists);
            continue;
        }
        switch (drop.kind) {
        case ast::ObjectKind::Database:
            DropDatabase(session, name.last(), drop.if_exists);
            break;
        case ast::ObjectKind::Type:
            DropType(session, name, drop.if_exists);
            break;
        case ast::ObjectKind::User:
        case ast::ObjectKind::Role:
        case ast::ObjectKind::Login:
        case ast::ObjectKind::Schema:
            DropPrincipal(session, drop.kind, name.last(), drop.if_exists);
            break;
        default: // Defaults and rules can't be made here, so none is there to be dropped.
            RequireExists(false, drop.if_exists, drop.kind == ast::ObjectKind::Default ? "default" : "rule",
                          name);
        }
    }
    session.results().Done(Command::None, std::nullopt);
}

void RunCreateType(SessionCore& session, const ast::CreateTypeStatement& create) {
    Catalogue& catalogue = session.databases().Current();
    UserTypeDef type;
    type.schema = create.name.parts.size() > 1 ? create.name.parts[0] : "dbo";
    type.name = create.name.last();
    RaiseIf(FindTypeId(type.name) || catalogue.FindType("", type.name), 219, {create.name.text()});
    bool base_nullable = true;
    Emission emission(session);
    type.type = Binder(session, emission).ResolveType(create.base, 1, nullptr, &base_nullable);
    type.nullable = create.nullable.value_or(base_nullable);
    session.transactions().Write(catalogue.alias(), [&] { catalogue.AddType(type); });
    session.results().Done(Command::None, std::nullopt);
}

// ------------------------------------------------------------------ triggers

std::int64_t TableOfTrigger(SessionCore& session, const ast::CreateModuleStatement& trigger,
                            std::string& schema) {
    const std::string_view word = trigger.alter ? "alter" : "create";
    RaiseIf(IsSessionTable(trigger.table.last()) || IsGlobalTable(trigger.table.last()), 40517,
            {"trigger on a temporary table"});
    const ObjectPlace place = PlaceOf(session, trigger.table);
    RaiseIf(CompareText(place.database, session.databases().CurrentName()) != 0, 2108,
            {word, trigger.table.text()});
    const ObjectDef table = Required(session.databases().Current().FindObject(place.schema, place.name), 8197,
                                     {trigger.table.text()}, 4);
    RaiseIf(table.type != "U", 8197, {trigger.table.text()}, 4);
    if (trigger.name.parts.size() < 2) {
        schema = table.schema;
    }
    RaiseIf(!SameText(schema, table.schema), 2103, {word, trigger.name.text()});
    return table.id;
}

void RunSwitchTriggers(SessionCore& session, const ast::SwitchTriggersStatement& triggers) {
    constexpr std::int32_t kOfAlterTable = 4920;
    Emission emission(session);
    const Target target =
        BindTargetAs(session, emission, triggers.table, triggers.missing == kOfAlterTable ? 4902 : 1088);
    RaiseIf(target.catalogue == nullptr, 40517, {"trigger on a temporary table"});
    session.transactions().Write(target.table->alias, [&] {
        for (const std::string& name : triggers.names) {
            bool found = name == "ALL";
            for (const TriggerDef& trigger : target.table->triggers) {
                if (name == "ALL" || CompareText(trigger.name, name) == 0) {
                    found = true;
                    target.catalogue->SetDisabled(trigger.id, !triggers.enable);
                }
            }
            RaiseIf(!found, triggers.missing, {name, triggers.table.text()});
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql
