// Calls of procedures: finding them, passing arguments, returning values.
#include <algorithm>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/parse/located_error.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/run/statements.h"
#include "devserver/tsql/run/system_call.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {
namespace {

/// Keeps the rows of a statement for INSERT … EXEC instead of sending them.
class CaptureSink : public ResultSink {
  public:
    CaptureSink(ResultSink& outer, RowSet& rows) : outer_(outer), rows_(rows) {}

    void Columns(const std::vector<Column>& columns) override {
        if (!rows_.columns.empty() && rows_.columns.size() != columns.size()) {
            RaiseError(213);
        }
        convert_ = !rows_.columns.empty();
        if (!convert_) {
            rows_.columns = columns;
        }
        current_ = columns;
    }
    void Row(const std::vector<Value>& values) override {
        rows_.rows.push_back(values);
        for (std::size_t i = 0; convert_ && i < values.size(); ++i) {
            rows_.rows.back()[i] = Convert(values[i], current_[i].type, rows_.columns[i].type);
        }
    }
    void StatementDone(Command, std::optional<std::int64_t>, bool) override {}
    void Send(const Message& message) override { outer_.Send(message); }
    void DatabaseChanged(const std::string& from, const std::string& to) override {
        outer_.DatabaseChanged(from, to);
    }
    void OutputParameter(const std::string&, const Type&, const Value&) override {}
    void ReturnStatus(std::int32_t) override {}

  private:
    ResultSink& outer_;
    RowSet& rows_;
    std::vector<Column> current_;
    bool convert_ = false;
};

std::vector<ParameterDef> SystemParameters(SessionCore& session, std::string_view text) {
    std::vector<ParameterDef> parameters;
    for (const ast::Parameter& parameter : ParseParameters(text)) {
        ParameterDef definition;
        definition.name = parameter.name;
        Emission emission(session);
        definition.type = Binder(session, emission).ResolveType(parameter.type, 1);
        definition.has_default = parameter.default_value != nullptr;
        definition.default_text = parameter.default_text;
        definition.output = parameter.output;
        parameters.push_back(std::move(definition));
    }
    return parameters;
}

Value DefaultValue(SessionCore& session, const ParameterDef& parameter) {
    ast::ExprPtr expr;
    if (AsciiEqual(parameter.default_text, "NULL")) {
        return {};
    }
    try {
        Type type;
        expr = ParseExpression(parameter.default_text);
        if (const auto* word = std::get_if<ast::ColumnExpr>(&expr->node)) { // A bare word is a text.
            const std::string& text = word->name.last();
            return AssignVariable(text, Sized(TypeId::NVarChar, 4000), parameter.type);
        }
        const Value value = ComputeExpression(session, *expr, &type);
        return AssignVariable(value, type, parameter.type);
    } catch (const LocatedError&) {
        return {};
    }
}

} // namespace

namespace {

/// Clients put the version that they were made for into some names: sp_columns_100 is sp_columns.
std::string_view WithoutVersion(std::string_view name) {
    for (const std::string_view version : {"_90", "_100"}) {
        if (name.ends_with(version)) {
            name.remove_suffix(version.size());
        }
    }
    return name;
}

std::vector<std::size_t> BindEach(SessionCore& session, std::string_view procedure,
                                  const std::vector<ParameterDef>& formal,
                                  const std::vector<ActualArgument>& actual, Frame& frame) {
    if (formal.empty() && !actual.empty()) {
        RaiseError(8146, {procedure}, 2);
    }
    std::vector<std::size_t> positions;
    std::vector<bool> given(formal.size());
    bool named = false;
    for (const ActualArgument& argument : actual) {
        std::size_t position = positions.size();
        if (!argument.name.empty()) {
            named = true;
            const auto found = std::find_if(formal.begin(), formal.end(), [&](const ParameterDef& parameter) {
                return SameText(parameter.name, argument.name);
            });
            if (found == formal.end()) {
                RaiseError(8145, {argument.name, procedure}, 2);
            }
            position = static_cast<std::size_t>(found - formal.begin());
            if (given[position]) {
                RaiseError(8143, {argument.name});
            }
        } else if (named) {
            RaiseError(119, {std::to_string(position + 1)});
        }
        if (position >= formal.size()) {
            RaiseError(8144, {procedure}, 2);
        }
        const ParameterDef& parameter = formal[position];
        if (argument.output && !parameter.output) {
            RaiseError(8162, {parameter.name}, 2);
        }
        positions.push_back(position);
        if (argument.use_default) {
            continue;
        }
        given[position] = true;
        Value value;
        if (!IsNull(argument.value)) {
            try {
                value = AssignVariable(argument.value, argument.type, parameter.type);
            } catch (const SqlError& error) {
                if (error.number() != 245 && error.number() != 241) {
                    throw;
                }
                RaiseError(8114, {TypeName(argument.type.id), TypeName(parameter.type.id)}, 5);
            }
        }
        frame.variables[ToUpper(parameter.name)] = {parameter.type, std::move(value)};
    }
    for (std::size_t i = 0; i < formal.size(); ++i) {
        if (given[i]) {
            continue;
        }
        if (!formal[i].has_default) {
            RaiseError(201, {procedure, formal[i].name}, 4);
        }
        frame.variables[ToUpper(formal[i].name)] = {formal[i].type, DefaultValue(session, formal[i])};
    }
    return positions;
}

} // namespace

std::vector<std::size_t> BindArguments(SessionCore& session, std::string_view procedure,
                                       const std::vector<ParameterDef>& formal,
                                       const std::vector<ActualArgument>& actual, Frame& frame) {
    constexpr std::int32_t kOfTheBatch = 119; // An error of the call itself, not of the procedure.
    try {
        return BindEach(session, procedure, formal, actual, frame);
    } catch (const SqlError& error) {
        if (error.number() == kOfTheBatch) {
            throw;
        }
        throw CallError(error, std::string(procedure));
    }
}

// ------------------------------------------------------------------ stored procedures

void Interpreter::RunBody(const ObjectDef& object, Frame& frame, const ast::CreateModuleStatement& module) {
    const Options saved = session_.options();
    const std::int32_t line = session_.status().line;
    session_.calls().Push(frame);
    session_.options().quoted_identifier = object.quoted_identifier;
    session_.options().ansi_nulls = object.ansi_nulls;
    const auto leave = [&] {
        session_.calls().Pop();
        session_.SetOptions(saved);
        session_.status().line = line;
    };
    try {
        RunScope(module.body);
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

CallResult Interpreter::CallStored(const ObjectDef& object, Catalogue& catalogue, const std::string& database,
                                   std::vector<ActualArgument>& arguments) {
    Frame frame;
    frame.procedure = object.name;
    frame.procedure_id = object.id;
    frame.database = database;
    const std::vector<ParameterDef> formal = catalogue.Parameters(object.id);
    const std::vector<std::size_t> positions = BindArguments(session_, object.name, formal, arguments, frame);
    const std::shared_ptr<const ast::CreateModuleStatement> module =
        session_.databases().Module(catalogue, object);
    const int transactions = session_.transactions().count();
    return_value_ = 0;
    session_.status().last_error = 0;
    RunBody(object, frame, *module);
    CallResult result;
    result.status = std::exchange(return_value_, 0);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool output = arguments[i].output && formal[positions[i]].output;
        result.outputs.push_back(output ? std::optional(frame.variables[ToUpper(formal[positions[i]].name)])
                                        : std::nullopt);
    }
    if (session_.transactions().count() != transactions) {
        // Reported in the name of the procedure that has changed the count.
        const std::string counts[] = {std::to_string(transactions),
                                      std::to_string(session_.transactions().count())};
        const SqlError error = ErrorOf(266, {counts[0], counts[1]}, 2);
        session_.results().Print({266, error.severity(), 2, error.text(), object.name, 0});
        session_.status().last_error = 266;
    }
    return result;
}

CallResult Interpreter::Call(const ast::Name& name, std::vector<ActualArgument> arguments) {
    if (session_.remote().Means(name)) {
        return CallRemote(name, arguments);
    }
    OpenDatabases& databases = session_.databases();
    const ObjectPlace place = PlaceOf(session_, name);
    const bool placed = name.parts.size() > 2;
    const std::string database = placed ? place.database : databases.CurrentName();
    Catalogue& catalogue = databases.Get(place.database);
    if (const std::optional<ObjectDef> object = databases.Object(catalogue, place.schema, place.name);
        object && object->type == "P") {
        return CallStored(*object, catalogue, database, arguments);
    }
    if (const SystemProcedure* system = find_system_procedure_(place.name)) {
        return CallSystem(*system, database, arguments);
    }
    if (ToLower(place.name).starts_with("sp_")) { // A procedure of master can be called in every database.
        Catalogue& master = databases.Get("master");
        if (const std::optional<ObjectDef> object = master.FindObject("dbo", WithoutVersion(place.name));
            object && object->type == "P") {
            return CallStored(*object, master, database, arguments);
        }
    }
    RaiseError(2812, {name.text()}, 62);
}

CallResult Interpreter::CallSystem(const SystemProcedure& procedure, const std::string& database,
                                   const std::vector<ActualArgument>& arguments) {
    Frame frame;
    frame.procedure = procedure.name;
    frame.database = database;
    std::vector<std::size_t> positions;
    std::vector<ParameterDef> formal;
    if (procedure.parameters != "...") {
        formal = SystemParameters(session_, procedure.parameters);
        positions = BindArguments(session_, procedure.name, formal, arguments, frame);
    }
    const std::int32_t line = session_.status().line;
    SystemCall call(*this, frame, arguments);
    CallResult result;
    session_.status().last_error = 0;
    session_.calls().Push(frame);
    try {
        result.status = RunSystem(procedure, call);
    } catch (...) {
        session_.calls().Pop();
        throw;
    }
    session_.calls().Pop();
    session_.status().line = line;
    result.outputs = std::move(call.outputs);
    for (std::size_t i = result.outputs.size(); i < positions.size(); ++i) {
        result.outputs.push_back(arguments[i].output
                                     ? std::optional(frame.variables[ToUpper(formal[positions[i]].name)])
                                     : std::nullopt);
    }
    return result;
}

// ------------------------------------------------------------------ EXECUTE

std::vector<ActualArgument> Interpreter::Arguments(const ast::ExecuteStatement& call) {
    std::vector<ActualArgument> arguments;
    for (const ast::Argument& given : call.arguments) {
        ActualArgument argument;
        argument.name = given.name;
        argument.output = given.output;
        argument.use_default = given.value == nullptr;
        if (given.value) {
            argument.value = ComputeExpression(session_, *given.value, &argument.type);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

void Interpreter::ExecuteCall(const ast::ExecuteStatement& call) {
    ast::Name name = call.procedure;
    if (!call.procedure_variable.empty()) {
        const Variable& variable = session_.calls().FindVariable(call.procedure_variable);
        const std::string text = IsNull(variable.value) ? "" : ValueText(variable.value, variable.type);
        name = ParseName(text);
        if (name.empty()) {
            RaiseError(2812, {text}, 62);
        }
    }
    const CallResult result = Call(name, Arguments(call));
    for (std::size_t i = 0; i < call.arguments.size() && i < result.outputs.size(); ++i) {
        if (result.outputs[i]) {
            const auto& variable = std::get<ast::VariableExpr>(call.arguments[i].value->node);
            AssignTo(session_, variable.name, result.outputs[i]->value, result.outputs[i]->type);
        }
    }
    if (!call.return_variable.empty()) {
        AssignTo(session_, call.return_variable, std::int64_t{result.status}, Simple(TypeId::Int));
    }
    if (session_.calls().frame().procedure.empty()) {
        session_.results().sink().ReturnStatus(result.status);
    }
}

void Interpreter::ExecuteString(const ast::ExecuteStringStatement& statement) {
    Type type;
    const Value text = ComputeExpression(session_, *statement.text, &type);
    if (IsNull(text)) {
        return;
    }
    RunDynamic(ValueText(text, type));
}

void Interpreter::RunDynamic(const std::string& text) {
    Frame frame;
    frame.database = session_.calls().frame().database;
    const std::string database = session_.databases().own();
    session_.status().last_error = 0;
    RunText(text, frame);
    if (session_.databases().own() != database) { // A USE in the string ends with it.
        session_.databases().Use(database);
    }
}

RowSet Interpreter::Capture(const ast::Statement& statement) {
    RowSet rows;
    CaptureSink sink(session_.results().sink(), rows);
    ResultSink* const outer = session_.results().Exchange(&sink);
    try {
        Execute(statement);
    } catch (...) {
        session_.results().Exchange(outer);
        throw;
    }
    session_.results().Exchange(outer);
    return rows;
}

// ------------------------------------------------------------------ calls from the client

void Interpreter::RunCall(const RpcCall& call) {
    RunGuarded([&] {
        session_.status().line = 1;
        std::string text = call.procedure;
        if (const std::size_t number = text.rfind(";1");
            number != std::string::npos && number + 2 == text.size()) {
            text.resize(number);
        }
        const ast::Name name = ParseName(text);
        if (name.empty()) {
            RaiseError(2812, {text}, 62);
        }
        std::vector<ActualArgument> arguments;
        for (const RpcParameter& parameter : call.parameters) {
            arguments.push_back(
                {parameter.name, parameter.value, parameter.type, parameter.output, parameter.use_default});
        }
        Frame frame;
        session_.calls().Push(frame);
        CallResult result;
        try {
            result = Call(name, std::move(arguments));
        } catch (const SqlError& error) {
            session_.calls().Pop();
            Report(error);
            session_.results().sink().ReturnStatus(-6);
            return;
        } catch (...) {
            session_.calls().Pop();
            throw;
        }
        session_.calls().Pop();
        session_.results().sink().ReturnStatus(result.status);
        for (std::size_t i = 0; i < result.outputs.size(); ++i) {
            if (result.outputs[i]) {
                session_.results().sink().OutputParameter(call.parameters[i].name, result.outputs[i]->type,
                                                          result.outputs[i]->value);
            }
        }
    });
}

} // namespace devsql
