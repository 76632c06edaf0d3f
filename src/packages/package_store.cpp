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
constexpr std::size_t kMaxPattern = 128; // characters; the procedure's parameter is a sysname
/// The flag of sp_enum_dtspackages for listing only the newest version of each package.
constexpr std::int64_t kNewestOnly = 1;
/// The columns of sp_enum_dtspackages that are used, by position.
enum EnumColumn : std::size_t { kName, kPackageId, kVersionId, kDescription, kCreateDate, kEnumColumns };

constexpr auto kInvalidParameter = static_cast<std::int32_t>(0x80070057U);
constexpr const char* kSource = "Package store";

/// Throws the first record of a failed call as a PackageError.
[[noreturn]] void ThrowAsPackageError(const odbc::OdbcError& error) {
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

    /// Runs "{call …}" with the parameters and returns the statement, at its first result.
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

/// Goes to the end of all results, since an error may come after the first one.
void Drain(odbc::Statement& statement) {
    while (statement.MoreResults()) {
    }
}

// Values of parameters.

odbc::Parameter Text(std::string text) {
    return {.type = odbc::SqlType::VarChar, .value = std::move(text)};
}

odbc::Parameter Null() {
    return {.type = odbc::SqlType::VarChar, .value = {}, .size = 1};
}

/// Passes an id as text without braces, which the server converts.
odbc::Parameter Id(std::string_view braced) {
    return Text(std::string(braced.substr(1, braced.size() - 2)));
}

std::string Braced(const odbc::Guid& id) {
    return "{" + odbc::TextOf(id) + "}";
}

/// Makes a random id, a GUID of version 4.
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

/// Returns the value of a column. Throws PackageError if it has another type.
template <class Alternative>
const Alternative& ValueAs(const std::vector<odbc::Value>& row, std::size_t column) {
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
    package.info.name = ValueAs<std::string>(row, kName);
    package.package_id = Braced(ValueAs<odbc::Guid>(row, kPackageId));
    package.version_id = Braced(ValueAs<odbc::Guid>(row, kVersionId));
    if (!std::holds_alternative<std::monostate>(row[kDescription])) {
        package.info.description = ValueAs<std::string>(row, kDescription);
    }
    package.info.creation_date = ToLocalTime(ValueAs<odbc::Timestamp>(row, kCreateDate));
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

/// Returns a LIKE pattern that only this name matches.
std::string PatternOf(const std::string& name) {
    std::string pattern;
    for (const char character : name) {
        if (character == '%' || character == '_' || character == '[') {
            pattern += {'[', character, ']'};
        } else {
            pattern += character;
        }
    }
    if (pattern.size() > kMaxPattern) {
        throw PackageError(kInvalidParameter, kSource, "The package name " + name + " is too long");
    }
    return pattern;
}

using CreationTime = std::tuple<int, int, int, int, int, int>;
CreationTime TimeOf(const StoredPackage& package) {
    const platform::LocalTime& time = package.info.creation_date;
    return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

/// Finds the newest version of all packages with this name; several packages may have the same name.
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

/// Runs `work`. An OdbcError in it becomes a PackageError.
template <class Work>
void WithPackageErrors(Work&& work) {
    try {
        std::forward<Work>(work)();
    } catch (const odbc::OdbcError& error) {
        ThrowAsPackageError(error);
    }
}

} // namespace

void PackageStore::Add(const PackageFile& file) {
    WithPackageErrors([&] {
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
    WithPackageErrors([&] {
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
    WithPackageErrors([&] {
        MsdbConnection connection(server_);
        odbc::Statement statement = connection.Call("{call sp_enum_dtspackages}", {});
        ForEachPackage(statement, take);
    });
}

} // namespace packages
