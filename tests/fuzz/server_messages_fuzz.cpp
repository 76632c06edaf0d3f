// Fuzzes the handling of messages from a server and its driver: records with any number, state and text,
// which come with success, with an error or with rows. They go through the database layer to the text of the
// message box, or through the query tool's printer.
#include "ado/connection.h"
#include "fakes/odbc_counting.h"
#include "fuzz/input.h"
#include "managers/db_errors.h"
#include "querytool/result_printer.h"

namespace {

constexpr int kMostRecords = 5;
constexpr std::size_t kStateLength = 5;
constexpr int kNarrowest = 9;

fakes::OdbcRecord Record(fuzz::Input& input) {
    fakes::OdbcRecord record;
    record.state = (input.Text() + "HY000").substr(0, kStateLength);
    record.native = input.Number();
    record.message = input.Text();
    record.server = input.Text();
    const std::uint8_t which = input.Byte();
    if ((which & 1U) != 0) {
        record.line = input.Number();
    }
    if ((which & 2U) != 0) {
        record.severity = input.Number();
    }
    if ((which & 4U) != 0) {
        record.server_state = input.Number();
    }
    return record;
}

std::vector<fakes::OdbcRecord> Records(fuzz::Input& input) {
    std::vector<fakes::OdbcRecord> records;
    for (int i = input.Byte() % kMostRecords; i > 0; --i) {
        records.push_back(Record(input));
    }
    return records;
}

/// Makes the text that a message box would show.
void Collect(const ado::Connection& connection) {
    kv::DbErrors errors;
    try {
        kv::CollectDbErrors(errors, connection.Errors());
    } catch (const kv::RunTimeError&) {
        return; // a number 0 before another number is an error
    }
    const std::string text = kv::FormatDbErrors(errors);
    fuzz::Require(errors.UpperBound() == 0 || !text.empty(), "what was collected is shown");
}

void ThroughTheDatabaseLayer(fuzz::Input& input) {
    fakes::ResetCounting();
    const std::uint8_t shape = input.Byte();
    fakes::Counting().connection_dead = (shape & 8U) != 0;
    fakes::Counting().login_records = Records(input);
    fakes::Counting().results = {{.columns = (shape & 1U) != 0,
                                  .rows = (shape & 1U) != 0 ? std::size_t{2} : std::size_t{0},
                                  .records = Records(input),
                                  .fetch_records = Records(input),
                                  .fails = (shape & 2U) != 0},
                                 {.columns = false, .records = Records(input), .fails = (shape & 4U) != 0}};
    ado::Connection connection;
    connection.CursorLocation(ado::adUseClient);
    try {
        connection.Open("Driver={SQL Server};Server=x;", "", "", ado::adOptionUnspecified);
        std::int64_t affected = 0;
        connection.Execute("run", affected, ado::adCmdText);
    } catch (const kv::ReportedError& error) {
        fuzz::Require(error.Number() != 0, "a failure has a number");
    }
    Collect(connection);
}

class KeptOutput : public querytool::Output {
  public:
    void Write(std::string_view text) override { size += text.size(); }
    void WriteError(std::string_view text) override { size += text.size(); }
    void Flush() override {}
    std::size_t size = 0;
};

void ThroughThePrinter(fuzz::Input& input) {
    querytool::Switches switches;
    switches.width = kNarrowest + input.Byte(); // the range of -w
    switches.header_rows = static_cast<int>(input.Byte()) - 1;
    if (input.Byte() % 2 == 0) {
        switches.error_level = input.Byte();
    }
    KeptOutput output;
    querytool::ResultPrinter printer(switches, output);
    for (int i = input.Byte() % kMostRecords; i > 0; --i) {
        const fakes::OdbcRecord record = Record(input);
        querytool::Diagnostic message;
        message.sql_state = record.state;
        message.error = input.Byte() % 2 == 0;
        message.native_error = record.native;
        message.message = record.message;
        message.server = record.server;
        message.procedure = input.Text();
        message.line = record.line;
        message.severity = record.severity;
        message.state = record.server_state;
        printer.Message(message);
    }
    querytool::Column column;
    column.name = input.Text();
    column.size = input.Byte();
    printer.ResultBegin({column, column});
    printer.Row({input.Text(), std::string(input.Rest())});
    printer.ResultEnd(input.Number());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    if (input.Byte() % 2 == 0) {
        ThroughTheDatabaseLayer(input);
        fuzz::Require(fakes::Counting().open_handles == 0, "no handle stays open");
    } else {
        ThroughThePrinter(input);
    }
    return 0;
}
