// Measures one reading of a large table: by the console's manager, or by a bare loop over ODBC with bound
// buffers, which keeps no rows. Prints the rows, the time and the memory. get_data_bench.py runs it and
// compares it with other clients.
//
//   get_data_bench manager|bare SERVER USER PASSWORD DATABASE TABLE
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>

#include "inspect/view_data_mgr.h"
#include "odbc/odbc.h"
#include "odbc/odbc_api.h"

namespace {

/// The table, and the server and login to reach it.
struct Place {
    std::string server;
    std::string user;
    std::string password;
    std::string database;
    std::string table;
};

struct Outcome {
    std::int64_t rows = 0;
    std::int64_t text_bytes = 0; ///< of all cells; 0 if they are not kept
};

/// The most memory that the process has used. On Linux getrusage counts it in kilobytes.
long PeakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

Outcome ReadByManager(const Place& place, kv::TextTable& data) {
    kv::CViewDataMgr manager;
    manager.UseServerA(true);
    manager.ServerA(place.server);
    manager.UserA(place.user);
    manager.PasswordA(place.password);
    std::vector<std::string> identifiers;
    if (!manager.GetData(place.database, place.table, identifiers, data)) {
        manager.ShowDbError();
        return {};
    }
    return {.rows = data.RowUpperBound()};
}

std::int64_t TextBytes(const kv::TextTable& data) {
    std::int64_t bytes = 0;
    for (std::int32_t row = 0; row <= data.RowUpperBound(); ++row) {
        for (std::int32_t column = 1; column <= data.ColumnUpperBound(); ++column) {
            bytes += static_cast<std::int64_t>(data(column, row).size());
        }
    }
    return bytes;
}

/// The types of the buffers for the table's columns: two integers, two texts, a date, a decimal as text, a
/// double and a text.
constexpr std::array<SQLSMALLINT, 8> kBoundAs = {SQL_C_SLONG,          SQL_C_SLONG, SQL_C_CHAR,   SQL_C_CHAR,
                                                 SQL_C_TYPE_TIMESTAMP, SQL_C_CHAR,  SQL_C_DOUBLE, SQL_C_CHAR};

Outcome ReadByBareLoop(const Place& place) {
    constexpr std::size_t kBlock = 512;
    constexpr std::size_t kWidth = 256;
    odbc::Environment environment;
    odbc::Connection connection(environment);
    connection.DriverConnect("Driver={SQL Server};Server=" + place.server + ";Database=" + place.database +
                                 ";Uid=" + place.user + ";Pwd=" + place.password + ";",
                             60);
    odbc::Statement statement(connection);
    statement.ExecDirect("SELECT * FROM " + place.table);
    SQLHSTMT const handle = statement.Get();
    std::array<std::vector<char>, kBoundAs.size()> buffers;
    std::array<std::vector<SQLLEN>, kBoundAs.size()> indicators;
    SQLULEN fetched = 0;
    SQLSetStmtAttr(handle, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kBlock), 0); // NOLINT
    SQLSetStmtAttr(handle, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    for (std::size_t i = 0; i < kBoundAs.size(); ++i) {
        const std::size_t width = kBoundAs[i] == SQL_C_SLONG            ? sizeof(SQLINTEGER)
                                  : kBoundAs[i] == SQL_C_DOUBLE         ? sizeof(double)
                                  : kBoundAs[i] == SQL_C_TYPE_TIMESTAMP ? sizeof(SQL_TIMESTAMP_STRUCT)
                                                                        : kWidth;
        buffers[i].resize(width * kBlock);
        indicators[i].resize(kBlock);
        SQLBindCol(handle, static_cast<SQLUSMALLINT>(i + 1), kBoundAs[i], buffers[i].data(),
                   static_cast<SQLLEN>(width), indicators[i].data());
    }
    Outcome outcome;
    while (SQL_SUCCEEDED(SQLFetch(handle)) && fetched != 0) {
        outcome.rows += static_cast<std::int64_t>(fetched);
    }
    SQLFreeStmt(handle, SQL_UNBIND);
    return outcome;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 7) {
        std::fputs("usage: get_data_bench manager|bare SERVER USER PASSWORD DATABASE TABLE\n", stderr);
        return 2;
    }
    const Place place{argv[2], argv[3], argv[4], argv[5], argv[6]};
    const bool by_manager = std::string_view(argv[1]) == "manager";
    kv::TextTable data;
    const auto begin = std::chrono::steady_clock::now();
    Outcome outcome = by_manager ? ReadByManager(place, data) : ReadByBareLoop(place);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    const long peak = PeakKilobytes();
    if (by_manager && outcome.rows > 0) {
        outcome.text_bytes = TextBytes(data);
    }
    const std::chrono::duration<double> reading = std::chrono::steady_clock::now() - begin - taken;
    // Rows, seconds, peak memory in kilobytes. Then of the manager's array: the bytes of its text, all of its
    // bytes, and the seconds to read every cell.
    std::printf("%lld %.6f %ld %lld %lld %.6f\n", static_cast<long long>(outcome.rows), taken.count(), peak,
                static_cast<long long>(outcome.text_bytes), static_cast<long long>(data.Bytes()),
                reading.count());
    return outcome.rows > 0 ? 0 : 1;
}
