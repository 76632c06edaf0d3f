// sp_helpdb and sp_helpfile, which read the files of databases, and the procedures that this server refuses
// whatever their arguments are.
#include <algorithm>

#include "devserver/storage/databases.h"
#include "devserver/tsql/procedures/procedure_table.h"
#include "devserver/tsql/procedures/system_procedures.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"

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
        RaiseIf(one.files.empty(), 15325, {call.Text("@filename")});
        FileRows(table, one);
    }
    table.End();
    return 0;
}

std::int32_t Refuse(SystemCall& call) {
    RaiseError(40510, {call.session().calls().frame().procedure});
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_helpdb", HelpDb},
    {"sp_helpfile", HelpFile},
    {"sp_addlogreader_agent", Refuse},
    {"sp_addpushsubscription_agent", Refuse},
    {"sp_attach_single_file_db", Refuse},
    {"sp_bindefault", Refuse},
    {"sp_bindrule", Refuse},
    {"sp_changedistributor_password", Refuse},
    {"sp_depends", Refuse},
    {"sp_droparticle", Refuse},
    {"sp_dropdistpublisher", Refuse},
    {"sp_dropdistributiondb", Refuse},
    {"sp_dropsubscriber", Refuse},
    {"sp_get_distributor", Refuse},
    {"sp_helparticle", Refuse},
    {"sp_helpdistributor", Refuse},
    {"sp_helplinkedsrvlogin", Refuse},
    {"sp_helppublication", Refuse},
    {"sp_helpsubscription", Refuse},
    {"sp_lock", Refuse},
    {"sp_password", Refuse},
    {"sp_removedbreplication", Refuse},
    {"sp_settriggerorder", Refuse},
    {"sp_testlinkedserver", Refuse},
    {"sp_unbindefault", Refuse},
    {"sp_unbindrule", Refuse},
};

} // namespace

std::span<const SystemProcedure> HelpProcedures() {
    return kProcedures;
}

} // namespace devsql
