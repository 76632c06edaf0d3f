// The fixture of most tests: a server, and a client whose database is tempdb.
#pragma once

#include <gtest/gtest.h>

#include "devserver/tests/tsql/transcript.h"

namespace devsql::test {

class TsqlTest : public ::testing::Test {
  protected:
    /// Runs a batch, or several that are separated by lines with GO, and returns the transcript. It begins
    /// with a line end, because the raw strings that it is compared with do.
    std::string Run(std::string_view sql) { return "\n" + client.Run(sql); }

    TestServer server;
    Client client = server.Login("tempdb");
};

} // namespace devsql::test
