// Functions and global variables whose value depends on the session, the server or the time.
#include <algorithm>
#include <array>
#include <random>

#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_function_parts.h"
#include "devserver/tsql/session/triggers.h"
#include "devserver/tsql/session/version.h"

namespace devsql {
namespace {

constexpr Type kInt = Simple(TypeId::Int);
constexpr Type kName = Sized(TypeId::NVarChar, 128);

// ------------------------------------------------------------------ databases and server

Value DbId(SessionCore& session, Values values, Types types) {
    const std::string name = values.empty() ? session.databases().CurrentName() : TextOf(values, types, 0);
    const std::optional<DatabaseInfo> info = FindDatabase(session.connection(), name);
    return info ? Value(std::int64_t{info->id}) : Value();
}

Value DbName(SessionCore& session, Values values, Types types) {
    if (values.empty()) {
        return session.databases().CurrentName();
    }
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    for (const DatabaseInfo& info : ListDatabases(session.connection())) {
        if (id && info.id == *id) {
            return info.name;
        }
    }
    return {};
}

/// Gives numbers as texts, since there is no sql_variant.
Value ServerProperty(SessionCore& session, Values values, Types types) {
    const std::string property = AsciiUpper(TextOf(values, types, 0));
    const std::string& server = session.server().name();
    const std::size_t slash = server.find('\\');
    if (property == "SERVERNAME") {
        return server;
    }
    if (property == "MACHINENAME" || property == "COMPUTERNAMEPHYSICALNETBIOS") {
        return server.substr(0, slash);
    }
    if (property == "INSTANCENAME") {
        return slash == std::string::npos ? Value() : Value(server.substr(slash + 1));
    }
    struct Property {
        std::string_view name;
        std::string_view value;
    };
    static constexpr std::array<Property, 12> kProperties = {{{"PRODUCTVERSION", kProductVersion},
                                                              {"PRODUCTLEVEL", "RTM"},
                                                              {"EDITION", "Development Server (SQLite)"},
                                                              {"ENGINEEDITION", "4"},
                                                              {"COLLATION", "SQL_Latin1_General_CP1_CI_AS"},
                                                              {"ISCLUSTERED", "0"},
                                                              {"ISFULLTEXTINSTALLED", "0"},
                                                              {"ISINTEGRATEDSECURITYONLY", "0"},
                                                              {"ISSINGLEUSER", "0"},
                                                              {"LICENSETYPE", "DISABLED"},
                                                              {"SQLCHARSETNAME", "iso_1"},
                                                              {"RESOURCEVERSION", kProductVersion}}};
    for (const Property& entry : kProperties) {
        if (entry.name == property) {
            return std::string(entry.value);
        }
    }
    return {};
}

/// The options of ALTER DATABASE that properties show.
constexpr std::pair<std::string_view, const char*> kOptionProperties[] = {
    {"ISANSINULLDEFAULT", "ANSI_NULL_DEFAULT"},
    {"ISANSINULLSENABLED", "ANSI_NULLS"},
    {"ISAUTOCLOSE", "AUTO_CLOSE"},
    {"ISAUTOCREATESTATISTICS", "AUTO_CREATE_STATISTICS"},
    {"ISAUTOSHRINK", "AUTO_SHRINK"},
    {"ISAUTOUPDATESTATISTICS", "AUTO_UPDATE_STATISTICS"},
    {"ISCLOSECURSORSONCOMMITENABLED", "CURSOR_CLOSE_ON_COMMIT"},
    {"ISPUBLISHED", "PUBLISHED"},
    {"ISQUOTEDIDENTIFIERSENABLED", "QUOTED_IDENTIFIER"},
    {"ISRECURSIVETRIGGERSENABLED", "RECURSIVE_TRIGGERS"},
    {"ISTORNPAGEDETECTIONENABLED", "TORN_PAGE_DETECTION"}};

Value DatabasePropertyEx(SessionCore& session, Values values, Types types) {
    const std::optional<DatabaseInfo> info = FindDatabase(session.connection(), TextOf(values, types, 0));
    if (!info) {
        return {};
    }
    const std::string property = AsciiUpper(TextOf(values, types, 1));
    const auto option = [&](const std::string& name, const std::string& otherwise) {
        const auto found = info->options.find(name);
        return found == info->options.end() ? otherwise : found->second;
    };
    const std::pair<std::string_view, std::string> properties[] = {
        {"STATUS", info->Option("OFFLINE") ? "OFFLINE" : "ONLINE"},
        {"COLLATION", option("COLLATE", "SQL_Latin1_General_CP1_CI_AS")},
        {"RECOVERY", option("RECOVERY", "FULL")},
        {"USERACCESS", info->Option("SINGLE_USER") ? "SINGLE_USER" : "MULTI_USER"},
        {"UPDATEABILITY", "READ_WRITE"},
        {"VERSION", "539"}};
    for (const auto& [name, value] : properties) {
        if (name == property) {
            return value;
        }
    }
    for (const auto& [name, shown] : kOptionProperties) {
        if (name == property) {
            return std::string(info->Option(shown) ? "1" : "0");
        }
    }
    return property.starts_with("IS") ? Value(std::string("0")) : Value();
}

Value HasDbAccess(SessionCore& session, Values values, Types types) {
    const std::optional<DatabaseInfo> info = FindDatabase(session.connection(), TextOf(values, types, 0));
    return info ? Value(std::int64_t{1}) : Value();
}

Value SuserSid(SessionCore& session, Values values, Types types) {
    const std::string name = values.empty() ? session.client().login : TextOf(values, types, 0);
    SqliteStatement row = session.connection().Prepare("SELECT sid FROM devsql_logins WHERE name = ?1");
    row.BindText(1, name);
    return row.Step() ? row.Column(0, Sized(TypeId::VarBinary, 85)) : Value();
}

Value SuserName(SessionCore& session, Values values, Types types) {
    if (values.empty() || types[0].id == TypeId::Int) {
        return session.client().login;
    }
    SqliteStatement row = session.connection().Prepare("SELECT name FROM devsql_logins WHERE sid = ?1");
    row.Bind(1, values[0], types[0]);
    return row.Step() ? Value(row.Text(0)) : Value();
}

std::string CurrentUser(SessionCore& session) {
    SqliteStatement row = session.databases().Current().Prepare(
        "SELECT name FROM {db}.devsql_users WHERE login = ?1 AND id > 4");
    row.BindText(1, session.client().login);
    return row.Step() ? row.Text(0) : "dbo";
}

Value UserName(SessionCore& session, Values values, Types types) {
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    if (!id) {
        return CurrentUser(session);
    }
    SqliteStatement row =
        session.databases().Current().Prepare("SELECT name FROM {db}.devsql_users WHERE id = ?1");
    row.BindInt(1, *id);
    return row.Step() ? Value(row.Text(0)) : Value();
}

Value UserId(SessionCore& session, Values values, Types types) {
    SqliteStatement row =
        session.databases().Current().Prepare("SELECT id FROM {db}.devsql_users WHERE name = ?1");
    row.BindText(1, values.empty() ? CurrentUser(session) : TextOf(values, types, 0));
    return row.Step() ? Value(row.Int(0)) : Value();
}

Value IsMember(SessionCore& session, Values values, Types types) {
    const std::string role = TextOf(values, types, 0);
    return std::int64_t{AsciiEqual(role, "db_owner") || AsciiEqual(role, "public") ||
                        AsciiEqual(role, "sysadmin")} |
           std::int64_t{!CurrentUser(session).empty() && AsciiEqual(role, "dbcreator")};
}

const Message* Caught(const SessionCore& session) {
    return session.status().caught.empty() ? nullptr : &session.status().caught.back();
}

template <auto Field>
Value OfCaught(SessionCore& session, Values, Types) {
    const Message* caught = Caught(session);
    return caught == nullptr ? Value() : Value(std::int64_t{caught->*Field});
}

constexpr std::int64_t kSysNameType = 256;

Value TypeIdOf(SessionCore& session, Values values, Types types) {
    const ast::Name name = ParseName(TextOf(values, types, 0));
    if (name.empty()) {
        return {};
    }
    if (AsciiEqual(name.last(), "sysname")) {
        return kSysNameType;
    }
    if (const std::optional<TypeId> id = FindTypeId(name.last())) {
        return std::int64_t{SystemTypeOf(*id).xtype};
    }
    SqliteStatement row =
        session.databases().Current().Prepare("SELECT rowid + 256 FROM {db}.devsql_types WHERE name = ?1");
    return row.BindText(1, name.last()).Step() ? Value(row.Int(0)) : Value();
}

Value TypeNameOf(SessionCore& session, Values values, Types types) {
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    if (id == kSysNameType) {
        return std::string("sysname");
    }
    if (id > kSysNameType) {
        SqliteStatement row = session.databases().Current().Prepare(
            "SELECT name FROM {db}.devsql_types WHERE rowid + 256 = ?1");
        return row.BindInt(1, *id).Step() ? Value(row.Text(0)) : Value();
    }
    for (const SystemType& type : SystemTypes()) {
        if (id && type.xtype == *id) {
            return std::string(type.name);
        }
    }
    return {};
}

Value LocalTime(SessionCore&, Values, Types) {
    return Now();
}

Value Utc(SessionCore&, Values, Types) {
    return UtcNow();
}

/// A random identifier, version 4.
Value NewId(SessionCore&, Values, Types) {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    Guid guid;
    for (std::uint8_t& byte : guid.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    guid.bytes[6] = static_cast<std::uint8_t>((guid.bytes[6] & 0x0F) | 0x40);
    guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3F) | 0x80);
    return guid;
}

// ------------------------------------------------------------------ the table

constexpr SessionFunction kFunctions[] = {
    {"GETDATE", 0, 0, Simple(TypeId::DateTime), LocalTime, true},
    {"CURRENT_TIMESTAMP", 0, 0, Simple(TypeId::DateTime), LocalTime, true},
    {"NOW", 0, 0, Simple(TypeId::DateTime), LocalTime, true},
    {"SYSDATETIME", 0, 0, Simple(TypeId::DateTime), LocalTime, true},
    {"SYSUTCDATETIME", 0, 0, Simple(TypeId::DateTime), Utc, true},
    {"GETUTCDATE", 0, 0, Simple(TypeId::DateTime), Utc, true},
    {"NEWID", 0, 0, Simple(TypeId::UniqueIdentifier), NewId, false},
    {"NEWSEQUENTIALID", 0, 0, Simple(TypeId::UniqueIdentifier), NewId, false},
    {"SCOPE_IDENTITY", 0, 0, DecimalType(38, 0),
     [](SessionCore& s, Values, Types) -> Value {
         return s.calls().frame().has_scope_identity ? Value(Decimal{s.calls().frame().scope_identity, 0})
                                                     : Value();
     },
     true},
    {"DB_ID", 0, 1, Simple(TypeId::SmallInt), DbId, false},
    {"DB_NAME", 0, 1, kName, DbName, false},
    {"SERVERPROPERTY", 1, 1, Sized(TypeId::NVarChar, 256), ServerProperty, false},
    {"DATABASEPROPERTYEX", 2, 2, Sized(TypeId::NVarChar, 256), DatabasePropertyEx, false},
    {"DATABASEPROPERTY", 2, 2, Sized(TypeId::NVarChar, 256), DatabasePropertyEx, false},
    {"FULLTEXTSERVICEPROPERTY", 1, 1, kInt,
     [](SessionCore&, Values, Types) -> Value { return std::int64_t{0}; }, true},
    {"HAS_DBACCESS", 1, 1, kInt, HasDbAccess, false},
    {"SUSER_SID", 0, 1, Sized(TypeId::VarBinary, 85), SuserSid, false},
    {"SUSER_NAME", 0, 1, kName, SuserName, false},
    {"SUSER_SNAME", 0, 1, kName, SuserName, false},
    {"ORIGINAL_LOGIN", 0, 0, kName, SuserName, true},
    {"SYSTEM_USER", 0, 0, kName, SuserName, true},
    {"USER_NAME", 0, 1, kName, UserName, false},
    {"USER", 0, 0, kName, UserName, true},
    {"CURRENT_USER", 0, 0, kName, UserName, true},
    {"SESSION_USER", 0, 0, kName, UserName, true},
    {"USER_ID", 0, 1, Simple(TypeId::SmallInt), UserId, false},
    {"SCHEMA_NAME", 0, 1, kName, [](SessionCore&, Values, Types) -> Value { return std::string("dbo"); },
     false},
    {"SCHEMA_ID", 0, 1, kInt, [](SessionCore&, Values, Types) -> Value { return std::int64_t{1}; }, false},
    {"IS_MEMBER", 1, 1, kInt, IsMember, false},
    {"IS_SRVROLEMEMBER", 1, 2, kInt, IsMember, false},
    {"PERMISSIONS", 0, 2, kInt, [](SessionCore&, Values, Types) -> Value { return std::int64_t{0x1F1F1F1F}; },
     false},
    {"HOST_NAME", 0, 0, kName, [](SessionCore& s, Values, Types) -> Value { return s.client().host_name; },
     true},
    {"APP_NAME", 0, 0, kName, [](SessionCore& s, Values, Types) -> Value { return s.client().application; },
     true},
    {"XACT_STATE", 0, 0, Simple(TypeId::SmallInt),
     [](SessionCore& s, Values, Types) -> Value {
         return std::int64_t{s.transactions().doomed() ? -1 : s.transactions().count() > 0 ? 1 : 0};
     },
     true},
    {"TYPE_ID", 1, 1, kInt, TypeIdOf, false},
    {"TYPE_NAME", 1, 1, kName, TypeNameOf, false},
    {"ERROR_NUMBER", 0, 0, kInt, OfCaught<&Message::number>, true},
    {"ERROR_SEVERITY", 0, 0, kInt, OfCaught<&Message::severity>, true},
    {"ERROR_STATE", 0, 0, kInt, OfCaught<&Message::state>, true},
    {"ERROR_LINE", 0, 0, kInt, OfCaught<&Message::line>, true},
    {"ERROR_MESSAGE", 0, 0, Sized(TypeId::NVarChar, 4000),
     [](SessionCore& s, Values, Types) -> Value { return Caught(s) ? Value(Caught(s)->text) : Value(); },
     true},
    {"ERROR_PROCEDURE", 0, 0, kName,
     [](SessionCore& s, Values, Types) -> Value {
         return Caught(s) && !Caught(s)->procedure.empty() ? Value(Caught(s)->procedure) : Value();
     },
     true},
};

struct GlobalEntry {
    std::string_view name;
    Type type;
    Value (*value)(SessionCore& session);
};

constexpr GlobalEntry kGlobals[] = {
    {"@@ERROR", kInt, [](SessionCore& s) -> Value { return std::int64_t{s.status().last_error}; }},
    {"@@ROWCOUNT", kInt, [](SessionCore& s) -> Value { return s.status().row_count; }},
    {"@@TRANCOUNT", kInt, [](SessionCore& s) -> Value { return std::int64_t{s.transactions().count()}; }},
    {"@@IDENTITY", DecimalType(38, 0, TypeId::Numeric),
     [](SessionCore& s) -> Value {
         return s.identities().last ? Value(Decimal{*s.identities().last, 0}) : Value();
     }},
    {"@@FETCH_STATUS", kInt, [](SessionCore& s) -> Value { return s.status().fetch_status; }},
    {"@@NESTLEVEL", kInt, [](SessionCore& s) -> Value { return std::int64_t{s.calls().nesting() - 1}; }},
    {"@@PROCID", kInt, [](SessionCore& s) -> Value { return s.calls().frame().procedure_id; }},
    {"@@SPID", Simple(TypeId::SmallInt), [](SessionCore& s) -> Value { return std::int64_t{s.id()}; }},
    {"@@SERVERNAME", kName, [](SessionCore& s) -> Value { return s.server().name(); }},
    {"@@SERVICENAME", kName, [](SessionCore&) -> Value { return std::string("MSSQLSERVER"); }},
    {"@@VERSION", Sized(TypeId::NVarChar, 300),
     [](SessionCore&) -> Value { return std::string(kVersionText); }},
    {"@@MICROSOFTVERSION", kInt, [](SessionCore&) -> Value { return std::int64_t{0x0E0003E8}; }},
    {"@@LANGUAGE", kName, [](SessionCore&) -> Value { return std::string("us_english"); }},
    {"@@LANGID", Simple(TypeId::SmallInt), [](SessionCore&) -> Value { return std::int64_t{0}; }},
    {"@@DATEFIRST", Simple(TypeId::TinyInt),
     [](SessionCore& s) -> Value { return std::int64_t{s.options().dates.first_day}; }},
    {"@@TEXTSIZE", kInt, [](SessionCore& s) -> Value { return s.options().textsize; }},
    {"@@LOCK_TIMEOUT", kInt, [](SessionCore& s) -> Value { return s.options().lock_timeout; }},
    {"@@MAX_PRECISION", Simple(TypeId::TinyInt), [](SessionCore&) -> Value { return std::int64_t{38}; }},
    {"@@MAX_CONNECTIONS", kInt, [](SessionCore&) -> Value { return std::int64_t{32767}; }},
    {"@@OPTIONS", kInt,
     [](SessionCore& s) -> Value {
         return std::int64_t{(s.options().nocount ? 512 : 0) | (s.options().quoted_identifier ? 256 : 0) |
                             (s.options().ansi_nulls ? 32 : 0) | (s.options().xact_abort ? 16384 : 0) | 4096};
     }},
    {"@@DBTS", Sized(TypeId::VarBinary, 8),
     [](SessionCore& s) -> Value {
         std::string bytes(8, '\0');
         auto number = static_cast<std::uint64_t>(s.databases().Current().LastTimestamp());
         for (std::size_t i = 8; i-- > 0; number >>= 8) {
             bytes[i] = static_cast<char>(number & 0xFF);
         }
         return Bytes{bytes};
     }},
};

} // namespace

const SessionFunction* FindSessionFunction(std::string_view name) {
    for (const std::span<const SessionFunction> list :
         {std::span<const SessionFunction>(kFunctions), ObjectFunctions(), TriggerFunctions()}) {
        const auto found = std::ranges::find(list, name, &SessionFunction::name);
        if (found != list.end()) {
            return &*found;
        }
    }
    return nullptr;
}

Variable GlobalVariable(SessionCore& session, std::string_view name) {
    for (const GlobalEntry& variable : kGlobals) {
        if (AsciiEqual(variable.name, name)) {
            return {variable.type, variable.value(session)};
        }
    }
    RaiseError(137, {name});
}

} // namespace devsql
