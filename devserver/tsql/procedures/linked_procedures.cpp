// The system procedures that define linked servers, their logins and their options.
#include "devserver/tsql/procedures/system_procedures.h"

#include <algorithm>

#include "devserver/storage/databases.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"

namespace devsql {

namespace embedded { // The .sql files of this folder.
extern const std::string_view kHelpServer;
extern const std::string_view kListLinkedServers;
} // namespace embedded

namespace {

constexpr std::string_view kOwnProduct = "SQL Server";
constexpr std::string_view kOwnProvider = "SQLOLEDB";

/// Providers of SQL Server. The server cannot reach data of any other provider.
constexpr std::string_view kProviders = "SQLOLEDB,SQLNCLI,SQLNCLI10,SQLNCLI11,MSOLEDBSQL,MSDASQL";

void RequireNoTransaction(SystemCall& call, std::string_view procedure) {
    RaiseIf(call.session().transactions().count() > 0, 15002, {procedure});
}

LinkedLogins Logins(SystemCall& call) {
    return call.session().remote().owner().Logins();
}

/// The server that a parameter names. Raises 15015 for an unknown one.
LinkedServer Require(SystemCall& call, std::string_view parameter) {
    const std::string name = call.Text(parameter);
    return Required(FindServer(call.session().connection(), name), 15015, {name});
}

/// Writes to master, and closes the session's connection that was made with the old settings.
void Change(SystemCall& call, const std::string& server, const std::function<void()>& work) {
    call.session().transactions().Write("main", work);
    call.session().remote().Forget(server);
}

/// "Driver={SQL Server};Server=HOST;…": the value of the first of these attributes; empty for none.
std::string Attribute(const std::string& text, std::initializer_list<std::string_view> names) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find(';', at), text.size());
        const std::string item = text.substr(at, end - at);
        const std::size_t equals = std::min(item.find('='), item.size());
        std::string name = item.substr(0, equals);
        name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
        for (const std::string_view wanted : names) {
            if (equals < item.size() && AsciiEqual(TrimTrailingBlanks(name), wanted)) {
                return item.substr(equals + 1);
            }
        }
        at = end + 1;
    }
    return {};
}

/// Checks that a new server's product and provider agree: a server of this kind is named by its product
/// alone. Raises 15426, 15427, 15428, 7403.
void RequireProvider(LinkedServer& server, bool has_details) {
    if (AsciiEqual(server.product, kOwnProduct)) {
        RaiseIf(has_details, 15428, {server.product});
        server.product = kOwnProduct;
        server.provider = kOwnProvider;
        server.source = server.name;
    } else if (server.provider.empty()) {
        RaiseIf(server.product.empty(), 15426);
        RaiseError(15427, {server.product});
    }
    RaiseIf(!ListHas(kProviders, server.provider), 7403, {server.provider});
}

std::int32_t AddLinkedServer(SystemCall& call) {
    RequireNoTransaction(call, "sp_addlinkedserver");
    LinkedServer server;
    server.name = call.Text("@server");
    server.product = call.IsNull("@srvproduct") ? std::string(kOwnProduct) : call.Text("@srvproduct");
    server.provider = call.Text("@provider");
    server.source = call.Text("@datasrc");
    const std::string provider_string = call.Text("@provstr");
    const std::string catalog = call.Text("@catalog");
    RaiseIf(server.name.empty(), 15600, {"sp_addlinkedserver"});
    RequireProvider(server, !server.provider.empty() || !server.source.empty() || !provider_string.empty() ||
                                !catalog.empty());
    RaiseIf(FindServer(call.session().connection(), server.name).has_value(), 15028, {server.name});
    if (server.source.empty()) {
        server.source = Attribute(provider_string, {"server", "data source", "address", "addr"});
    }
    if (server.source.empty()) {
        server.source = server.name;
    }
    server.options["catalog"] =
        !catalog.empty() ? catalog : Attribute(provider_string, {"database", "initial catalog"});
    server.options["provider string"] = provider_string;
    server.options["location"] = call.Text("@location");
    server.options["data access"] = "true";
    server.options["use remote collation"] = "true";
    std::erase_if(server.options, [](const auto& option) { return option.second.empty(); });
    Change(call, server.name, [&] {
        SqliteConnection& connection = call.session().connection();
        SaveServer(connection, server);
        // By default everybody logs in there with the name and password of this server.
        Logins(call).Save(FindServer(connection, server.name)->id, {});
    });
    return 0;
}

std::int32_t DropServer(SystemCall& call) {
    RequireNoTransaction(call, "sp_dropserver");
    const LinkedServer server = Require(call, "@server");
    const std::string with_logins = call.Text("@droplogins");
    RaiseIf(server.id == 0 || (!call.IsNull("@droplogins") && !AsciiEqual(with_logins, "droplogins")), 15600,
            {"sp_dropserver"});
    RaiseIf(server.publisher || server.subscriber || server.distributor, 20584,
            {server.name, server.subscriber ? "Subscriber" : "Distributor"});
    const std::vector<LinkedLogin> logins = Logins(call).List(server.id);
    const bool mapped = std::ranges::any_of(
        logins, [](const LinkedLogin& login) { return !login.own || !login.local.empty(); });
    RaiseIf(mapped && with_logins.empty(), 15190, {server.name});
    Change(call, server.name, [&] { RemoveServer(call.session().connection(), server.id); });
    return 0;
}

std::int32_t AddLinkedLogin(SystemCall& call) {
    RequireNoTransaction(call, "sp_addlinkedsrvlogin");
    const LinkedServer server = Require(call, "@rmtsrvname");
    LinkedLogin login;
    login.local = call.Text("@locallogin");
    const std::string own = AsciiUpper(call.Text("@useself"));
    RaiseIf(own != "TRUE" && own != "FALSE" && !call.IsNull("@useself"), 15600, {"sp_addlinkedsrvlogin"});
    login.own = own != "FALSE";
    RaiseIf(!login.local.empty() && !FindLogin(call.session().connection(), login.local), 15007,
            {login.local});
    if (!login.own) {
        login.remote_user = call.Text("@rmtuser");
        login.password = call.Text("@rmtpassword");
    }
    Change(call, server.name, [&] { Logins(call).Save(server.id, login); });
    return 0;
}

std::int32_t DropLinkedLogin(SystemCall& call) {
    RequireNoTransaction(call, "sp_droplinkedsrvlogin");
    const LinkedServer server = Require(call, "@rmtsrvname");
    const std::string local = call.Text("@locallogin");
    RaiseIf(!local.empty() && !FindLogin(call.session().connection(), local), 15007, {local});
    bool removed = false;
    Change(call, server.name, [&] { removed = Logins(call).Remove(server.id, local); });
    RaiseIf(!removed && !local.empty(), 15185, {"(null)", local, server.name});
    return 0;
}

/// The options that take "true" and "false", and those that take a text or a number.
constexpr std::string_view kSwitches =
    "collation compatible,data access,dist,dpub,lazy schema validation,pub,rpc,rpc out,sub,system,"
    "use remote collation,remote proc transaction promotion";
constexpr std::string_view kTexts = "collation name,connect timeout,query timeout";

std::int32_t ServerOption(SystemCall& call) {
    LinkedServer server = Require(call, "@server");
    const std::string name = ToLower(call.Text("@optname"));
    const std::string value = call.Text("@optvalue");
    if (ListHas(kTexts, name)) {
        server.options[name] = value;
    } else if (ListHas(kSwitches, name)) {
        const bool on = AsciiEqual(value, "true") || AsciiEqual(value, "on");
        RaiseIf(!on && !AsciiEqual(value, "false") && !AsciiEqual(value, "off"), 15600, {"sp_serveroption"});
        server.publisher = name == "pub" ? on : server.publisher;
        server.subscriber = name == "sub" ? on : server.subscriber;
        server.distributor = name == "dist" ? on : server.distributor;
        server.options[name] = on ? "true" : "false";
    } else {
        RaiseError(15600, {"sp_serveroption"});
    }
    Change(call, server.name, [&] { SaveServer(call.session().connection(), server); });
    return 0;
}

std::int32_t ListLinkedServers(SystemCall& call) {
    call.Run(embedded::kListLinkedServers);
    return 0;
}

std::int32_t HelpServer(SystemCall& call) {
    if (!call.IsNull("@server")) {
        Require(call, "@server");
    }
    call.Run(embedded::kHelpServer, {call.Text("@server")});
    return 0;
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_addlinkedserver", AddLinkedServer},
    {"sp_dropserver", DropServer},
    {"sp_addlinkedsrvlogin", AddLinkedLogin},
    {"sp_droplinkedsrvlogin", DropLinkedLogin},
    {"sp_serveroption", ServerOption},
    {"sp_linkedservers", ListLinkedServers},
    {"sp_helpserver", HelpServer},
};

} // namespace

std::span<const SystemProcedure> LinkedProcedures() {
    return kProcedures;
}

} // namespace devsql
