// Tests the query tool's connection string for ODBC.
#include "querytool/windows/odbc_server.h"

#include <gtest/gtest.h>

namespace {

using namespace querytool;

TEST(ConnectionStringTest, ValuesAreUnchangedWherePossible) {
    const LoginSettings settings = {
        .server = "host,1433", .user = "sa", .password = "p=a{b}c d!", .database = "", .workstation = ""};
    EXPECT_EQ(ConnectionString(settings),
              "Driver={SQL Server};Server=host,1433;Uid=sa;Pwd=p=a{b}c d!;App=OSQL;");
}

TEST(ConnectionStringTest, AValueThatWouldEndEarlyIsEnclosedInBraces) {
    const LoginSettings settings = {
        .server = "h", .user = "{sa", .password = " a;b}", .database = "Batch", .workstation = "W1"};
    EXPECT_EQ(ConnectionString(settings),
              "Driver={SQL Server};Server=h;Uid={{sa};Pwd={ a;b}}};App=OSQL;Database=Batch;WSID=W1;");
}

} // namespace
