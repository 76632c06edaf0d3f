// A server, a client in tempdb, and the one line that most tests are made of.
#pragma once

#include <gtest/gtest.h>

#include "devserver/tests/tsql/transcript.h"

namespace devsql::test {

class TsqlTest : public ::testing::Test {
  protected:
    /// The transcript of a batch, or of several divided by lines with GO. Begins with a line end, as the raw
    /// texts that it is compared with do.
    std::string Run(std::string_view sql) { return "\n" + client.Run(sql); }

    TestServer server;
    Client client = server.Login("tempdb");
};

} // namespace devsql::test
