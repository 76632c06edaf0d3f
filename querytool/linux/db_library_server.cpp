// The server over FreeTDS's DB-Library. ODBC would do too, but its driver for this system sorts the messages
// of a statement and leaves out their state, and the output is the only place where a failing script shows:
// there every message must stand where the server sent it. Knows no file and no format of the output.
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

/// Seconds that the server has to confirm that it has given up a batch that takes too long.
constexpr int kCancelSeconds = 5;

/// Errors begin at this level, as the server counts.
constexpr int kFirstErrorLevel = 11;

/// What ODBC would ask the server for, and a session of this library does not have by itself: the scripts
/// were written for a tool that runs over ODBC.
constexpr const char* kSessionOptions =
    "SET ANSI_NULLS ON SET ANSI_NULL_DFLT_ON ON SET ANSI_PADDING ON SET ANSI_WARNINGS ON "
    "SET CONCAT_NULL_YIELDS_NULL ON SET QUOTED_IDENTIFIER ON SET TEXTSIZE 2147483647";

/// Reports of the library that tell nothing new: a message of the server came, a character has no place in
/// the server's own code page.
constexpr std::array kUnsaid = {SYBESMSG, SYBEICONVIU, SYBEICONVI};

struct OwnText {
    int number;
    const char* sql_state;
    const char* text; ///< null: the library's own
};

/// Reports of the library in the tool's own words.
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

/// "host,port" in the library's own form.
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
    /// The library's handlers are the process's: they belong to the one server that there is.
    static DbLibraryServer*& Active() {
        static DbLibraryServer* active = nullptr;
        return active;
    }
    static int OnReport(DBPROCESS* process, int severity, int number, int system_error, char* text,
                        char* system_text);
    static int OnMessage(DBPROCESS* process, DBINT number, int state, int severity, char* text, char* server,
                         char* procedure, int line);

    bool Open(const LoginSettings& settings);
    void RunBatch(const std::string& batch);
    void TakeResult();
    void TakeRows(int columns);
    void EndResult();
    void Report(int number, std::string_view text, int system_error, std::string_view system_text);
    void Tell(const Diagnostic& diagnostic);

    /// A call of the tool: as long as it lasts, reports go to its sink.
    class Call;

    std::unique_ptr<DBPROCESS, CloseProcess> process_;
    int query_timeout_ = 0;
    // Of the running call:
    ResultSink* sink_ = nullptr;
    std::exception_ptr failure_; ///< of the sink: exceptions must not cross the library
    std::size_t told_ = 0;       ///< what has been reported so far
    bool reason_told_ = false;   ///< what the library reports further is only what follows from it
    bool timed_out_ = false;
    bool in_rows_ = false; ///< a result with columns has begun and not ended
};

/// INT_TIMEOUT makes the library ask the server to give the batch up, INT_CANCEL makes it give up itself.
int DbLibraryServer::OnReport(DBPROCESS*, int, int number, int system_error, char* text, char* system_text) {
    DbLibraryServer* const server = Active();
    if (server == nullptr || std::ranges::find(kUnsaid, number) != kUnsaid.end()) {
        return INT_CANCEL;
    }
    server->Report(number, Text(text), system_error, Text(system_text));
    if (number == SYBETIME && server->process_ && !std::exchange(server->timed_out_, true)) {
        dbsettime(kCancelSeconds); // a server that does not answer this either is lost
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
    // A login that the server refuses is told by the server.
    Active()->reason_told_ = Active()->reason_told_ || (message.error && !Active()->process_);
    Active()->Tell(message);
    return 0;
}

void DbLibraryServer::Report(int number, std::string_view text, int system_error,
                             std::string_view system_text) {
    ++told_;
    if (std::exchange(reason_told_, true)) {
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
    Tell(report);
}

void DbLibraryServer::Tell(const Diagnostic& diagnostic) {
    ++told_;
    if (sink_ == nullptr || failure_) {
        return;
    }
    try {
        // Looking for the next row, the library reads on to the next result of a procedure. The count of rows
        // is there when the result has ended: the message then comes after it.
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
        server.reason_told_ = false;
        server.timed_out_ = false;
        server.in_rows_ = false;
    }
    ~Call() { server_.sink_ = nullptr; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Throws what the sink has thrown inside the library.
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
    // The version that knows (max) but none of the types after it: the server then sends those as text.
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
    dbsqlok(process); // a first statement that fails is no reason not to take the results of the others
    while (dbdead(process) == FALSE && !timed_out_ && !failure_ && !sink_->Ended()) {
        const std::size_t told = told_;
        const RETCODE code = dbresults(process);
        if (code == NO_MORE_RESULTS) {
            return;
        }
        if (code == SUCCEED) {
            TakeResult();
        } else if (told_ == told) {
            break; // it failed without a word, and would do so for ever
        }
    }
    dbcancel(process);
}

void DbLibraryServer::TakeResult() {
    const int count = dbnumcols(process_.get());
    if (count > 0) {
        TakeRows(count);
    } else if (dbiscount(process_.get()) != FALSE) {
        sink_->ResultEnd(dbcount(process_.get()));
    }
}

void DbLibraryServer::TakeRows(int columns) {
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
