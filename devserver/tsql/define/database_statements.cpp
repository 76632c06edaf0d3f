// CREATE, ALTER and DROP DATABASE, sp_detach_db, sp_attach_db: databases as files.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "devserver/storage/paths.h"
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLogText = "Log file of a database of the development server. The data file holds "
                                      "the whole database, log included.\r\n";

/// The files that SQLite keeps next to an open database file.
constexpr std::array<std::string_view, 3> kCompanions = {"-wal", "-shm", "-journal"};

void RequireNoTransaction(SessionCore& session, std::string_view statement) {
    RaiseIf(session.transactions().count() > 0, 226, {statement});
}

bool IsSystemDatabase(std::string_view name) {
    return ListHas("master,model,msdb,tempdb", TrimTrailingBlanks(name));
}

DatabaseInfo RequireDatabase(SessionCore& session, const std::string& name, std::int32_t error) {
    return Required(FindDatabase(session.connection(), name), error, {name});
}

/// "20MB" becomes "20480 KB"; "10%" and "Unlimited" stay as they are.
std::string InKilobytes(const std::string& size, std::string_view fallback) {
    if (size.empty()) {
        return std::string(fallback);
    }
    if (size == "UNLIMITED") {
        return "Unlimited";
    }
    if (size.ends_with("%")) {
        return size;
    }
    const std::string unit = size.substr(size.size() - 2);
    const std::int64_t factor = unit == "KB"   ? 1
                                : unit == "MB" ? 1024
                                : unit == "GB" ? 1024 * 1024
                                               : 1024LL * 1024 * 1024;
    return std::to_string(std::stoll(size) * factor) + " KB";
}

/// The path of a new file. Raises 5133 if the folder does not exist, 5170 if the file already exists.
fs::path PlaceOfNewFile(SessionCore& session, const std::string& client_path) {
    const std::optional<fs::path> path = LocalPath(client_path, session.server().options().drives);
    std::error_code error;
    if (!path || !fs::is_directory(path->parent_path(), error)) {
        RaiseError(5133, {client_path, "2(The system cannot find the file specified.)"});
    }
    RaiseIf(fs::exists(*path, error), 5170, {client_path});
    return *path;
}

/// The files of the statement, or the default ones below the root.
std::vector<DatabaseFile> FilesOf(SessionCore& session, const ast::CreateDatabaseStatement& create) {
    const fs::path& root = session.server().options().root;
    std::vector<DatabaseFile> files;
    const auto add = [&](const ast::FileSpec& spec, bool log) {
        DatabaseFile file;
        file.log = log;
        const std::size_t ordinal = files.size() + 1;
        file.id = static_cast<int>(ordinal);
        file.name = !spec.name.empty() ? spec.name
                                       : create.name + (log             ? "_log"
                                                        : files.empty() ? ""
                                                                        : std::to_string(ordinal));
        file.client_path =
            !spec.path.empty() ? spec.path : Utf8(root / PathOf(create.name + (log ? "_log.ldf" : ".mdf")));
        file.path = PlaceOfNewFile(session, file.client_path);
        file.file_group = log ? "" : spec.file_group.empty() ? "PRIMARY" : spec.file_group;
        file.size = InKilobytes(spec.size, log ? "1024 KB" : "2048 KB");
        file.max_size = InKilobytes(spec.max_size, "Unlimited");
        file.growth = InKilobytes(spec.growth, log ? "10%" : "1024 KB");
        for (const DatabaseFile& other : files) {
            RaiseIf(SameText(other.name, file.name), 1828, {file.name});
            RaiseIf(other.path == file.path, 5104, {file.client_path});
        }
        files.push_back(std::move(file));
    };
    // File 1 is the primary data file and file 2 the log, as SQL Server numbers them.
    std::vector<ast::FileSpec> data = create.files;
    std::vector<ast::FileSpec> logs = create.logs;
    data.resize(std::max<std::size_t>(1, data.size()));
    logs.resize(std::max<std::size_t>(1, logs.size()));
    add(data[0], false);
    add(logs[0], true);
    for (std::size_t i = 1; i < data.size(); ++i) {
        add(data[i], false);
    }
    for (std::size_t i = 1; i < logs.size(); ++i) {
        add(logs[i], true);
    }
    return files;
}

void WriteLogFile(const DatabaseFile& file) {
    std::ofstream out(file.path, std::ios::binary);
    out << kLogText;
    if (!out.flush()) {
        RaiseError(5123, {std::to_string(errno), file.client_path});
    }
}

void MakeDataFile(const DatabaseFile& file) {
    try {
        SqliteConnection connection(file.path);
        connection.Execute("BEGIN IMMEDIATE");
        Catalogue(connection, "main").Create();
        connection.Execute("COMMIT");
    } catch (const StorageError& error) {
        RaiseError(5123, {error.what(), file.client_path});
    }
}

void RemoveFiles(const std::vector<DatabaseFile>& files) {
    std::error_code ignored;
    for (const DatabaseFile& file : files) {
        fs::remove(file.path, ignored);
        for (const std::string_view companion : kCompanions) {
            fs::remove(PathOf(Utf8(file.path) + std::string(companion)), ignored);
        }
    }
}

/// True for a database file of this server.
bool IsDatabaseFile(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return false;
    }
    try {
        SqliteConnection connection(path);
        SqliteStatement row = connection.Prepare("SELECT count(*) FROM devsql_settings");
        return row.Step();
    } catch (const StorageError&) {
        return false;
    }
}

enum class Others : std::uint8_t { Refuse, End };

/// Keeps other sessions out of a database while it changes. Raises `refusal` if another session uses it.
class Exclusive {
  public:
    Exclusive(SessionCore& session, int database, Others others, const SqlError& refusal)
        : users_(session.server().users()), database_(database) {
        if (others == Others::End) {
            users_.CloseAndEndOthers(database_, session);
        } else if (!users_.Close(database_, session)) {
            throw refusal;
        }
    }
    ~Exclusive() { users_.Reopen(database_); }
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;

  private:
    DatabaseUsers& users_;
    int database_;
};

/// Releases the session's own use of a database that will be removed. Raises `refusal` if it is the current
/// one.
void LetGo(SessionCore& session, const DatabaseInfo& info, const SqlError& refusal) {
    if (SameText(session.databases().CurrentName(), info.name) ||
        SameText(session.databases().own(), info.name)) {
        throw refusal;
    }
    session.databases().Release(info.name);
}

/// Writes the write-ahead log back into the file. SQLite does that when the last connection closes, but not
/// when two close at the same moment.
void SettleFile(const DatabaseInfo& info) {
    if (std::error_code error; fs::exists(info.DataFile().path, error)) {
        SqliteConnection last(info.DataFile().path);
        last.Execute("PRAGMA wal_checkpoint(TRUNCATE)");
    }
}

/// Raises 3724 for a published database.
void RequireUnpublished(const DatabaseInfo& info, std::string_view verb) {
    RaiseIf(info.Option("PUBLISHED") || info.Option("DISTRIBUTOR"), 3724, {verb, "database", info.name});
}

/// A file of a database, as KeepFileNames has stored it.
struct KeptFile {
    std::string name;
    std::string file; ///< its name on disk, without the folder
    std::string group;
    bool log = false;
};

std::string NameOnDisk(const DatabaseFile& file) {
    return file.path.filename().string();
}

std::vector<KeptFile> ReadKept(const DatabaseFile& data_file) {
    SqliteConnection connection(data_file.path);
    SqliteStatement row = connection.Prepare(
        "SELECT json_extract(value, '$[0]'), json_extract(value, '$[1]'), json_extract(value, '$[2]'), "
        "json_extract(value, '$[3]') FROM devsql_settings WHERE name LIKE 'file:%' ORDER BY name");
    std::vector<KeptFile> kept;
    while (row.Step()) {
        kept.push_back({row.Text(0), row.Text(1), row.Text(2), row.Int(3) != 0});
    }
    return kept;
}

/// Stores the logical names of the files in the data file, so that they are restored when it is attached
/// anywhere. No other connection may have the file open.
void KeepFileNames(const DatabaseInfo& database) {
    SqliteConnection connection(database.DataFile().path);
    connection.Execute("DELETE FROM devsql_settings WHERE name LIKE 'file:%'");
    for (const DatabaseFile& file : database.files) {
        connection.Prepare("INSERT INTO devsql_settings(name, value) VALUES(?1, json_array(?2, ?3, ?4, ?5))")
            .BindText(1, "file:" + std::to_string(1000 + file.id)) // so that they sort by number
            .BindText(2, file.name)
            .BindText(3, NameOnDisk(file))
            .BindText(4, file.file_group)
            .BindInt(5, file.log ? 1 : 0)
            .Run();
    }
}

/// Gives the files of a database that is being attached the names, kinds and file groups that they had. The
/// first of them is the data file.
void RestoreFileNames(DatabaseInfo& database) {
    const std::vector<KeptFile> kept = ReadKept(database.files[0]);
    for (std::size_t i = 0; i < database.files.size(); ++i) {
        DatabaseFile& file = database.files[i];
        auto found = std::find_if(kept.begin(), kept.end(), [&](const KeptFile& candidate) {
            return SameText(candidate.file, NameOnDisk(file));
        });
        if (found == kept.end() && i < kept.size() && kept.size() == database.files.size()) {
            found = kept.begin() + static_cast<std::ptrdiff_t>(i); // A copied file may have another name.
        }
        if (found != kept.end()) {
            file.name = found->name;
            file.log = found->log;
            file.file_group = found->group;
        }
    }
}

} // namespace

void RunCreateDatabase(SessionCore& session, const ast::CreateDatabaseStatement& create) {
    RequireNoTransaction(session, "CREATE DATABASE");
    const DatabaseUsers::ListTurn turn(session);
    RaiseIf(FindDatabase(session.connection(), create.name).has_value(), 1801, {create.name}, 3);
    if (create.attach) {
        std::vector<std::string> files;
        for (const std::vector<ast::FileSpec>* list : {&create.files, &create.logs}) {
            for (const ast::FileSpec& file : *list) {
                files.push_back(file.path);
            }
        }
        AttachDatabase(session, create.name, files);
        session.results().Done(Command::None, std::nullopt);
        return;
    }
    DatabaseInfo info;
    info.name = create.name;
    info.owner = session.client().login;
    info.options["RECOVERY"] = "FULL";
    try {
        info.files = FilesOf(session, create);
    } catch (const SqlError& error) {
        session.results().Print({error.number(), error.severity(), error.state(), error.text(),
                                 session.calls().frame().procedure, session.status().line});
        RaiseError(1802, {}, 4);
    }
    try {
        MakeDataFile(info.files[0]);
        for (std::size_t i = 1; i < info.files.size(); ++i) {
            WriteLogFile(info.files[i]);
        }
        AddDatabase(session.connection(), info);
    } catch (...) {
        RemoveFiles(info.files);
        throw;
    }
    session.results().Done(Command::None, std::nullopt);
}

void DropDatabase(SessionCore& session, const std::string& name, bool if_exists) {
    RequireNoTransaction(session, "DROP DATABASE");
    const DatabaseUsers::ListTurn turn(session);
    const std::optional<DatabaseInfo> info = FindDatabase(session.connection(), name);
    if (!info) {
        if (if_exists) {
            return;
        }
        RaiseError(3701, {"drop", "database", name});
    }
    RaiseIf(IsSystemDatabase(name), 3708, {"drop", "database", name, "database"});
    RequireUnpublished(*info, "drop");
    const SqlError in_use = ErrorOf(3702, {info->name});
    LetGo(session, *info, in_use);
    const Exclusive exclusive(session, info->id, Others::Refuse, in_use);
    RemoveDatabase(session.connection(), info->id);
    RemoveFiles(info->files);
}

void DetachDatabase(SessionCore& session, const std::string& name) {
    RequireNoTransaction(session, "sp_detach_db");
    const DatabaseUsers::ListTurn turn(session);
    const DatabaseInfo info = RequireDatabase(session, name, 15010);
    RaiseIf(IsSystemDatabase(name), 3708, {"detach", "database", name, "database"});
    RequireUnpublished(info, "detach");
    const SqlError in_use = ErrorOf(3703, {"database", info.name});
    LetGo(session, info, in_use);
    const Exclusive exclusive(session, info.id, Others::Refuse, in_use);
    if (std::error_code error; fs::exists(info.DataFile().path, error)) {
        KeepFileNames(info);
    }
    SettleFile(info);
    RemoveDatabase(session.connection(), info.id);
}

namespace {

/// Raises 5104 for a file of an existing database, before it is opened.
void RequireFree(SessionCore& session, const fs::path& path, const std::string& client_path) {
    std::error_code error;
    for (const DatabaseInfo& other : ListDatabases(session.connection())) {
        for (const DatabaseFile& file : other.files) {
            RaiseIf(fs::equivalent(file.path, path, error), 5104, {client_path});
        }
    }
}

} // namespace

void AttachDatabase(SessionCore& session, const std::string& name, const std::vector<std::string>& paths) {
    RequireNoTransaction(session, "sp_attach_db");
    const DatabaseUsers::ListTurn turn(session);
    RaiseIf(FindDatabase(session.connection(), name).has_value(), 1801, {name}, 3);
    RaiseIf(paths.empty() || paths[0].empty(), 1829);
    DatabaseInfo info;
    info.name = name;
    info.owner = session.client().login;
    info.options["RECOVERY"] = "FULL";
    for (const std::string& client_path : paths) {
        DatabaseFile file;
        const std::optional<fs::path> path = LocalPath(client_path, session.server().options().drives);
        std::error_code error;
        if (!path || !fs::is_regular_file(*path, error)) {
            RaiseError(5120, {client_path, "2", "The system cannot find the file specified."});
        }
        RequireFree(session, *path, client_path);
        file.id = static_cast<int>(info.files.size() + 1);
        file.path = *path;
        file.client_path = client_path;
        file.log = !IsDatabaseFile(*path);
        file.name = Utf8(path->stem());
        file.file_group = file.log ? "" : "PRIMARY";
        file.size = std::to_string(std::max<std::uintmax_t>(1, fs::file_size(*path, error) / 1024)) + " KB";
        file.max_size = "Unlimited";
        file.growth = "10%";
        info.files.push_back(std::move(file));
    }
    RaiseIf(info.files[0].log, 1813, {name});
    RestoreFileNames(info);
    if (info.files.size() == 1) { // SQL Server makes a new log if none is given.
        DatabaseFile log = info.files[0];
        log.id = 2;
        log.log = true;
        log.name = name + "_log";
        log.path = info.files[0].path.parent_path() / (name + "_log.ldf");
        log.client_path =
            info.files[0].client_path.substr(0, info.files[0].client_path.find_last_of("/\\") + 1) + name +
            "_log.ldf";
        log.file_group.clear();
        WriteLogFile(log);
        info.files.push_back(std::move(log));
    }
    AddDatabase(session.connection(), info);
}

// ------------------------------------------------------------------ ALTER DATABASE

namespace {

void ModifyFile(SessionCore& session, DatabaseInfo info, const ast::AlterDatabaseStatement& alter) {
    const auto file = std::find_if(info.files.begin(), info.files.end(), [&](const DatabaseFile& candidate) {
        return SameText(candidate.name, alter.file.name);
    });
    if (file == info.files.end()) {
        RaiseError(5041, {alter.file.name});
    }
    const ast::FileSpec& spec = alter.file;
    if (!spec.new_name.empty()) {
        for (const DatabaseFile& other : info.files) {
            RaiseIf(other.id != file->id && SameText(other.name, spec.new_name), 1828, {spec.new_name});
        }
        file->name = spec.new_name;
        session.results().Print({5021, 0, 1, "The file name '" + spec.new_name + "' has been set.",
                                 session.calls().frame().procedure, session.status().line});
    }
    file->size = InKilobytes(spec.size, file->size);
    file->max_size = InKilobytes(spec.max_size, file->max_size);
    file->growth = InKilobytes(spec.growth, file->growth);
    UpdateDatabase(session.connection(), info);
}

void ModifyName(SessionCore& session, DatabaseInfo info, const std::string& new_name) {
    RaiseIf(IsSystemDatabase(info.name), 3708, {"rename", "database", info.name, "database"});
    const std::optional<DatabaseInfo> other = FindDatabase(session.connection(), new_name);
    RaiseIf(other && other->id != info.id, 1801, {new_name}, 3);
    const SqlError in_use = ErrorOf(5030, {info.name});
    LetGo(session, info, in_use);
    const Exclusive exclusive(session, info.id, Others::Refuse, in_use);
    info.name = new_name;
    UpdateDatabase(session.connection(), info);
    session.results().Print({5018, 0, 1, "The database name '" + new_name + "' has been set.",
                             session.calls().frame().procedure, session.status().line});
}

/// The options that are stored and shown. Only RECURSIVE_TRIGGERS has an effect (IsOwnFiring).
constexpr std::string_view kOptions =
    "RECOVERY,AUTO_SHRINK,AUTO_CLOSE,AUTO_CREATE_STATISTICS,AUTO_UPDATE_STATISTICS,TORN_PAGE_DETECTION,"
    "PAGE_VERIFY,ANSI_NULL_DEFAULT,ANSI_NULLS,ANSI_PADDING,ANSI_WARNINGS,ARITHABORT,"
    "CONCAT_NULL_YIELDS_NULL,NUMERIC_ROUNDABORT,QUOTED_IDENTIFIER,RECURSIVE_TRIGGERS,"
    "CURSOR_CLOSE_ON_COMMIT,CURSOR_DEFAULT,DB_CHAINING,TRUSTWORTHY,COMPATIBILITY_LEVEL,"
    "ALLOW_SNAPSHOT_ISOLATION,READ_COMMITTED_SNAPSHOT,PARAMETERIZATION,AUTO_UPDATE_STATISTICS_ASYNC,"
    "DATE_CORRELATION_OPTIMIZATION,HONOR_BROKER_PRIORITY,DISABLE_BROKER,TARGET_RECOVERY_TIME,"
    "DELAYED_DURABILITY,MIXED_PAGE_ALLOCATION";

/// No session uses an offline database, so its files can be copied.
void SetOffline(SessionCore& session, const DatabaseInfo& info, bool offline, Others others) {
    if (!offline) {
        StoreOption(session.connection(), info.id, "OFFLINE", "OFF");
        return;
    }
    RaiseIf(IsSystemDatabase(info.name), 5058, {"OFFLINE", info.name});
    const SqlError in_use = ErrorOf(5070, {info.name});
    LetGo(session, info, in_use);
    const Exclusive exclusive(session, info.id, others, in_use);
    SettleFile(info);
    StoreOption(session.connection(), info.id, "OFFLINE", "ON");
}

void SetSingleUser(SessionCore& session, const DatabaseInfo& info, bool single, Others others) {
    if (!single) {
        StoreOption(session.connection(), info.id, "SINGLE_USER", "OFF");
        return;
    }
    RaiseIf(IsSystemDatabase(info.name), 5058, {"SINGLE_USER", info.name});
    const Exclusive exclusive(session, info.id, others, ErrorOf(5070, {info.name}));
    StoreOption(session.connection(), info.id, "SINGLE_USER", "ON");
}

void ChangeOwner(SessionCore& session, DatabaseInfo info, const std::string& login) {
    RaiseIf(!FindLogin(session.connection(), login), 15151, {"find", "principal", login});
    info.owner = login;
    UpdateDatabase(session.connection(), info);
}

} // namespace

void SetDatabaseOption(SessionCore& session, const std::string& database, const std::string& option,
                       const std::string& value, bool rollback_immediate) {
    RequireNoTransaction(session, "ALTER DATABASE");
    const DatabaseUsers::ListTurn turn(session);
    const DatabaseInfo info = RequireDatabase(session, database, 5011);
    const Others others = rollback_immediate ? Others::End : Others::Refuse;
    if (option == "SINGLE_USER" || option == "MULTI_USER" || option == "RESTRICTED_USER") {
        SetSingleUser(session, info, option == "SINGLE_USER", others);
        return;
    }
    if (option == "OFFLINE" || option == "ONLINE") {
        SetOffline(session, info, option == "OFFLINE", others);
        return;
    }
    if (option == "READ_WRITE" || (option == "FILESTREAM" && value == "OFF")) {
        return; // Every database is read-write.
    }
    if (option == "COLLATE" || ListHas(kOptions, option)) {
        StoreOption(session.connection(), info.id, option, value);
        return;
    }
    RaiseError(40517, {option});
}

void RunAlterDatabase(SessionCore& session, const ast::AlterDatabaseStatement& alter) {
    RequireNoTransaction(session, "ALTER DATABASE");
    const DatabaseUsers::ListTurn turn(session);
    const std::string& name = alter.database.empty() ? session.databases().CurrentName() : alter.database;
    switch (alter.action) {
    case ast::AlterDatabaseAction::ModifyName:
        ModifyName(session, RequireDatabase(session, name, 5011), alter.new_name);
        break;
    case ast::AlterDatabaseAction::ModifyFile:
        ModifyFile(session, RequireDatabase(session, name, 5011), alter);
        break;
    case ast::AlterDatabaseAction::Owner:
        ChangeOwner(session, RequireDatabase(session, name, 5011), alter.new_name);
        break;
    case ast::AlterDatabaseAction::Set:
        for (const auto& [option, value] : alter.options) {
            SetDatabaseOption(session, name, option, value, alter.rollback_immediate);
        }
        break;
    }
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql
