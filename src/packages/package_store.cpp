// Calls the server's package procedures: sp_add_dtspackage, sp_drop_dtspackage, sp_enum_dtspackages.
#include "packages/package_store.h"

#include <optional>
#include <random>
#include <string_view>
#include <tuple>
#include <vector>

#include "odbc/error_number.h"
#include "odbc/odbc.h"
#include "odbc/odbc_rows.h"
#include "odbc/value_text.h"

namespace packages {
namespace {

constexpr unsigned kLoginSeconds = 60;
constexpr unsigned kQuerySeconds = 300;
constexpr std::size_t kLongestName = 128; // sysname
/// sp_enum_dtspackages: the newest version of each package only.
constexpr std::int64_t kNewestOnly = 1;
/// The columns of sp_enum_dtspackages that are used, by position.
enum EnumColumn : std::size_t { kName, kPackageId, kVersionId, kDescription, kCreateDate, kEnumColumns };

constexpr auto kInvalidParameter = static_cast<std::int32_t>(0x80070057U);
constexpr const char* kSource = "Package store";

[[noreturn]] void Rethrow(const odbc::OdbcError& error) {
    const odbc::Diagnostic& first = error.Diagnostics().front();
    throw PackageError(odbc::ErrorNumberOf(first.sql_state), kSource,
                       std::string(odbc::WithoutOrigin(first.message)) + " (SQLSTATE " + first.sql_state +
                           ", error " + std::to_string(first.native_error) + ")");
}

/// A connection to a server's msdb, for one call.
class MsdbConnection {
  public:
    explicit MsdbConnection(const PackageServer& server) : connection_(environment_) {
        connection_.DriverConnect("Driver={SQL Server};Server=" + server.server +
                                      ";Database=msdb;Uid=" + server.user + ";Pwd=" + server.password + ";",
                                  kLoginSeconds);
    }

    /// A statement that has run "{call …}" with the parameters.
    odbc::Statement Call(const std::string& call, const std::vector<odbc::Parameter>& parameters) {
        odbc::Statement statement(connection_);
        statement.SetQueryTimeout(kQuerySeconds);
        statement.Prepare(call);
        std::uint16_t position = 0;
        for (const odbc::Parameter& parameter : parameters) {
            statement.Bind(++position, parameter);
        }
        statement.Execute();
        return statement;
    }

  private:
    odbc::Environment environment_;
    odbc::Connection connection_;
};

/// Reads all further results: an error may come after the first one.
void Drain(odbc::Statement& statement) {
    while (statement.MoreResults()) {
    }
}

odbc::Parameter Text(std::string text) {
    return {.type = odbc::SqlType::VarChar, .value = std::move(text)};
}

odbc::Parameter Null() {
    return {.type = odbc::SqlType::VarChar, .value = {}, .size = 1};
}

/// The id as text without its braces, which the server converts.
odbc::Parameter Id(std::string_view braced) {
    return Text(std::string(braced.substr(1, braced.size() - 2)));
}

std::string Braced(const odbc::Guid& id) {
    return "{" + odbc::TextOf(id) + "}";
}

/// A random id (version 4).
std::string NewId() {
    std::random_device random;
    odbc::Guid id;
    id.data1 = static_cast<std::uint32_t>(random());
    id.data2 = static_cast<std::uint16_t>(random());
    id.data3 = static_cast<std::uint16_t>((random() & 0x0FFFU) | 0x4000U);
    for (std::uint8_t& byte : id.data4) {
        byte = static_cast<std::uint8_t>(random());
    }
    id.data4[0] = static_cast<std::uint8_t>((id.data4[0] & 0x3FU) | 0x80U);
    return Braced(id);
}

[[noreturn]] void RefuseColumn(std::size_t column) {
    throw PackageError(odbc::ErrorNumberOf("HY000"), kSource,
                       "sp_enum_dtspackages gave an unexpected value in column " +
                           std::to_string(column + 1));
}

template <class Alternative>
const Alternative& Get(const std::vector<odbc::Value>& row, std::size_t column) {
    const auto* value = std::get_if<Alternative>(&row[column]);
    if (value == nullptr) {
        RefuseColumn(column);
    }
    return *value;
}

platform::LocalTime ToLocalTime(const odbc::Timestamp& stamp) {
    return {stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second};
}

StoredPackage ReadPackage(const std::vector<odbc::Value>& row) {
    StoredPackage package;
    package.info.name = Get<std::string>(row, kName);
    package.package_id = Braced(Get<odbc::Guid>(row, kPackageId));
    package.version_id = Braced(Get<odbc::Guid>(row, kVersionId));
    if (!std::holds_alternative<std::monostate>(row[kDescription])) {
        package.info.description = Get<std::string>(row, kDescription);
    }
    package.info.creation_date = ToLocalTime(Get<odbc::Timestamp>(row, kCreateDate));
    return package;
}

void ForEachPackage(odbc::Statement& statement, const std::function<void(const StoredPackage&)>& take) {
    {
        odbc::RowReader reader(statement);
        if (reader.Columns().size() < kEnumColumns) {
            RefuseColumn(reader.Columns().size());
        }
        std::vector<odbc::Value> row;
        while (reader.Next(row)) {
            take(ReadPackage(row));
        }
    }
    Drain(statement);
}

/// A LIKE pattern that only this name matches.
std::string PatternOf(const std::string& name) {
    std::string pattern;
    for (const char character : name) {
        if (character == '%' || character == '_' || character == '[') {
            pattern += {'[', character, ']'};
        } else {
            pattern += character;
        }
    }
    if (pattern.size() > kLongestName) {
        throw PackageError(kInvalidParameter, kSource, "The package name " + name + " is too long");
    }
    return pattern;
}

using CreationTime = std::tuple<int, int, int, int, int, int>;
CreationTime TimeOf(const StoredPackage& package) {
    const platform::LocalTime& time = package.info.creation_date;
    return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

/// The newest version of all packages with this name: several packages may have the same name.
std::optional<StoredPackage> FindNewest(MsdbConnection& connection, const std::string& name) {
    odbc::Statement statement = connection.Call(
        "{call sp_enum_dtspackages(?, ?, ?, ?)}",
        {Text(PatternOf(name)), Text("%"), Null(), {.type = odbc::SqlType::Integer, .value = kNewestOnly}});
    std::optional<StoredPackage> newest;
    ForEachPackage(statement, [&newest](const StoredPackage& package) {
        if (!newest || TimeOf(*newest) < TimeOf(package)) {
            newest = package;
        }
    });
    return newest;
}

template <class Work>
void ReportingErrors(Work&& work) {
    try {
        std::forward<Work>(work)();
    } catch (const odbc::OdbcError& error) {
        Rethrow(error);
    }
}

} // namespace

void PackageStore::Add(const PackageFile& file) {
    ReportingErrors([&] {
        MsdbConnection connection(server_);
        odbc::Statement statement =
            connection.Call("{call sp_add_dtspackage(?, ?, ?, ?, ?, ?, ?)}",
                            {Text(file.name),
                             Id(file.package_id),
                             Id(NewId()),
                             Text(file.description),
                             Null(),
                             Text(server_.user),
                             {.type = odbc::SqlType::LongVarBinary, .value = odbc::Bytes{file.content}}});
        Drain(statement);
    });
}

void PackageStore::RemoveNewest(const std::string& package_name) {
    ReportingErrors([&] {
        MsdbConnection connection(server_);
        const std::optional<StoredPackage> newest = FindNewest(connection, package_name);
        if (!newest) {
            // As the server reports it: its error 14262 has the state 42000.
            throw PackageError(odbc::ErrorNumberOf("42000"), kSource,
                               "The package '" + package_name + "' does not exist on the server");
        }
        odbc::Statement statement =
            connection.Call("{call sp_drop_dtspackage(?, ?, ?)}",
                            {Text(newest->info.name), Id(newest->package_id), Id(newest->version_id)});
        Drain(statement);
    });
}

void PackageStore::List(const std::function<void(const StoredPackage&)>& take) {
    ReportingErrors([&] {
        MsdbConnection connection(server_);
        odbc::Statement statement = connection.Call("{call sp_enum_dtspackages}", {});
        ForEachPackage(statement, take);
    });
}

} // namespace packages
