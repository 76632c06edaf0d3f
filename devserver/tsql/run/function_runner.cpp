// Runs the body of a user's function in an interpreter of its own.
#include "devserver/tsql/run/function_runner.h"

namespace devsql {
namespace {

/// Discards everything: the body of a function sends nothing.
class NoSink : public ResultSink {
  public:
    void Columns(const std::vector<Column>&) override {}
    void Row(const std::vector<Value>&) override {}
    void StatementDone(Command, std::optional<std::int64_t>, bool) override {}
    void Send(const Message&) override {}
    void DatabaseChanged(const std::string&, const std::string&) override {}
    void OutputParameter(const std::string&, const Type&, const Value&) override {}
    void ReturnStatus(std::int32_t) override {}
};

} // namespace

Value FunctionRunner::Call(SessionCore& session, const std::string& database, const ObjectDef& function,
                           std::span<const Value> arguments, std::span<const Type> types) const {
    std::vector<ActualArgument> actual;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        actual.push_back({"", arguments[i], types[i], false, false});
    }
    return Interpreter(session, find_system_procedure_).CallFunction(function, database, actual);
}

Value Interpreter::CallFunction(const ObjectDef& object, const std::string& database,
                                const std::vector<ActualArgument>& arguments) {
    Catalogue& catalogue = session_.databases().Get(database);
    Frame frame;
    frame.procedure = object.name;
    frame.procedure_id = object.id;
    frame.database = database;
    std::vector<ParameterDef> formal = catalogue.Parameters(object.id);
    Variable result{formal.back().type, {}};
    formal.pop_back();
    BindArguments(session_, object.name, formal, arguments, frame);
    const std::shared_ptr<const ast::CreateModuleStatement> module =
        session_.databases().Module(catalogue, object);
    function_result_ = &result;
    NoSink none;
    ResultSink* const sink = session_.results().Exchange(&none);
    const std::int32_t error = session_.status().last_error;
    const std::int64_t rows = session_.status().row_count;
    const auto leave = [&] {
        session_.results().Exchange(sink);
        session_.status().last_error = error;
        session_.status().row_count = rows;
    };
    try {
        RunBody(object, frame, *module);
    } catch (...) {
        leave();
        throw;
    }
    leave();
    return result.value;
}

} // namespace devsql
