// The string that the query tool connects with over ODBC.
#include "querytool/windows/odbc_server.h"

#include <gtest/gtest.h>

namespace {

using namespace querytool;

TEST(ConnectionStringTest, ValuesStandAsTheyAreWhereTheyCan) {
    LoginSettings settings;
    settings.server = "host,1433";
    settings.user = "sa";
    settings.password = "p=a{b}c d!";
    EXPECT_EQ(ConnectionString(settings),
              "Driver={SQL Server};Server=host,1433;Uid=sa;Pwd=p=a{b}c d!;App=OSQL;");
}

TEST(ConnectionStringTest, AValueThatWouldEndEarlyStandsInBraces) {
    LoginSettings settings;
    settings.server = "h";
    settings.user = "{sa";
    settings.password = " a;b}";
    settings.database = "Batch";
    settings.workstation = "W1";
    EXPECT_EQ(ConnectionString(settings),
              "Driver={SQL Server};Server=h;Uid={{sa};Pwd={ a;b}}};App=OSQL;Database=Batch;WSID=W1;");
}

} // namespace
