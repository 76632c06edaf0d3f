// Fuzzes the query tool's reading of a script. The input is the file, in any encoding; the server is a fake
// that accepts every batch. No batch may be empty.
#include <sstream>

#include "fuzz/input.h"
#include "querytool/tool.h"

namespace {

/// "GO 4000000000" would run a batch that often; the fake server ends the run after this number.
constexpr int kMostBatches = 100;
constexpr std::size_t kLongest = 4096;

class TakingServer : public querytool::Server {
  public:
    bool Connect(const querytool::LoginSettings& /*settings*/, querytool::ResultSink& /*sink*/) override {
        return true;
    }
    bool Run(const std::string& batch, querytool::ResultSink& sink) override {
        fuzz::Require(!batch.empty(), "no batch is empty");
        sink.ResultBegin({{}});
        sink.Row({std::string("7")});
        sink.ResultEnd(1);
        return ++batches_ < kMostBatches;
    }

  private:
    int batches_ = 0;
};

class NoOutput : public querytool::Output {
  public:
    void Write(std::string_view /*text*/) override {}
    void WriteError(std::string_view /*text*/) override {}
    void Flush() override {}
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size > kLongest) {
        return 0;
    }
    const std::string text = querytool::ToCodePage({reinterpret_cast<const char*>(bytes), size});
    std::istringstream stream(text);
    querytool::StreamLines lines(stream);
    querytool::Switches switches;
    switches.echo = true;
    TakingServer server;
    NoOutput output;
    querytool::RunTool(switches, "", server, lines, output);
    return 0;
}
