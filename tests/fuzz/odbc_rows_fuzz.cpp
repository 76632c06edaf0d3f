// Fuzzes the reading of rows. The input describes results of any shape and content, as a driver could return
// them; the manager for viewing data reads them. Each read must return rows or report a failure, and no
// handle and no connection may stay open.
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"
#include "fakes/odbc_counting.h"
#include "fuzz/input.h"
#include "inspect/view_data_mgr.h"

namespace {

constexpr int kMostColumns = 6;
constexpr int kMostRows = 40;
constexpr int kMostResults = 3;
/// A long text is read in pieces of this many characters. Few rows have more than one piece: they take most
/// of the time.
constexpr std::size_t kPiece = std::size_t{32} * 1024;
constexpr std::size_t kMostBeyondPiece = 300;
constexpr int kMostLongRows = 3;

fakes::OdbcCell Cell(fuzz::Input& input, char kind) {
    if (input.Byte() % 8 == 0) {
        return std::nullopt;
    }
    return kind == 'n' ? std::to_string(input.Number()) : input.Text();
}

/// A record as a server or a driver could send it.
fakes::OdbcRecord Record(fuzz::Input& input) {
    fakes::OdbcRecord record;
    record.state = input.Byte() % 2 == 0 ? "01000" : "42000";
    record.native = input.Number();
    record.message = input.Text();
    if (input.Byte() % 2 == 0) {
        record.severity = input.Byte();
    }
    return record;
}

fakes::OdbcResult Result(fuzz::Input& input) {
    const std::uint8_t shape = input.Byte();
    fakes::OdbcResult result;
    if (shape % 4 == 0) {
        result.with_long_column = true;
        const std::uint8_t rows = input.Byte();
        const auto size = static_cast<std::size_t>(input.Number());
        const bool in_pieces = size % 16 == 0;
        result.rows = rows % (in_pieces ? kMostLongRows : kMostRows);
        result.long_size = size / 16 % kMostBeyondPiece + (in_pieces ? kPiece - kMostBeyondPiece / 2 : 0);
    } else if (shape % 4 == 1) {
        result.columns = false;
        result.row_count = input.Number();
    } else {
        std::string kinds;
        for (int i = 1 + input.Byte() % kMostColumns; i > 0; --i) {
            kinds += input.Byte() % 2 == 0 ? 'n' : 't';
        }
        std::vector<std::vector<fakes::OdbcCell>> cells;
        for (int i = input.Byte() % kMostRows; i > 0; --i) {
            cells.emplace_back();
            for (const char kind : kinds) {
                cells.back().push_back(Cell(input, kind));
            }
        }
        result = fakes::LaidOut(kinds, cells);
    }
    if (shape >= 128) {
        result.records.push_back(Record(input));
        result.fails = shape >= 224;
    } else if (shape >= 96) {
        result.fetch_records.push_back(Record(input));
    }
    return result;
}

template <class Operation>
void Try(const Operation& operation) {
    kv::CViewDataMgr manager;
    manager.UseServerA(true);
    manager.ServerA("x");
    manager.UserA("sa");
    operation(manager);
    fuzz::Require(fakes::Counting().open_handles == 0, "no handle stays open");
    fuzz::Require(fakes::Counting().open_connections == 0, "no connection stays open");
    fuzz::Require(fakes::Counting().violations.empty(), "the driver is called in order");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    registry.AddText(kv::registry_locations::kHkeyLocalMachine, kv::registry_locations::kLogKey, "",
                     "L:\\Log");
    files.AddFolder("L:\\Log");
    fakes::ResetCounting();
    fuzz::Input input(bytes, size);
    const std::uint8_t operation = input.Byte();
    if (operation >= 128) {
        fakes::Counting().failing_call = input.Byte();
    }
    for (int i = 0; i < kMostResults && !input.Empty(); ++i) {
        fakes::Counting().results.push_back(Result(input));
    }
    switch (operation % 4) {
    case 0:
        Try([](kv::CViewDataMgr& manager) {
            std::vector<std::string> names;
            manager.GetTables("Batch", names);
        });
        break;
    case 1:
        Try([](kv::CViewDataMgr& manager) {
            std::vector<std::string> identities;
            kv::TextTable table;
            if (manager.GetData("Batch", "Lots", identities, table)) {
                for (std::int32_t row = 0; row <= table.RowUpperBound(); ++row) {
                    for (std::int32_t column = 0; column <= table.ColumnUpperBound(); ++column) {
                        table(column, row);
                    }
                }
            }
        });
        break;
    case 2:
        Try([](kv::CViewDataMgr& manager) { manager.GetStoredProcedure("Batch", "spOne"); });
        break;
    default:
        Try([](kv::CViewDataMgr& manager) {
            kv::ParameterArray parameters;
            if (manager.GetStoredProcedureParameters("Batch", "spOne", parameters)) {
                kv::TextTable table;
                manager.ExecuteStoredProcedure("Batch", "spOne", parameters, table);
            }
        });
    }
    // libFuzzer takes memory that stays allocated after an input for a leak, and tries the input again.
    fakes::ResetCounting();
    return 0;
}
