#include "devserver/tsql/catalogue/system_views.h"

#include <array>

#include "devserver/storage/sqlite.h"
#include "devserver/tsql/catalogue/system_view_texts.h"
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

std::vector<SystemView> LoadViews() {
    std::vector<SystemView> views;
    for (const auto& sources : {SystemViewSources(), ServerViewSources(), ClientViewSources()}) {
        for (const SystemViewSource& source : sources) {
            views.push_back({source.schema, source.name, ParseColumns(source.columns), source.text});
        }
    }
    return views;
}

void Replace(std::string& text, std::string_view what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

/// Who is connected, as rows of a query.
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
    // SQLite keeps the numbers of T-SQL's types nowhere: they come as a list of rows.
    std::string types = "(VALUES";
    for (const SystemType& type : SystemTypes()) {
        types += (types.size() == 7 ? "" : ",");
        types += "(" + std::to_string(static_cast<int>(type.id)) + "," + QuoteText(type.name) + "," +
                 std::to_string(type.xtype) + "," + std::to_string(type.user_type) + "," +
                 std::to_string(type.tds_type) + "," + std::to_string(type.storage_length) + "," +
                 std::to_string(type.precision) + "," + std::to_string(type.odbc_type) + ")";
    }
    Replace(text, "{types}",
            "(SELECT column1 AS type, column2 AS type_name, column3 AS xtype, column4 AS usertype, column5 "
            "AS tds, "
            "column6 AS bytes, column7 AS digits, column8 AS odbc FROM " +
                types + "))");
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
