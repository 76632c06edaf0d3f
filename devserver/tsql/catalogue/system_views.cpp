// Loads the catalogue's views from the embedded .sql files, and writes them as queries over one database.
#include "devserver/tsql/catalogue/system_views.h"

#include "devserver/storage/sqlite.h"
#include "devserver/tsql/catalogue/embedded_sql.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"
#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_core.h"
#include "devserver/tsql/session/user_messages.h"

namespace devsql {
namespace {

/// "name sysname, id int": names and types.
std::vector<SystemColumn> ParseColumns(std::string_view text) {
    std::vector<SystemColumn> columns;
    // The grammar of parameters without their "@".
    std::string parameters;
    bool at_name = true;
    int depth = 0;
    for (const char c : text) {
        if (at_name && c != ' ' && c != '\n') {
            parameters += '@';
            at_name = false;
        }
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        at_name = at_name || (c == ',' && depth == 0);
        parameters += c;
    }
    for (const ast::Parameter& parameter : ParseParameters(parameters)) {
        const std::string& name = parameter.type.name.last();
        const Type type = AsciiEqual(name, "sysname")
                              ? Sized(TypeId::NVarChar, 128)
                              : DeclaredType(*FindTypeId(name), parameter.type.first, parameter.type.second,
                                             parameter.type.max, 1);
        columns.push_back({parameter.name.substr(1), type});
    }
    return columns;
}

void Replace(std::string& text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

/// A name that the queries use, and the text that replaces it: "DEFINE {name} AS" and the text.
struct Fragment {
    std::string name;
    std::string text;
};

std::vector<Fragment> LoadFragments() {
    std::vector<Fragment> fragments;
    for (const std::string_view batch : embedded::Batches(embedded::kFragments)) {
        const std::string_view definition = embedded::After("DEFINE ", batch);
        const std::size_t end = definition.find(" AS\n");
        fragments.push_back(
            {std::string(definition.substr(0, end)), std::string(definition.substr(end + 4))});
    }
    return fragments;
}

/// "CREATE VIEW schema.name (columns) AS query". A fragment may name those before it.
SystemView LoadView(std::string_view batch, const std::vector<Fragment>& fragments) {
    constexpr std::string_view kColumnsBegin = " (\n";
    constexpr std::string_view kColumnsEnd = "\n) AS\n";
    const std::string_view view = embedded::After("CREATE VIEW ", batch);
    const std::size_t begin = view.find(kColumnsBegin);
    const std::size_t end = view.find(kColumnsEnd);
    const std::string_view name = view.substr(0, begin);
    const std::size_t dot = name.find('.');
    std::string text(view.substr(end + kColumnsEnd.size()));
    for (auto fragment = fragments.rbegin(); fragment != fragments.rend(); ++fragment) {
        Replace(text, fragment->name, fragment->text);
    }
    return {dot == std::string_view::npos ? std::string_view() : name.substr(0, dot),
            name.substr(dot == std::string_view::npos ? 0 : dot + 1),
            ParseColumns(view.substr(begin + kColumnsBegin.size(), end - begin - kColumnsBegin.size())),
            text};
}

std::vector<SystemView> LoadViews() {
    const std::vector<Fragment> fragments = LoadFragments();
    std::vector<SystemView> views;
    for (const std::string_view file : {embedded::kSystemTables, embedded::kSysViews,
                                        embedded::kInformationSchema, embedded::kServerViews}) {
        for (const std::string_view batch : embedded::Batches(file)) {
            views.push_back(LoadView(batch, fragments));
        }
    }
    return views;
}

/// The connected clients, as rows of a query.
std::string SessionRows(SessionCore& session) {
    std::string rows =
        "(SELECT column1 AS id, column2 AS login, column3 AS host, column4 AS program, column5 AS "
        "database, column6 AS own, column7 AS isolation FROM (VALUES";
    for (const DatabaseUsers::SessionInfo& info : session.server().users().Sessions()) {
        rows += (rows.ends_with("VALUES") ? "(" : ",(") + std::to_string(info.id) + "," +
                QuoteText(info.login) + "," + QuoteText(info.host) + "," + QuoteText(info.application) + "," +
                QuoteText(info.database) + "," + (info.id == session.id() ? "1" : "0") + "," +
                std::to_string(info.isolation_level) + ")";
    }
    return rows + "))";
}

/// The server's types, which SQLite does not store.
std::string TypeRows() {
    std::string rows = "(VALUES";
    char separator = ' ';
    int position = 0;
    for (const SystemType& type : SystemTypes()) {
        rows += separator + ("(" + std::to_string(static_cast<int>(type.id)) + "," + QuoteText(type.name));
        for (const int number : {int{type.xtype}, int{type.user_type}, int{type.tds_type},
                                 int{type.storage_length}, int{type.precision}, int{type.odbc_type}}) {
            rows += "," + std::to_string(number);
        }
        for (const std::string_view text :
             {type.literal_prefix, type.literal_suffix, type.create_parameters}) {
            rows += "," + QuoteText(std::string(text));
        }
        rows += "," + std::to_string(position++) + ")";
        separator = ',';
    }
    return rows + ")";
}

} // namespace

const SystemView* FindSystemView(std::string_view schema, std::string_view name) {
    static const std::vector<SystemView> views = LoadViews();
    const bool any_owner = schema.empty() || AsciiEqual(schema, "dbo") || AsciiEqual(schema, "sys");
    for (const SystemView& view : views) {
        if (AsciiEqual(view.name, name) &&
            (view.schema.empty() ? any_owner : AsciiEqual(view.schema, schema))) {
            return &view;
        }
    }
    return nullptr;
}

std::string SystemViewText(const SystemView& view, SessionCore& session, const std::string& database) {
    std::string text(view.text);
    Replace(text, "{type_rows}", TypeRows());
    if (text.find("{sessions}") != std::string::npos) {
        Replace(text, "{sessions}", SessionRows(session));
    }
    if (text.find("{messages}") != std::string::npos) {
        Replace(text, "{messages}", MessageRows());
    }
    Replace(text, "{db}", QuoteName(session.databases().Get(database).alias()));
    Replace(text, "{name}", QuoteText(database));
    return text;
}

} // namespace devsql
