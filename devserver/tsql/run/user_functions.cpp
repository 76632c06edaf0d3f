// Scalar functions that users define: their body is run by an interpreter of its own, in the middle of the
// statement that calls them. They send nothing and change nothing, which their definition has been held to.
#include "devserver/tsql/run/interpreter.h"

namespace devsql {
namespace {

/// For a body whose statements end unseen.
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

Value CallByNumber(SessionCore& session, std::span<const Value> values, std::span<const Type> types) {
    constexpr std::size_t kLeading = 2;
    const std::string& database = std::get<std::string>(values[0]);
    Catalogue& catalogue = session.Database(database);
    const std::optional<ObjectDef> object = catalogue.FindObject(std::get<std::int64_t>(values[1]));
    std::vector<ActualArgument> arguments;
    for (std::size_t i = kLeading; i < values.size(); ++i) {
        arguments.push_back({"", values[i], types[i], false, false});
    }
    return Interpreter(session).CallFunction(object.value(), catalogue, database, arguments);
}

} // namespace

const SessionFunction& UserFunctionCall() {
    static constexpr SessionFunction kCall{"", 2, 1024, {}, CallByNumber, false};
    return kCall;
}

Value Interpreter::CallFunction(const ObjectDef& object, Catalogue& catalogue, const std::string& database,
                                const std::vector<ActualArgument>& arguments) {
    Frame frame;
    frame.procedure = object.name;
    frame.procedure_id = object.id;
    frame.database = database;
    std::vector<ParameterDef> formal = catalogue.Parameters(object.id);
    Variable result{formal.back().type, {}};
    formal.pop_back();
    BindArguments(session_, object.name, formal, arguments, frame);
    const std::shared_ptr<const ast::CreateModuleStatement> module = session_.Module(catalogue, object);
    function_result_ = &result;
    NoSink none;
    ResultSink* const sink = session_.ExchangeSink(&none);
    const std::int32_t error = session_.last_error;
    const std::int64_t rows = session_.row_count;
    const auto leave = [&] {
        session_.ExchangeSink(sink);
        session_.last_error = error;
        session_.row_count = rows;
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
