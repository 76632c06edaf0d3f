// The fixture of most tests: a server, and a client whose database is tempdb.
#pragma once

#include <gtest/gtest.h>

#include "devserver/tests/tsql/transcript.h"

namespace devsql::test {

class TsqlTest : public ::testing::Test {
  protected:
    /// The transcript of a batch, or of several that are divided by lines with GO. It begins with a line end,
    /// as the raw strings do that it is compared with.
    std::string Run(std::string_view sql) { return "\n" + client.Run(sql); }

    TestServer server;
    Client client = server.Login("tempdb");
};

} // namespace devsql::test
