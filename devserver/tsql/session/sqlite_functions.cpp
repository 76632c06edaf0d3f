// The SQL functions and aggregates that a session adds to its connection to SQLite.
#include "devserver/tsql/session/sqlite_functions.h"

#include <stdexcept>

#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/session/check_columns.h"
#include "devserver/tsql/session/session_core.h"
#include "devserver/tsql/session/triggers.h"

namespace devsql {
namespace {

constexpr Type kName = Sized(TypeId::NVarChar, 128);

/// SUM and AVG over one type.
class SumAggregate : public Aggregate {
  public:
    SumAggregate(const Type& type, bool average) : type_(type), average_(average), sum_(type) {}

    void Step(const FunctionCall& call) override { sum_.Add(call.Argument(0, type_)); }
    void Finish(const FunctionCall& call) override {
        if (average_) {
            call.Result(sum_.Average(), AverageType(type_));
        } else {
            call.Result(sum_.Sum(), SumType(type_));
        }
    }

  private:
    Type type_;
    bool average_;
    SumAccumulator sum_;
};

} // namespace

SqliteFunctions::SqliteFunctions(SessionCore& session) : session_(session) {
    session_.connection().AddFunction("tsql", [this](const FunctionCall& call) { Run(call); });
    AddChecks();
    AddCatalogueFunctions();
}

/// tsql_single raises 512 if a subquery that stands for a value has several rows. tsql_level counts the
/// levels of a recursion and raises 530 above the limit.
void SqliteFunctions::AddChecks() {
    SqliteConnection& connection = session_.connection();
    connection.AddFunction("tsql_single", [](const FunctionCall& call) {
        RaiseIf(call.Int(1) > 1, 512);
        call.PassOn(0);
    });
    connection.AddFunction("tsql_level", [](const FunctionCall& call) {
        const std::int64_t level = call.Int(0) + 1;
        const std::int64_t limit = call.Int(1);
        if (limit > 0 && level > limit) {
            RaiseError(530, {std::to_string(limit)});
        }
        call.Result(level, Simple(TypeId::BigInt));
    });
}

/// Columns of the catalogue's views that are computed only where a query takes them.
void SqliteFunctions::AddCatalogueFunctions() {
    SqliteConnection& connection = session_.connection();
    connection.AddFunction("tsql_rows", [this](const FunctionCall& call) {
        OpenDatabases& databases = session_.databases();
        const std::string database = std::get<std::string>(call.Argument(0, kName));
        const TablePtr table = databases.Table(databases.Get(database), call.Int(1));
        if (!table) {
            return;
        }
        SqliteStatement count = session_.connection().Prepare("SELECT count(*) FROM " + table->Qualified());
        call.Result(count.Step() ? Value(count.Int(0)) : Value(), Simple(TypeId::BigInt));
    });
    connection.AddFunction("tsql_check_column", [this](const FunctionCall& call) {
        OpenDatabases& databases = session_.databases();
        Catalogue& catalogue = databases.Get(std::get<std::string>(call.Argument(0, kName)));
        const std::optional<ObjectDef> check = catalogue.FindObject(call.Int(1));
        const TablePtr table = check ? databases.Table(catalogue, check->parent) : nullptr;
        if (const ColumnDef* column = table ? ColumnOfCheck(*table, check->text) : nullptr) {
            call.Result(std::int64_t{column->id}, Simple(TypeId::Int));
        }
    });
    connection.AddFunction("tsql_trigger_events", [this](const FunctionCall& call) {
        Catalogue& catalogue = session_.databases().Get(std::get<std::string>(call.Argument(0, kName)));
        if (const std::optional<ObjectDef> trigger = catalogue.FindObject(call.Int(1))) {
            call.Result(std::int64_t{EventsOfTrigger(session_, catalogue, *trigger)}, Simple(TypeId::Int));
        }
    });
}

std::string SqliteFunctions::SumFunction(const Type& type, bool average) {
    std::string name = std::string(average ? "tsql_avg_" : "tsql_sum_") +
                       std::to_string(static_cast<int>(type.id)) + "_" + std::to_string(type.precision) +
                       "_" + std::to_string(type.scale);
    if (sums_.insert(name).second) {
        session_.connection().AddAggregate(
            name, [type, average] { return std::make_unique<SumAggregate>(type, average); });
    }
    return name;
}

std::int64_t SqliteFunctions::Add(Operation operation) {
    operations_[next_] = std::move(operation);
    return next_++;
}

void SqliteFunctions::Run(const FunctionCall& call) {
    const auto found = operations_.find(call.Int(0));
    if (found == operations_.end()) {
        throw std::logic_error("an operation that has ended was called");
    }
    session_.CheckCancelled();
    const Operation& operation = found->second;
    std::vector<Value> slots(operation.slots.size());
    for (std::size_t i = 0; i < slots.size(); ++i) {
        slots[i] = call.Argument(i + 1, operation.slots[i]);
    }
    call.Result(operation.compute(slots), operation.type);
}

} // namespace devsql
