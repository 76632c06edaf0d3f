// EXEC of a procedure on a linked server: the call is sent as text, its results are passed on, and its return
// value and output parameters are read after them.
#include "devserver/tsql/linked/remote_servers.h"
#include "devserver/tsql/linked/remote_values.h"
#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr const char* kStatus = "devsql_status";
constexpr std::uint8_t kFirstErrorSeverity = 11;

/// Passes results and messages on. Keeps the row with the return value, and the errors.
class CallSink : public RemoteSink {
  public:
    explicit CallSink(SessionCore& session) : session_(session) {}

    void Columns(const std::vector<Column>& columns) override {
        End();
        own_ = !columns.empty() && columns[0].name == kStatus;
        if (!own_) {
            session_.results().sink().Columns(columns);
            rows_ = 0;
        }
    }
    void Row(const std::vector<Value>& values) override {
        session_.CheckCancelled();
        if (own_) {
            answer = values;
            return;
        }
        session_.results().sink().Row(values);
        ++*rows_;
    }
    void Count(std::int64_t rows) override {
        End();
        session_.results().Done(Command::None, rows);
    }
    void Said(const Message& message) override {
        End();
        if (message.severity >= kFirstErrorSeverity) {
            errors.push_back(message);
        } else {
            session_.results().Print(message);
        }
    }
    /// Ends the result set that is open.
    void End() {
        if (rows_) {
            session_.results().Done(Command::Select, *std::exchange(rows_, std::nullopt));
        }
    }

    std::vector<Value> answer; ///< the return value and the output parameters; empty if they did not come
    std::vector<Message> errors;

  private:
    SessionCore& session_;
    bool own_ = false;
    std::optional<std::int64_t> rows_;
};

std::string OutputName(std::size_t number) {
    return "@devsql_" + std::to_string(number);
}

/// The type of the variable that holds the value at the other server: the same type, but a (max) type for
/// text, ntext and image, of which there are no variables.
Type VariableType(const Type& type) {
    const Type settled = Settled(type);
    return !IsOldLob(settled.id)         ? settled
           : settled.id == TypeId::NText ? Sized(TypeId::NVarChar, kMaxLength)
           : settled.id == TypeId::Text  ? Sized(TypeId::VarChar, kMaxLength)
                                         : Sized(TypeId::VarBinary, kMaxLength);
}

std::string QualifiedName(const ast::Name& name) {
    std::string text;
    for (std::size_t i = 1; i < name.parts.size(); ++i) {
        const bool written = !name.parts[i].empty();
        text += (text.empty() ? "" : ".") + (written ? BracketName(name.parts[i]) : std::string());
    }
    return text;
}

/// The batch that makes the call at the other server. Its last SELECT returns the return value and the output
/// parameters.
std::string CallText(const ast::Name& name, const std::vector<ActualArgument>& arguments) {
    std::string declarations = "DECLARE @devsql_status int\n";
    std::string actual;
    std::string answer = std::string("SELECT @devsql_status AS ") + kStatus;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const ActualArgument& argument = arguments[i];
        actual += (actual.empty() ? " " : ", ") + (argument.name.empty() ? "" : argument.name + " = ");
        if (argument.use_default) {
            actual += "DEFAULT";
        } else if (argument.output) {
            const Type type = VariableType(argument.type);
            declarations += "DECLARE " + OutputName(i) + " " + FullTypeName(type) + "\nSET " + OutputName(i) +
                            " = " + RemoteLiteral(argument.value, type) + "\n";
            actual += OutputName(i) + " OUTPUT";
            answer += ", " + CarriedExpression(OutputName(i), type);
        } else {
            actual += RemoteLiteral(argument.value, Settled(argument.type));
        }
    }
    return declarations + "EXEC @devsql_status = " + QualifiedName(name) + actual + "\n" + answer;
}

} // namespace

CallResult Interpreter::CallRemote(const ast::Name& name, const std::vector<ActualArgument>& arguments) {
    RemoteServers& remote = session_.remote();
    const LinkedServer server = remote.Find(name.parts[0]);
    if (!server.Is("rpc out")) {
        RaiseError(7411, {server.name, "RPC"});
    }
    remote.Join(server);
    session_.status().last_error = 0;
    CallSink sink(session_);
    remote.Run(server, CallText(name, arguments), sink);
    sink.End();
    const bool returned = !sink.answer.empty() && !IsNull(sink.answer[0]);
    for (std::size_t i = 0; i < sink.errors.size(); ++i) {
        const Message& error = sink.errors[i];
        const bool last = i + 1 == sink.errors.size();
        if (tries_ > 0 || (last && !returned)) { // A call without return value has failed as a whole.
            throw SqlError(error.number, error.severity, error.state, error.text);
        }
        session_.status().last_error = error.number;
        session_.results().Print(error);
    }
    CallResult result;
    result.status = returned ? static_cast<std::int32_t>(std::get<std::int64_t>(sink.answer[0])) : 0;
    std::size_t next = 1;
    for (const ActualArgument& argument : arguments) {
        const bool output = argument.output && !argument.use_default && next < sink.answer.size();
        const Type type = VariableType(argument.type);
        result.outputs.push_back(
            output ? std::optional(Variable{type, CarriedValue(sink.answer[next++], type)}) : std::nullopt);
    }
    return result;
}

} // namespace devsql
