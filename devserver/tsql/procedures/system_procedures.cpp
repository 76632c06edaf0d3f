// The system procedures on databases, objects, principals and dynamic SQL.
// Procedures that are T-SQL are in the .sql files of devserver/tsql/catalogue/.
#include "devserver/tsql/procedures/system_procedures.h"

#include <algorithm>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/procedures/procedure_table.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"
#include "devserver/tsql/session/server.h"

namespace devsql {

namespace {

// ------------------------------------------------------------------ dynamic SQL

std::string TextOf(const ActualArgument& argument) {
    return IsNull(argument.value) ? std::string() : ValueText(argument.value, argument.type);
}

/// Drivers declare a parameter with its type on the wire. The protocol hands times over as datetime
/// (tds/type_decoder.h), so time and datetimeoffset, which the server does not have, become datetime.
ast::TypeSpec ParameterType(const ast::TypeSpec& declared) {
    const std::string& name = declared.name.last();
    return AsciiEqual(name, "time") || AsciiEqual(name, "datetimeoffset")
               ? ast::TypeSpec{{{"datetime"}}, {}, {}, false}
               : declared;
}

/// sp_executesql and sp_prepare: runs `text` with the parameters that `declarations` declares. Their values
/// are the arguments from `first_value` on.
std::int32_t RunParameterized(SystemCall& call, const std::string& text, const std::string& declarations,
                              std::size_t first_value) {
    SessionCore& session = call.session();
    std::vector<ParameterDef> formal;
    for (const ast::Parameter& parameter : ParseParameters(declarations)) {
        ParameterDef definition;
        definition.name = parameter.name;
        Emission emission(session);
        definition.type = Binder(session, emission).ResolveType(ParameterType(parameter.type), 1);
        definition.output = parameter.output;
        formal.push_back(std::move(definition));
    }
    const std::vector<ActualArgument> values(
        call.actual().begin() + static_cast<std::ptrdiff_t>(std::min(first_value, call.actual().size())),
        call.actual().end());
    Frame frame;
    frame.database =
        session.calls().frame().database == session.databases().own() ? "" : session.calls().frame().database;
    const std::vector<std::size_t> positions = BindArguments(session, "sp_executesql", formal, values, frame);
    const std::string database = session.databases().own();
    call.interpreter().RunText(text, frame);
    if (session.databases().own() != database) {
        session.databases().Use(database);
    }
    call.outputs.resize(std::min(first_value, call.actual().size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ParameterDef& parameter = formal[positions[i]];
        call.outputs.push_back(values[i].output && parameter.output
                                   ? std::optional(frame.variables[ToUpper(parameter.name)])
                                   : std::nullopt);
    }
    return session.status().last_error;
}

std::int32_t ExecuteSql(SystemCall& call) {
    const std::vector<ActualArgument>& actual = call.actual();
    RaiseIf(actual.empty(), 201, {"sp_executesql", "@statement"}, 4);
    for (std::size_t i = 0; i < actual.size() && i < 2; ++i) {
        RaiseIf(!IsUnicode(actual[i].type.id) && !IsNull(actual[i].value), 214,
                {i == 0 ? "@statement" : "@parameters", "ntext/nchar/nvarchar"}, 2);
    }
    return RunParameterized(call, TextOf(actual[0]), actual.size() > 1 ? TextOf(actual[1]) : "", 2);
}

std::int32_t Prepare(SystemCall& call) {
    const std::vector<ActualArgument>& actual = call.actual();
    RaiseIf(actual.size() < 3, 201, {"sp_prepare", "@stmt"}, 4);
    const std::int32_t handle = call.session().prepared().Add({TextOf(actual[1]), TextOf(actual[2])});
    call.outputs.emplace_back(Variable{Simple(TypeId::Int), std::int64_t{handle}});
    return 0;
}

std::int32_t ExecutePrepared(SystemCall& call) {
    const std::vector<ActualArgument>& actual = call.actual();
    const std::int64_t handle =
        actual.empty() || IsNull(actual[0].value)
            ? 0
            : std::get<std::int64_t>(Convert(actual[0].value, actual[0].type, Simple(TypeId::BigInt)));
    const auto [declarations, text] = Required(
        call.session().prepared().Find(static_cast<std::int32_t>(handle)), 8179, {std::to_string(handle)}, 2);
    return RunParameterized(call, text, declarations, 1);
}

std::int32_t PrepareAndExecute(SystemCall& call) {
    const std::vector<ActualArgument>& actual = call.actual();
    RaiseIf(actual.size() < 3, 201, {"sp_prepexec", "@stmt"}, 4);
    const std::int32_t handle = call.session().prepared().Add({TextOf(actual[1]), TextOf(actual[2])});
    const std::int32_t status = RunParameterized(call, TextOf(actual[2]), TextOf(actual[1]), 3);
    call.outputs[0] = Variable{Simple(TypeId::Int), std::int64_t{handle}};
    return status;
}

std::int32_t Unprepare(SystemCall& call) {
    call.session().prepared().Remove(static_cast<std::int32_t>(call.Int("@handle")));
    return 0;
}

std::int32_t Execute(SystemCall& call) {
    call.interpreter().RunDynamic(call.Text("@statement"));
    return 0;
}

// ------------------------------------------------------------------ databases

std::int32_t DetachDb(SystemCall& call) {
    RaiseIf(call.IsNull("@dbname"), 15010, {"NULL"});
    DetachDatabase(call.session(), call.Text("@dbname"));
    return 0;
}

std::int32_t AttachDb(SystemCall& call) {
    std::vector<std::string> files;
    for (int i = 1; i <= 16; ++i) {
        if (std::string file = call.Text("@filename" + std::to_string(i)); !file.empty()) {
            files.push_back(std::move(file));
        }
    }
    AttachDatabase(call.session(), call.Text("@dbname"), files);
    return 0;
}

struct DbOption {
    std::string_view name;   ///< of sp_dboption
    std::string_view option; ///< of ALTER DATABASE
};
constexpr DbOption kDbOptions[] = {{"autoclose", "AUTO_CLOSE"},
                                   {"auto create statistics", "AUTO_CREATE_STATISTICS"},
                                   {"auto update statistics", "AUTO_UPDATE_STATISTICS"},
                                   {"autoshrink", "AUTO_SHRINK"},
                                   {"ANSI null default", "ANSI_NULL_DEFAULT"},
                                   {"ANSI nulls", "ANSI_NULLS"},
                                   {"ANSI warnings", "ANSI_WARNINGS"},
                                   {"arithabort", "ARITHABORT"},
                                   {"concat null yields null", "CONCAT_NULL_YIELDS_NULL"},
                                   {"cursor close on commit", "CURSOR_CLOSE_ON_COMMIT"},
                                   {"numeric roundabort", "NUMERIC_ROUNDABORT"},
                                   {"quoted identifier", "QUOTED_IDENTIFIER"},
                                   {"recursive triggers", "RECURSIVE_TRIGGERS"},
                                   {"torn page detection", "TORN_PAGE_DETECTION"},
                                   {"single user", "SINGLE_USER"},
                                   {"trunc. log on chkpt.", "RECOVERY"},
                                   {"select into/bulkcopy", "RECOVERY"}};

std::int32_t DbOptionProcedure(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string database = call.Text("@dbname");
    RaiseIf(call.IsNull("@optname") || call.IsNull("@optvalue"), 40517, {"sp_dboption without @optvalue"});
    RaiseIf(!FindDatabase(session.connection(), database), 15010, {database});
    const std::string name = call.Text("@optname");
    const auto* found = std::ranges::find_if(
        kDbOptions, [&](const DbOption& option) { return AsciiEqual(option.name, name); });
    RaiseIf(found == std::end(kDbOptions), 40517, {"sp_dboption '" + name + "'"});
    const std::string value = AsciiUpper(call.Text("@optvalue"));
    RaiseIf(value != "TRUE" && value != "FALSE" && value != "ON" && value != "OFF", 15241);
    const bool on = value == "TRUE" || value == "ON";
    if (found->option == "SINGLE_USER") {
        SetDatabaseOption(session, database, on ? "SINGLE_USER" : "MULTI_USER", "", false);
    } else if (found->option == "RECOVERY") {
        SetDatabaseOption(session, database, "RECOVERY", on ? "SIMPLE" : "FULL", false);
    } else {
        SetDatabaseOption(session, database, std::string(found->option), on ? "ON" : "OFF", false);
    }
    return 0;
}

// ------------------------------------------------------------------ objects and types

std::int32_t AddType(SystemCall& call) {
    ast::CreateTypeStatement create;
    create.name.parts = {call.Text("@typename")};
    create.base = ParseTypeSpec(call.Text("@phystype"));
    if (!call.IsNull("@nulltype")) {
        const std::string nulls = AsciiUpper(call.Text("@nulltype"));
        RaiseIf(nulls != "NULL" && nulls != "NOT NULL" && nulls != "NONULL", 15021, {"@nulltype"});
        create.nullable = nulls == "NULL";
    }
    RunCreateType(call.session(), create);
    return 0;
}

std::int32_t DropType(SystemCall& call) {
    ast::DropStatement drop{ast::ObjectKind::Type, {}, false};
    drop.names.push_back({{call.Text("@typename")}});
    RunDrop(call.session(), drop);
    return 0;
}

void RenameDatabase(SessionCore& session, const std::string& name, const std::string& new_name) {
    ast::AlterDatabaseStatement alter;
    alter.database = name;
    alter.new_name = new_name;
    alter.action = ast::AlterDatabaseAction::ModifyName;
    RunAlterDatabase(session, alter);
}

std::int32_t RenameDb(SystemCall& call) {
    RenameDatabase(call.session(), call.Text("@dbname"), call.Text("@newname"));
    return 0;
}

void RenameObject(Catalogue& catalogue, const ObjectDef& object, const std::string& new_name) {
    RaiseIf(catalogue.FindObject(object.schema, new_name).has_value(), 15335, {new_name, "OBJECT"});
    catalogue.RenameObject(object.id, new_name);
}

void RenameColumn(SessionCore& session, Catalogue& catalogue, const TablePtr& table, const std::string& name,
                  const std::string& new_name) {
    ColumnDef renamed = Required(table ? table->Find(name) : nullptr, 15248, {"COLUMN"});
    session.connection().Execute("ALTER TABLE " + table->Qualified() + " RENAME COLUMN " +
                                 QuoteName(renamed.name) + " TO " + QuoteName(new_name));
    renamed.name = new_name;
    catalogue.UpdateColumn(table->id, renamed);
}

void RenameIndex(Catalogue& catalogue, const TablePtr& table, const std::string& name,
                 const std::string& new_name) {
    const bool known =
        table && std::any_of(table->indexes.begin(), table->indexes.end(),
                             [&](const IndexDef& i) { return CompareText(i.name, name) == 0; });
    RaiseIf(!known, 15248, {"INDEX"});
    catalogue.Prepare("UPDATE {db}.devsql_indexes SET name = ?3 WHERE object = ?1 AND name = ?2")
        .BindInt(1, table->id)
        .BindText(2, name)
        .BindText(3, new_name)
        .Run();
    catalogue.Touch();
}

std::int32_t Rename(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string old_text = call.Text("@objname");
    const std::string new_name = call.Text("@newname");
    const std::string kind = AsciiUpper(call.Text("@objtype"));
    ast::Name name = ParseName(old_text);
    if (name.empty()) {
        RaiseError(15225, {old_text, session.databases().CurrentName(), kind.empty() ? "(null)" : kind});
    }
    if (kind == "DATABASE") {
        RenameDatabase(session, name.last(), new_name);
        return 0;
    }
    Catalogue& catalogue = session.databases().Current();
    std::string part;
    if (kind == "COLUMN" || kind == "INDEX") {
        part = name.last();
        name.parts.pop_back();
    }
    const std::optional<ObjectDef> object =
        name.empty() ? std::nullopt
                     : catalogue.FindObject(name.parts.size() > 1 ? name.parts[name.parts.size() - 2] : "dbo",
                                            name.last());
    if (!object) {
        RaiseError(part.empty() ? 15225 : 15248,
                   {part.empty() ? old_text : kind, session.databases().CurrentName(), "(null)"});
    }
    session.transactions().Write(catalogue.alias(), [&] {
        if (part.empty()) {
            RenameObject(catalogue, *object, new_name);
        } else if (kind == "COLUMN") {
            RenameColumn(session, catalogue, catalogue.LoadTable(object->id), part, new_name);
        } else {
            RenameIndex(catalogue, catalogue.LoadTable(object->id), part, new_name);
        }
    });
    session.results().Info(15477, {});
    return 0;
}

/// Sends the text in rows of at most 255 characters, each with its line end.
std::int32_t HelpText(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string text = call.Text("@objname");
    const ast::Name name = ParseName(text);
    RaiseIf(name.empty(), 15009, {text, session.databases().CurrentName()});
    const ObjectPlace place = PlaceOf(session, name);
    RaiseIf(CompareText(place.database, session.databases().CurrentName()) != 0, 15250);
    Catalogue& catalogue = session.databases().Current();
    std::optional<ObjectDef> object = catalogue.FindObject(place.schema, place.name);
    if (!object && ToLower(place.name).starts_with("sp_")) {
        object = session.databases().Get("master").FindObject("dbo", place.name);
    }
    if (!object) {
        RaiseError(15009, {text, session.databases().CurrentName()});
    }
    RaiseIf(object->text.empty(), 15197, {text});
    if (object->encrypted) {
        session.results().Info(15471, {text});
        return 0;
    }
    ProcedureTable table(session, {{"Text", Sized(TypeId::NVarChar, 255), true, false}});
    for (std::size_t begin = 0; begin < object->text.size();) {
        const std::size_t line =
            std::min(object->text.find('\n', begin), object->text.size() - 1) + 1 - begin;
        const std::string piece = SubText(object->text.substr(begin, line), 0, 255);
        table.Row({piece});
        begin += piece.size();
    }
    table.End();
    return 0;
}

// ------------------------------------------------------------------ principals

/// The login that an argument names. Raises 15007.
LoginInfo RequireLogin(SystemCall& call, const std::string& name) {
    return Required(FindLogin(call.session().connection(), name), 15007, {name});
}

std::int32_t Save(SystemCall& call, const LoginInfo& login) {
    call.session().transactions().Write("main", [&] { SaveLogin(call.session().connection(), login); });
    return 0;
}

std::int32_t AddLoginProcedure(SystemCall& call) {
    AddLogin(call.session(), call.Text("@loginame"), call.Text("@passwd"), call.Text("@defdb"));
    return 0;
}

std::int32_t DropLoginProcedure(SystemCall& call) {
    const LoginInfo login = RequireLogin(call, call.Text("@loginame"));
    DropPrincipal(call.session(), ast::ObjectKind::Login, login.name, false);
    return 0;
}

std::int32_t DefaultDb(SystemCall& call) {
    LoginInfo login = RequireLogin(call, call.Text("@loginame"));
    login.database = call.Text("@defdb");
    RaiseIf(!FindDatabase(call.session().connection(), login.database), 15010, {login.database});
    return Save(call, login);
}

std::int32_t GrantDbAccess(SystemCall& call) {
    AddUser(call.session(), call.Text("@loginame"), call.Text("@name_in_db"));
    return 0;
}

std::int32_t AddRoleProcedure(SystemCall& call) {
    AddRole(call.session(), call.Text("@rolename"));
    return 0;
}

std::int32_t RevokeDbAccess(SystemCall& call) {
    DropPrincipal(call.session(), ast::ObjectKind::User, call.Text("@name_in_db"), false);
    return 0;
}

std::int32_t DropRoleProcedure(SystemCall& call) {
    DropPrincipal(call.session(), ast::ObjectKind::Role, call.Text("@rolename"), false);
    return 0;
}

template <bool Add>
std::int32_t RoleMember(SystemCall& call) {
    SetRoleMember(call.session(), call.Text("@rolename"), call.Text("@membername"), Add);
    return 0;
}

std::int32_t AddServerRoleMember(SystemCall& call) {
    LoginInfo login = RequireLogin(call, call.Text("@loginame"));
    login.administrator = login.administrator || AsciiEqual(call.Text("@rolename"), "sysadmin");
    return Save(call, login);
}

std::int32_t ChangeDbOwner(SystemCall& call) {
    std::optional<DatabaseInfo> info =
        FindDatabase(call.session().connection(), call.session().databases().CurrentName());
    info->owner = call.Text("@loginame");
    RequireLogin(call, info->owner);
    UpdateDatabase(call.session().connection(), *info);
    return 0;
}

std::int32_t Configure(SystemCall& call) {
    if (!call.IsNull("@configname") && !AsciiEqual(call.Text("@configname"), "show advanced options")) {
        RaiseError(40517, {"sp_configure '" + call.Text("@configname") + "'"});
    }
    return 0;
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_executesql", ExecuteSql},
    {"sp_prepare", Prepare},
    {"sp_execute", ExecutePrepared},
    {"sp_prepexec", PrepareAndExecute},
    {"sp_unprepare", Unprepare},
    {"sp_sqlexec", Execute},
    {"sp_detach_db", DetachDb},
    {"sp_attach_db", AttachDb},
    {"sp_dboption", DbOptionProcedure},
    {"sp_renamedb", RenameDb},
    {"sp_addtype", AddType},
    {"sp_droptype", DropType},
    {"sp_rename", Rename},
    {"sp_helptext", HelpText},
    {"sp_addlogin", AddLoginProcedure},
    {"sp_droplogin", DropLoginProcedure},
    {"sp_defaultdb", DefaultDb},
    {"sp_grantdbaccess", GrantDbAccess},
    {"sp_adduser", GrantDbAccess},
    {"sp_revokedbaccess", RevokeDbAccess},
    {"sp_dropuser", RevokeDbAccess},
    {"sp_addrole", AddRoleProcedure},
    {"sp_droprole", DropRoleProcedure},
    {"sp_addrolemember", RoleMember<true>},
    {"sp_droprolemember", RoleMember<false>},
    {"sp_addsrvrolemember", AddServerRoleMember},
    {"sp_changedbowner", ChangeDbOwner},
    {"sp_configure", Configure},
};

} // namespace

std::span<const SystemProcedure> SystemProcedures() {
    return kProcedures;
}

} // namespace devsql
