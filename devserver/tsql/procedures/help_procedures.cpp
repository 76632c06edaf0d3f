// The procedures by which people look around: sp_helpdb, sp_helpfile, sp_help, sp_who;
// and those that are accepted or refused whatever they are given.
#include <algorithm>

#include "devserver/storage/databases.h"
#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/procedures/catalogue_procedures.h"
#include "devserver/tsql/procedures/procedure_table.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

constexpr Type kSmallInt = Simple(TypeId::SmallInt);

// ------------------------------------------------------------------ databases

std::string DateText(std::int64_t ticks) {
    const CivilTime civil = ToCivil({static_cast<std::int32_t>(ticks / kTicksPerDay), 0});
    return std::string(MonthName(civil.month).substr(0, 3)) + (civil.day < 10 ? "  " : " ") +
           std::to_string(civil.day) + " " + std::to_string(civil.year);
}

std::string SizeText(const DatabaseInfo& info) {
    std::error_code error;
    std::uintmax_t bytes = 0;
    for (const DatabaseFile& file : info.files) {
        const std::uintmax_t size = std::filesystem::file_size(file.path, error);
        bytes += error ? 0 : size;
    }
    const std::uintmax_t hundredths = bytes * 100 / (1024 * 1024);
    std::string text = std::to_string(hundredths / 100) + "." + (hundredths % 100 < 10 ? "0" : "") +
                       std::to_string(hundredths % 100) + " MB";
    return std::string(13 - std::min<std::size_t>(13, text.size()), ' ') + text;
}

std::string StatusText(const DatabaseInfo& info) {
    std::string text = "Status=ONLINE, Updateability=READ_WRITE, UserAccess=";
    text += info.Option("SINGLE_USER") ? "SINGLE_USER" : "MULTI_USER";
    const auto recovery = info.options.find("RECOVERY");
    return text + ", Recovery=" + (recovery == info.options.end() ? "FULL" : recovery->second) +
           ", Version=539";
}

void FileRows(ProcedureTable& table, const DatabaseInfo& info) {
    for (const DatabaseFile& file : info.files) {
        table.Row({file.name, std::int64_t{file.id}, file.client_path, TextOrNull(file.file_group), file.size,
                   file.max_size, file.growth, std::string(file.log ? "log only" : "data only")});
    }
}

std::vector<Column> FileColumns() {
    return {{"name", kSysName, false, false},
            {"fileid", kSmallInt, true, false},
            {"filename", Sized(TypeId::NVarChar, 260), true, false},
            {"filegroup", kSysName, true, false},
            {"size", Sized(TypeId::NVarChar, 18), true, false},
            {"maxsize", Sized(TypeId::NVarChar, 18), true, false},
            {"growth", Sized(TypeId::NVarChar, 18), true, false},
            {"usage", Sized(TypeId::VarChar, 9), true, false}};
}

std::int32_t HelpDb(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string name = call.Text("@dbname");
    std::vector<DatabaseInfo> list = ListDatabases(session.connection());
    if (!name.empty()) {
        const std::optional<DatabaseInfo> info = FindDatabase(session.connection(), name);
        if (!info) {
            RaiseError(15010, {name});
        }
        list = {*info};
    }
    std::sort(list.begin(), list.end(),
              [](const DatabaseInfo& a, const DatabaseInfo& b) { return ToLower(a.name) < ToLower(b.name); });
    ProcedureTable table(session, {{"name", kSysName, true, false},
                                   {"db_size", Sized(TypeId::NVarChar, 13), true, false},
                                   {"owner", kSysName, true, false},
                                   {"dbid", kSmallInt, true, false},
                                   {"created", Sized(TypeId::NVarChar, 11), true, false},
                                   {"status", Sized(TypeId::NVarChar, 600), true, false},
                                   {"compatibility_level", Simple(TypeId::TinyInt), true, false}});
    for (const DatabaseInfo& info : list) {
        table.Row({info.name, SizeText(info), info.owner, std::int64_t{info.id}, DateText(info.created),
                   StatusText(info), std::int64_t{140}});
    }
    table.End();
    if (!name.empty()) {
        ProcedureTable files(session, FileColumns());
        FileRows(files, list[0]);
        files.End();
    }
    return 0;
}

std::int32_t HelpFile(SystemCall& call) {
    SessionCore& session = call.session();
    const DatabaseInfo info = *FindDatabase(session.connection(), session.databases().CurrentName());
    ProcedureTable table(session, FileColumns());
    if (call.IsNull("@filename")) {
        FileRows(table, info);
    } else {
        DatabaseInfo one = info;
        std::erase_if(one.files, [&](const DatabaseFile& f) {
            return Folded(f.name) != Folded(call.Text("@filename"));
        });
        if (one.files.empty()) {
            RaiseError(15325, {call.Text("@filename")});
        }
        FileRows(table, one);
    }
    table.End();
    return 0;
}

/// The sessions that sp_who's argument means: a login's, one by its number, 'active' ones, or all.
std::vector<DatabaseUsers::SessionInfo> SessionsMeant(SystemCall& call) {
    SessionCore& session = call.session();
    std::vector<DatabaseUsers::SessionInfo> list = session.server().users().Sessions();
    const std::string wanted = call.Text("@loginame");
    if (wanted.empty()) {
        return list;
    }
    if (CompareText(wanted, "active") == 0) { // A session that waits for its client is not.
        std::erase_if(list, [&](const DatabaseUsers::SessionInfo& info) { return info.id != session.id(); });
        return list;
    }
    const bool number = std::ranges::all_of(wanted, [](char c) { return c >= '0' && c <= '9'; });
    if (!number && !FindLogin(session.connection(), wanted)) {
        RaiseError(15007, {wanted});
    }
    std::erase_if(list, [&](const DatabaseUsers::SessionInfo& info) {
        return number ? std::to_string(info.id) != wanted : CompareText(info.login, wanted) != 0;
    });
    return list;
}

std::string DatabaseOf(SessionCore& session, const DatabaseUsers::SessionInfo& info) {
    const std::optional<DatabaseInfo> database = FindDatabase(session.connection(), info.database);
    return database ? database->name : "master";
}

std::int32_t Who(SystemCall& call) {
    SessionCore& session = call.session();
    const std::vector<DatabaseUsers::SessionInfo> list = SessionsMeant(call);
    ProcedureTable table(session, {{"spid", kSmallInt, true, false},
                                   {"ecid", kSmallInt, true, false},
                                   {"status", Sized(TypeId::NChar, 30), true, false},
                                   {"loginame", kSysName, true, false},
                                   {"hostname", Sized(TypeId::NChar, 128), true, false},
                                   {"blk", Sized(TypeId::Char, 5), true, false},
                                   {"dbname", kSysName, true, false},
                                   {"cmd", Sized(TypeId::NChar, 16), true, false}});
    for (const DatabaseUsers::SessionInfo& info : list) {
        const bool own = info.id == session.id();
        table.Row({std::int64_t{info.id}, std::int64_t{0}, std::string(own ? "runnable" : "sleeping"),
                   info.login, info.host, std::string("0"), DatabaseOf(session, info),
                   std::string(own ? "SELECT" : "AWAITING COMMAND")});
    }
    table.End();
    return 0;
}

std::int32_t Who2(SystemCall& call) {
    SessionCore& session = call.session();
    const std::vector<DatabaseUsers::SessionInfo> list = SessionsMeant(call);
    ProcedureTable table(session, {{"SPID", Sized(TypeId::Char, 5), true, false},
                                   {"Status", Sized(TypeId::NVarChar, 30), true, false},
                                   {"Login", kSysName, true, false},
                                   {"HostName", kSysName, true, false},
                                   {"BlkBy", Sized(TypeId::Char, 5), true, false},
                                   {"DBName", kSysName, true, false},
                                   {"Command", Sized(TypeId::NVarChar, 16), true, false},
                                   {"ProgramName", kSysName, true, false}});
    for (const DatabaseUsers::SessionInfo& info : list) {
        const bool own = info.id == session.id();
        table.Row({std::to_string(info.id), std::string(own ? "RUNNABLE" : "sleeping"), info.login, info.host,
                   std::string("  ."), DatabaseOf(session, info),
                   std::string(own ? "SELECT" : "AWAITING COMMAND"), info.application});
    }
    table.End();
    return 0;
}

std::int32_t CompatibilityLevel(SystemCall& call) {
    constexpr std::int64_t kLevels[] = {80, 90, 100, 110, 120, 130, 140};
    SessionCore& session = call.session();
    const std::string name =
        call.IsNull("@dbname") ? session.databases().CurrentName() : call.Text("@dbname");
    if (!FindDatabase(session.connection(), name)) {
        RaiseError(15010, {name});
    }
    if (call.IsNull("@new_cmptlevel")) {
        session.results().Info(15054, {"140"});
    } else if (std::ranges::find(kLevels, call.Int("@new_cmptlevel")) == std::end(kLevels)) {
        RaiseError(15048, {"80, 90, 100, 110, 120, 130, 140"});
    }
    return 0;
}

// ------------------------------------------------------------------ objects

/// The object that @objname names; 15009 if there is none.
ObjectDef NamedObject(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string name = call.Text("@objname");
    const ast::Name parsed = ParseName(name);
    const ObjectPlace place = parsed.empty() ? ObjectPlace{} : PlaceOf(session, parsed);
    const std::optional<ObjectDef> object =
        parsed.empty() ? std::nullopt : session.databases().Current().FindObject(place.schema, place.name);
    if (!object) {
        RaiseError(15009, {name, session.databases().CurrentName()});
    }
    return *object;
}

std::int32_t Help(SystemCall& call) {
    if (call.IsNull("@objname")) {
        call.Run(
            "SELECT o.name AS Name, 'dbo' AS Owner, CASE o.xtype WHEN 'U' THEN 'user table' WHEN 'V' THEN "
            "'view' "
            "WHEN 'P' THEN 'stored procedure' WHEN 'FN' THEN 'scalar function' WHEN 'PK' THEN 'primary key "
            "cns' WHEN 'UQ' THEN 'unique cns' "
            "WHEN 'F' "
            "THEN 'foreign key cns' WHEN 'C' THEN 'check cns' ELSE 'default (maybe cns)' END AS Object_type "
            "FROM sysobjects o ORDER BY Object_type, Name");
        return 0;
    }
    const ObjectDef object = NamedObject(call);
    const std::vector<std::string> values = {std::to_string(object.id)};
    call.Run("SELECT name AS Name, 'dbo' AS Owner, CASE xtype WHEN 'U' THEN 'user table' WHEN 'V' THEN "
             "'view' WHEN 'P' THEN "
             "'stored procedure' WHEN 'FN' THEN 'scalar function' ELSE 'constraint' END AS Type, crdate AS "
             "Created_datetime FROM sysobjects "
             "WHERE id = CONVERT(int, @p1)",
             values);
    if (object.type == "P" || object.type == "FN") {
        call.Run("SELECT c.name AS Parameter_name, t.name AS Type, c.length AS Length, c.prec AS Prec, "
                 "c.scale AS Scale, "
                 "c.colid AS Param_order, c.collation AS Collation FROM syscolumns c JOIN systypes t ON "
                 "t.xusertype = c.xusertype WHERE c.id = CONVERT(int, @p1) ORDER BY c.colid",
                 values);
        return 0;
    }
    call.Run("SELECT c.name AS Column_name, t.name AS Type, CASE c.iscomputed WHEN 1 THEN 'yes' ELSE 'no' "
             "END AS Computed, "
             "c.length AS Length, c.prec AS Prec, c.scale AS Scale, CASE c.isnullable WHEN 1 THEN 'yes' ELSE "
             "'no' END AS "
             "Nullable, c.collation AS Collation FROM syscolumns c JOIN systypes t ON t.xusertype = "
             "c.xusertype WHERE c.id = CONVERT(int, @p1) ORDER BY c.colorder",
             values);
    if (object.type != "U") {
        return 0;
    }
    call.Run(
        "SELECT name AS [Identity], IDENT_SEED(OBJECT_NAME(id)) AS Seed, IDENT_INCR(OBJECT_NAME(id)) AS "
        "Increment, 0 AS [Not For Replication] FROM syscolumns WHERE id = CONVERT(int, @p1) AND colstat "
        "& 1 = 1 UNION ALL SELECT N'No identity column defined.', NULL, NULL, NULL WHERE NOT EXISTS "
        "(SELECT * FROM syscolumns WHERE id = CONVERT(int, @p1) AND colstat & 1 = 1) "
        "SELECT name AS [RowGuidCol] FROM sys.columns WHERE object_id = CONVERT(int, @p1) AND is_rowguidcol "
        "= 1 "
        "UNION ALL SELECT N'No rowguidcol column defined.' WHERE NOT EXISTS (SELECT * FROM sys.columns WHERE "
        "object_id = CONVERT(int, @p1) AND is_rowguidcol = 1) SELECT N'PRIMARY' AS Data_located_on_filegroup",
        values);
    call.Run("EXEC sp_helpindex @p1 EXEC sp_helpconstraint @p1, 'nomsg'", {call.Text("@objname")});
    return 0;
}

/// What there is nothing to do for: options of storage and of statistics that this server has no use for.
std::int32_t Accept(SystemCall&) {
    return 0;
}

std::int32_t Refuse(SystemCall& call) {
    RaiseError(40510, {call.session().calls().frame().procedure});
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_helpdb", "@dbname sysname = NULL", HelpDb},
    {"sp_helpfile", "@filename sysname = NULL", HelpFile},
    {"sp_who", "@loginame sysname = NULL", Who},
    {"sp_who2", "@loginame sysname = NULL", Who2},
    {"sp_dbcmptlevel", "@dbname sysname = NULL, @new_cmptlevel int = NULL", CompatibilityLevel},
    {"sp_tableoption", "@TableNamePattern nvarchar(776), @OptionName varchar(35), @OptionValue varchar(12)",
     Accept},
    {"sp_indexoption", "@IndexNamePattern nvarchar(1035), @OptionName varchar(35), @OptionValue varchar(12)",
     Accept},
    {"sp_autostats", "@tblname nvarchar(776), @flagc varchar(10) = NULL, @indname sysname = NULL", Accept},
    {"sp_createstats", "...", Accept},
    {"sp_bindefault", "...", Refuse},
    {"sp_bindrule", "...", Refuse},
    {"sp_depends", "...", Refuse},
    {"sp_lock", "...", Refuse},
    {"sp_unbindefault", "...", Refuse},
    {"sp_unbindrule", "...", Refuse},
    {"sp_help", "@objname nvarchar(776) = NULL", Help},
};

} // namespace

std::span<const SystemProcedure> HelpProcedures() {
    return kProcedures;
}

} // namespace devsql
