// Reads the servers' names from the environment and asks them through the database layer.
#include "support/servers.h"

#include <stdexcept>

namespace support {

std::string FromServers(const char* name) {
    const char* const value = std::getenv(name);
    if (value == nullptr) {
        throw std::logic_error(std::string(name) +
                               " is not set: start this program by tests/support/with_servers.py");
    }
    return value;
}

std::string SharedPath(const std::string& name) {
    const std::string folder = FromServers("KV_FOLDER");
    return folder + (folder.find('\\') == std::string::npos ? '/' : '\\') + name;
}

ado::Connection Connect(const std::string& server, const std::string& database) {
    constexpr std::int32_t kSeconds = 60;
    ado::Connection connection;
    connection.CursorLocation(ado::adUseClient);
    connection.CommandTimeout(kSeconds);
    connection.ConnectionTimeout(kSeconds);
    connection.Open("Driver={SQL Server};Server=" + server + ";Database=" + database +
                        ";Uid=" + FromServers("KV_USER") + ";Pwd=" + FromServers("KV_PASSWORD") + ";",
                    "", "", ado::adOptionUnspecified);
    return connection;
}

std::vector<std::string> Ask(const std::string& server, const std::string& database,
                             const std::string& statement) {
    ado::Connection connection = Connect(server, database);
    std::int64_t affected = 0;
    const auto rows = connection.Execute(statement, affected, ado::adCmdText);
    std::vector<std::string> lines;
    while (rows->State() == ado::adStateOpen && !rows->Eof()) {
        std::string line;
        for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
            const ado::Variant value = rows->Fields().Item(i).Value();
            line += (i == 0 ? "" : " ") + (value.IsNull() ? std::string("-") : value.ToString());
        }
        lines.push_back(line);
        rows->MoveNext();
    }
    return lines;
}

void DropDatabase(const std::string& server, const std::string& name) {
    std::string quoted;
    for (const char character : name) {
        quoted += character == '\'' ? "''" : std::string(1, character);
    }
    const std::string there =
        "IF EXISTS (SELECT * FROM master.dbo.sysdatabases WHERE name = '" + quoted + "') ";
    Ask(server, "master", there + "ALTER DATABASE [" + name + "] SET SINGLE_USER WITH ROLLBACK IMMEDIATE");
    Ask(server, "master", there + "DROP DATABASE [" + name + "]");
}

} // namespace support
