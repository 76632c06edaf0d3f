// Runs T-SQL in-process and writes the results as text that a person can read and compare. The lines are:
// - "id|name": the names of a result set's columns.
// - "1|abc": a row. NULL is written "NULL", a binary value in hexadecimal digits after "0x".
// - "(1)": the number of rows, if the statement has one.
// - "Msg 208.16.1 L1: Invalid object name 'x'.": an error with its number, severity, state and line.
// - "Msg 50000.16.1 p L3: text": an error in the procedure p.
// - "> text": a message that is not an error, such as that of PRINT.
// - "@p = 1": an output parameter.
// - "return 1": a procedure's status other than 0.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "devserver/engine/engine.h"
#include "devserver/tsql/scalar/conversion.h"

namespace devsql::test {

/// Writes the results of calls to `text`, and keeps messages, changes of the database and statuses in lists.
class Transcript : public ResultSink {
  public:
    void Columns(const std::vector<Column>& columns) override {
        columns_ = columns;
        std::string line;
        for (const Column& column : columns) {
            line += (&column == &columns.front() ? "" : "|") + column.name;
        }
        text += line + "\n";
    }
    void Row(const std::vector<Value>& values) override {
        std::string line;
        for (std::size_t i = 0; i < values.size(); ++i) {
            line += (i == 0 ? "" : "|") + Written(values[i], columns_[i].type);
        }
        text += line + "\n";
        last_row = values;
    }
    void StatementDone(Command, std::optional<std::int64_t> rows, bool) override {
        text += rows ? "(" + std::to_string(*rows) + ")\n" : "";
    }
    void Send(const Message& message) override {
        if (message.number == 5701 || message.number == 5703) {
            return;
        }
        messages.push_back(message);
        if (message.severity <= 10) {
            text += "> " + message.text + "\n";
            return;
        }
        text += "Msg " + std::to_string(message.number) + "." + std::to_string(message.severity) + "." +
                std::to_string(message.state) + (message.procedure.empty() ? "" : " " + message.procedure) +
                " L" + std::to_string(message.line) + ": " + message.text + "\n";
    }
    void DatabaseChanged(const std::string& from, const std::string& to) override {
        changes.push_back(from + ">" + to);
    }
    void OutputParameter(const std::string& name, const Type& type, const Value& value) override {
        text += name + " = " + Written(value, type) + "\n";
    }
    void ReturnStatus(std::int32_t status) override {
        statuses.push_back(status);
        if (status != 0) {
            text += "return " + std::to_string(status) + "\n";
        }
    }

    std::string text;
    std::vector<Message> messages;
    std::vector<std::string> changes; ///< changes of the database: "master>Batch"
    std::vector<std::int32_t> statuses;
    std::vector<Value> last_row;

  private:
    static std::string Written(const Value& value, const Type& type) {
        if (IsNull(value)) {
            return "NULL";
        }
        if (type.id == TypeId::DateTime || type.id == TypeId::SmallDateTime) {
            return std::get<std::string>(Convert(value, type, Type{TypeId::VarChar, 30, 0, 0}, 121));
        }
        if (std::holds_alternative<Bytes>(value)) {
            const Type binary{TypeId::VarBinary, kMaxLength, 0, 0}; // image can't be converted to text
            return std::get<std::string>(Convert(value, binary, Type{TypeId::VarChar, kMaxLength, 0, 0}, 1));
        }
        if (type.id == TypeId::Money || type.id == TypeId::SmallMoney) {
            return std::get<std::string>(Convert(value, type, Type{TypeId::VarChar, 30, 0, 0}, 2));
        }
        return ValueText(value, type);
    }

    std::vector<Column> columns_;
};

/// Makes a temporary folder. The destructor removes it with all files.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "devsql-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder: " + pattern);
        }
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// A client: a session and the messages of its last call.
class Client {
  public:
    explicit Client(std::unique_ptr<Session> session) : session_(std::move(session)) {}

    /// Runs batches that are separated by lines with GO, and returns the transcript of all of them.
    std::string Run(std::string_view sql) {
        Transcript transcript;
        std::string batch;
        for (std::size_t at = 0; at <= sql.size();) {
            const std::size_t end = std::min(sql.find('\n', at), sql.size());
            const std::string_view line = sql.substr(at, end - at);
            if (line == "GO") {
                session_->ExecuteBatch(batch, transcript);
                batch.clear();
            } else {
                batch += std::string(line) + "\n";
            }
            at = end + 1;
        }
        session_->ExecuteBatch(batch, transcript);
        messages = transcript.messages;
        last_row = transcript.last_row;
        return transcript.text;
    }

    /// Calls a procedure as a driver does, and returns the transcript.
    std::string Call(const RpcCall& call) {
        Transcript transcript;
        session_->ExecuteProcedure(call, transcript);
        messages = transcript.messages;
        return transcript.text;
    }

    Session& session() { return *session_; }
    /// Ends the session, as a client that disconnects.
    void Leave() { session_.reset(); }

    std::vector<Message> messages;
    std::vector<Value> last_row;

  private:
    std::unique_ptr<Session> session_;
};

/// A server in a temporary folder, with the logins sa and operator, and with the drive D.
class TestServer {
  public:
    TestServer() { Start(); }

    /// Starts the server, or ends it and starts it again with the same files.
    void Start() {
        engine_.reset();
        EngineOptions options;
        options.root = folder.path() / "root";
        options.logins = {{"sa", "secret"}, {"operator", "pass"}};
        std::filesystem::create_directories(folder.path() / "drive");
        options.drives = {{"D", folder.path() / "drive"}};
        options.server_name = "TESTSERVER\\KV_BATCH";
        engine_ = OpenEngine(std::move(options));
    }
    Engine& engine() { return *engine_; }

    Client Login(const std::string& database = "", const std::string& user = "sa",
                 const std::string& password = "secret") {
        Transcript transcript;
        LoginRequest request;
        request.user = user;
        request.password = password;
        request.database = database;
        request.host_name = "TESTHOST";
        request.application = "tests";
        std::unique_ptr<Session> session = engine_->Login(request, transcript);
        login_text = transcript.text;
        return Client(std::move(session));
    }

    TemporaryFolder folder;
    std::string login_text; ///< the transcript of the last login

  private:
    std::unique_ptr<Engine> engine_;
};

} // namespace devsql::test
