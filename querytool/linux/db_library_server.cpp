// The server over FreeTDS's DB-Library. FreeTDS's driver for ODBC is not used, because it sorts the messages
// of a statement and leaves out their state. The output is the only place where a failing script can be seen,
// so every message must come in the order in which the server sent it.
#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "querytool/linux/db_library_values.h"
#include "querytool/server.h"

namespace querytool {
namespace {

/// How long, in seconds, the server may take to confirm that it has cancelled a batch.
constexpr int kCancelSeconds = 5;

/// Errors have this severity or a higher one.
constexpr int kFirstErrorLevel = 11;

/// The options that ODBC would set and this library does not: the scripts were written for a tool over ODBC.
constexpr const char* kSessionOptions =
    "SET ANSI_NULLS ON SET ANSI_NULL_DFLT_ON ON SET ANSI_PADDING ON SET ANSI_WARNINGS ON "
    "SET CONCAT_NULL_YIELDS_NULL ON SET QUOTED_IDENTIFIER ON SET TEXTSIZE 2147483647";

/// The numbers of reports of the library that are not shown: that the server has sent a message, and that a
/// character is not in the server's code page.
constexpr std::array kIgnored = {SYBESMSG, SYBEICONVIU, SYBEICONVI};

/// A report of the library with the tool's own text.
struct OwnText {
    int number; ///< the library's
    const char* sql_state;
    const char* text;
};

constexpr std::array kOwnTexts = {
    OwnText{SYBETIME, "HYT00", "Timeout expired"},
    OwnText{SYBECONN, "08001", "Unable to connect: the server is unavailable or does not exist"},
    OwnText{SYBEFCON, "08001", "Unable to connect: the connection failed"},
};

struct FreeLogin {
    void operator()(LOGINREC* login) const { dbloginfree(login); }
};
struct CloseProcess {
    void operator()(DBPROCESS* process) const { dbclose(process); }
};

std::string Text(const char* text) {
    return text != nullptr ? FromLibrary(text) : std::string();
}

/// Converts "host,port" to the library's form "host:port".
std::string ServerName(std::string name) {
    const std::size_t comma = name.rfind(',');
    if (comma != std::string::npos) {
        name[comma] = ':';
    }
    return ToLibrary(name);
}

class DbLibraryServer : public Server {
  public:
    DbLibraryServer() {
        if (dbinit() == FAIL) {
            throw std::runtime_error("FreeTDS's DB-Library cannot be used");
        }
        Active() = this;
        dberrhandle(OnReport);
        dbmsghandle(OnMessage);
    }
    ~DbLibraryServer() override {
        process_.reset();
        dbexit();
        Active() = nullptr;
    }
    DbLibraryServer(const DbLibraryServer&) = delete;
    DbLibraryServer& operator=(const DbLibraryServer&) = delete;

    bool Connect(const LoginSettings& settings, ResultSink& sink) override;
    bool Run(const std::string& batch, ResultSink& sink) override;

  private:
    /// Returns the one server object, to which the handlers pass their calls. The library has one set of
    /// handlers for the whole process.
    static DbLibraryServer*& Active() {
        static DbLibraryServer* active = nullptr;
        return active;
    }
    /// Called by the library for an error of its own.
    static int OnReport(DBPROCESS* process, int severity, int number, int system_error, char* text,
                        char* system_text);
    /// Called by the library for an error or a message of the server.
    static int OnMessage(DBPROCESS* process, DBINT number, int state, int severity, char* text, char* server,
                         char* procedure, int line);

    /// Logs in. Returns false if that fails.
    bool Open(const LoginSettings& settings);
    void RunBatch(const std::string& batch);
    /// Sends the current result to the sink.
    void SendResult();
    void SendRows(int columns);
    /// Ends the current result with columns, if there is one.
    void EndResult();
    /// Sends an error of the library to the sink.
    void Report(int number, std::string_view text, int system_error, std::string_view system_text);
    void Send(const Diagnostic& diagnostic);

    /// A running call of Connect or Run. As long as it exists, results and messages go to its sink.
    class Call;

    std::unique_ptr<DBPROCESS, CloseProcess> process_;
    int query_timeout_ = 0; ///< in seconds; 0 means no limit
    // The state of the running call:
    ResultSink* sink_ = nullptr;
    std::exception_ptr failure_;   ///< an exception of the sink, which must not pass through the library
    std::size_t reports_ = 0;      ///< the number of reports and messages so far
    bool reason_reported_ = false; ///< further reports of the library are only consequences of the first
    bool timed_out_ = false;
    bool in_rows_ = false; ///< a result with columns has begun and not ended
};

/// Returns INT_TIMEOUT to make the library ask the server to cancel the batch, or INT_CANCEL to make it give
/// up.
int DbLibraryServer::OnReport(DBPROCESS*, int, int number, int system_error, char* text, char* system_text) {
    DbLibraryServer* const server = Active();
    if (server == nullptr || std::ranges::find(kIgnored, number) != kIgnored.end()) {
        return INT_CANCEL;
    }
    server->Report(number, Text(text), system_error, Text(system_text));
    if (number == SYBETIME && server->process_ && !std::exchange(server->timed_out_, true)) {
        dbsettime(kCancelSeconds); // if the server does not answer in that time, the connection is lost
        return INT_TIMEOUT;
    }
    return INT_CANCEL;
}

int DbLibraryServer::OnMessage(DBPROCESS*, DBINT number, int state, int severity, char* text, char* server,
                               char* procedure, int line) {
    if (Active() == nullptr) {
        return 0;
    }
    Diagnostic message;
    message.error = severity >= kFirstErrorLevel;
    message.sql_state = message.error ? "42000" : "01000";
    message.native_error = number;
    message.message = Text(text);
    message.server = Text(server);
    message.procedure = Text(procedure);
    message.line = line;
    message.severity = severity;
    message.state = state;
    // If the server refuses the login, its own message is the reason.
    Active()->reason_reported_ = Active()->reason_reported_ || (message.error && !Active()->process_);
    Active()->Send(message);
    return 0;
}

void DbLibraryServer::Report(int number, std::string_view text, int system_error,
                             std::string_view system_text) {
    ++reports_;
    if (std::exchange(reason_reported_, true)) {
        return;
    }
    const auto* const own = std::ranges::find(kOwnTexts, number, &OwnText::number);
    Diagnostic report;
    report.sql_state = own != kOwnTexts.end() ? own->sql_state : "HY000";
    report.native_error = number;
    report.message = own != kOwnTexts.end() ? own->text : text;
    if (system_error != 0 && number != SYBETIME && !system_text.empty()) {
        report.message += " (" + std::string(system_text) + ")";
    }
    Send(report);
}

void DbLibraryServer::Send(const Diagnostic& diagnostic) {
    ++reports_;
    if (sink_ == nullptr || failure_) {
        return;
    }
    try {
        // When the library looks for the next row, it may read into the next result of a procedure. If the
        // count of rows is known, the result has ended, and the message comes after it.
        if (in_rows_ && dbiscount(process_.get()) != FALSE) {
            EndResult();
        }
        sink_->Message(diagnostic);
    } catch (...) {
        failure_ = std::current_exception();
    }
}

class DbLibraryServer::Call {
  public:
    Call(DbLibraryServer& server, ResultSink& sink) : server_(server) {
        server.sink_ = &sink;
        server.failure_ = nullptr;
        server.reason_reported_ = false;
        server.timed_out_ = false;
        server.in_rows_ = false;
    }
    ~Call() { server_.sink_ = nullptr; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Rethrows an exception that the sink has thrown inside the library.
    void Finish() {
        if (server_.failure_) {
            std::rethrow_exception(std::exchange(server_.failure_, nullptr));
        }
    }

  private:
    DbLibraryServer& server_;
};

bool DbLibraryServer::Open(const LoginSettings& settings) {
    const std::unique_ptr<LOGINREC, FreeLogin> login(dblogin());
    if (!login) {
        return false;
    }
    struct Setting {
        int which;
        const std::string& value;
        bool always;
    };
    static const std::string kApplication = "OSQL";
    static const std::string kCharacters = "UTF-8";
    const std::array kSettings = {
        Setting{DBSETUSER, settings.user, true},         Setting{DBSETPWD, settings.password, true},
        Setting{DBSETAPP, kApplication, true},           Setting{DBSETCHARSET, kCharacters, true},
        Setting{DBSETHOST, settings.workstation, false}, Setting{DBSETDBNAME, settings.database, false}};
    for (const Setting& setting : kSettings) {
        if ((setting.always || !setting.value.empty()) &&
            dbsetlname(login.get(), ToLibrary(setting.value).c_str(), setting.which) == FAIL) {
            return false;
        }
    }
    if (settings.packet_size != 0) {
        dbsetllong(login.get(), static_cast<long>(settings.packet_size), DBSETPACKET);
    }
    // This version has (max), but no later types: the server then sends those as text.
    dbsetlversion(login.get(), DBVERSION_72);
    dbsetlogintime(static_cast<int>(settings.login_timeout));
    process_.reset(dbopen(login.get(), ServerName(settings.server).c_str()));
    return process_ != nullptr;
}

bool DbLibraryServer::Connect(const LoginSettings& settings, ResultSink& sink) {
    query_timeout_ = static_cast<int>(settings.query_timeout);
    Call call(*this, sink);
    if (Open(settings)) {
        RunBatch(kSessionOptions);
    }
    call.Finish();
    return process_ && dbdead(process_.get()) == FALSE;
}

bool DbLibraryServer::Run(const std::string& batch, ResultSink& sink) {
    Call call(*this, sink);
    RunBatch(batch);
    call.Finish();
    return dbdead(process_.get()) == FALSE;
}

void DbLibraryServer::RunBatch(const std::string& batch) {
    DBPROCESS* const process = process_.get();
    dbsettime(query_timeout_);
    if (dbcmd(process, ToLibrary(batch).c_str()) == FAIL || dbsqlsend(process) == FAIL) {
        return;
    }
    dbsqlok(process); // if the first statement fails, the results of the others are still read
    while (dbdead(process) == FALSE && !timed_out_ && !failure_ && !sink_->Ended()) {
        const std::size_t reports_before = reports_;
        const RETCODE code = dbresults(process);
        if (code == NO_MORE_RESULTS) {
            return;
        }
        if (code == SUCCEED) {
            SendResult();
        } else if (reports_ == reports_before) {
            break; // it failed without a report, and would fail again for ever
        }
    }
    dbcancel(process);
}

void DbLibraryServer::SendResult() {
    const int count = dbnumcols(process_.get());
    if (count > 0) {
        SendRows(count);
    } else if (dbiscount(process_.get()) != FALSE) {
        sink_->ResultEnd(dbcount(process_.get()));
    }
}

void DbLibraryServer::SendRows(int columns) {
    DBPROCESS* const process = process_.get();
    std::vector<Column> descriptions;
    for (int number = 1; number <= columns; ++number) {
        descriptions.push_back(ColumnAt(process, number));
    }
    sink_->ResultBegin(descriptions);
    in_rows_ = true;
    std::vector<Value> row(descriptions.size());
    RETCODE code = dbnextrow(process);
    for (; code != NO_MORE_ROWS && code != FAIL && !failure_ && !sink_->Ended(); code = dbnextrow(process)) {
        if (code != REG_ROW) {
            continue; // a row of COMPUTE
        }
        for (int number = 1; number <= columns; ++number) {
            row[static_cast<std::size_t>(number) - 1] = CellAt(process, number);
        }
        sink_->Row(row);
    }
    EndResult();
}

void DbLibraryServer::EndResult() {
    if (std::exchange(in_rows_, false)) {
        sink_->ResultEnd(dbiscount(process_.get()) != FALSE ? dbcount(process_.get()) : -1);
    }
}

} // namespace

std::unique_ptr<Server> MakeServer() {
    return std::make_unique<DbLibraryServer>();
}

} // namespace querytool
