// The fixture, and the table of faults that are tried at each step. See fault_fixture.h.
#include "admin/faults/fault_fixture.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ado/connection.h"
#include "platform/files.h"
#include "support/log_lines.h"
#include "support/short_time_outs.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using support::Fault;

// The ends of the names of a database's files.
constexpr char kDataEnd[] = "_dat.mdf";
constexpr char kLogEnd[] = "_lg.ldf";
constexpr std::int32_t kLongest = 300;      ///< seconds for a statement of the test itself
constexpr char kPreparation[] = "PRINT ''"; // the database layer runs it before every statement

struct FaultKind {
    Fault fault;
    bool before;           ///< it happens before the server does the step
    bool always;           ///< tried always; others are tried only if EveryFault() is true
    bool in_front = false; ///< tried also at the database layer's own statement before the step
};

/// The driver ends a login that hangs by closing the connection, and a statement that hangs by cancelling it.
constexpr FaultKind kFaults[] = {
    {Fault::CutBefore, true, true, true},    {Fault::CutAfter, false, true},
    {Fault::HangBefore, true, true},         {Fault::HangAfter, false, true},
    {Fault::KillBefore, true, true},         {Fault::KillAfter, false, true},
    {Fault::ResetBefore, true, false, true}, {Fault::ResetAfter, false, false},
    {Fault::KillProgramBefore, true, false}, {Fault::KillProgramAfter, false, false},
    {Fault::RefuseRight, true, false},       {Fault::RefuseRoom, true, false}};

bool IsKill(Fault fault) {
    return fault == Fault::KillBefore || fault == Fault::KillAfter;
}

bool KillsTheProgram(Fault fault) {
    return fault == Fault::KillProgramBefore || fault == Fault::KillProgramAfter;
}

/// Runs the operation in a process of its own, which the fault is to kill.
void RunUntilKilled(const FaultyOperation& operation, FaultFixture& fixture) {
    std::array<int, 2> start{};
    ASSERT_EQ(pipe(start.data()), 0);
    const pid_t program = fork();
    if (program == 0) {
        char go = 0;
        _exit(read(start[0], &go, 1) == 1 && operation.run(fixture) ? 0 : 1);
    }
    fixture.Proxy().KillProgramBy([program] { kill(program, SIGKILL); });
    EXPECT_EQ(write(start[1], "g", 1), 1);
    int status = 0;
    EXPECT_EQ(waitpid(program, &status, 0), program);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    close(start[0]);
    close(start[1]);
}

/// The events that the proxy sees up to and including the step `last`.
Lines EventsUpTo(const std::vector<Step>& steps, std::size_t last) {
    Lines events;
    for (std::size_t i = 0; i <= last; ++i) {
        if (steps[i].event != "login") {
            events.emplace_back(kPreparation);
        }
        events.push_back(steps[i].event);
    }
    return events;
}

void ReplaceAll(std::string& text, const std::string& what, const char* by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos;) {
        text.replace(at, what.size(), by);
    }
}

/// The events that the proxy has seen, with placeholders for the parts that differ from run to run.
Lines EventsOf(FaultFixture& fixture) {
    Lines events = fixture.Proxy().Events();
    for (std::string& event : events) {
        ReplaceAll(event, fixture.DataFolder().string(), "{data}");
        ReplaceAll(event, fixture.ServerName(), "{server}");
    }
    return events;
}

const std::string& StateBefore(const FaultyOperation& operation, std::size_t step) {
    const std::string& own = operation.steps[step].state_before;
    if (!own.empty()) {
        return own;
    }
    return step == 0 ? operation.state_before : operation.steps[step - 1].state;
}

void RunWithoutFault(const FaultyOperation& operation, const std::filesystem::path& model) {
    FaultFixture fixture(model);
    EXPECT_EQ(operation.state(fixture), operation.state_before);
    support::TakeTimeOuts(); // of the test's own statements
    EXPECT_TRUE(operation.run(fixture));
    EXPECT_EQ(support::TakeTimeOuts(), std::set<std::uintptr_t>{300});
    EXPECT_EQ(EventsOf(fixture), EventsUpTo(operation.steps, operation.steps.size() - 1));
    EXPECT_EQ(operation.state(fixture), operation.steps.back().state);
    EXPECT_EQ(fixture.LogLines(), Lines());
}

/// Runs the operation with one fault, `ahead` events before the step's own event, and checks the events, the
/// log and the state.
void RunWithFault(const FaultyOperation& operation, const std::filesystem::path& model, std::size_t step,
                  const FaultKind& kind, std::size_t ahead) {
    const Fault fault = kind.fault;
    FaultFixture fixture(model);
    Lines events = EventsUpTo(operation.steps, step);
    events.resize(events.size() - ahead);
    fixture.Proxy().Arm(events.size() - 1, fault);
    if (KillsTheProgram(fault)) {
        RunUntilKilled(operation, fixture);
    } else {
        EXPECT_FALSE(operation.run(fixture));
    }
    EXPECT_TRUE(fixture.Proxy().Struck());
    EXPECT_EQ(EventsOf(fixture), events); // nothing ran after the fault
    EXPECT_EQ(fixture.LogLines(), KillsTheProgram(fault) ? Lines() : operation.log_lines(step));
    if (IsKill(fault)) {
        fixture.RestartServer();
    }
    EXPECT_EQ(operation.state(fixture),
              kind.before ? StateBefore(operation, step) : operation.steps[step].state);
}

} // namespace

bool EveryFault() {
    return std::getenv("KV_EVERY_FAULT") != nullptr;
}

FaultFixture::FaultFixture() : proxy_(server_.Port(), [this] { server_.Kill(); }) {
    SetUp();
}

FaultFixture::FaultFixture(const std::filesystem::path& model)
    : server_(model), proxy_(server_.Port(), [this] { server_.Kill(); }) {
    SetUp();
    for (const std::string& name : DatabasesInOldFolder()) {
        // The installation's script too puts a backslash before the file's name.
        const std::string path = OldFolder().string() + "\\" + name;
        Ask("master", "sp_attach_db N'" + name + "', N'" + path + kDataEnd + "', N'" + path + kLogEnd + "'");
    }
}

Lines FaultFixture::DatabasesInOldFolder() const {
    Lines names;
    for (const auto& entry : std::filesystem::directory_iterator(OldFolder())) {
        const std::string file = entry.path().filename().string();
        if (file.ends_with(kDataEnd)) {
            names.push_back(file.substr(0, file.size() - std::string_view(kDataEnd).size()));
        }
    }
    return names;
}

void FaultFixture::SetUp() {
    for (const char* folder : {"data", "old", "Log"}) {
        std::filesystem::create_directory(Folder() / folder);
    }
    const std::filesystem::path registry = Folder() / "registry.reg";
    std::ofstream(registry) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK\\QUORLEN\\Log]\n@=\""
                            << (Folder() / "Log").string() << "\"\n";
    setenv("KVLSQLDBMGR_REGISTRY", registry.c_str(), 1);
    const std::filesystem::path hang_ahead = Folder() / "hang_ahead";
    setenv(support::kHangAheadVariable, hang_ahead.c_str(), 1);
    proxy_.AnnounceHangs(hang_ahead);
}

void FaultFixture::SaveAs(const std::filesystem::path& model) {
    for (const std::string& name : DatabasesInOldFolder()) {
        Ask("master", "sp_detach_db N'" + name + "'");
    }
    server_.Stop();
    std::filesystem::copy(Folder(), model, std::filesystem::copy_options::recursive);
}

void FaultFixture::CreateDatabase(const std::string& name, const Lines& batches) {
    const std::string path = (OldFolder() / name).string();
    Ask("master", "CREATE DATABASE " + name + " ON (NAME=" + name + "_dat, FILENAME='" + path + kDataEnd +
                      "') LOG ON (NAME=" + name + "_lg, FILENAME='" + path + kLogEnd + "')");
    for (const std::string& batch : batches) {
        Ask(name, batch);
    }
}

void FaultFixture::RestartServer() {
    master_.reset();
    server_.StartAgain();
}

ado::Connection FaultFixture::Connect(const std::string& database) const {
    ado::Connection connection;
    connection.CursorLocation(ado::adUseClient);
    connection.CommandTimeout(kLongest);
    connection.ConnectionTimeout(kLongest);
    connection.Open("Driver={SQL Server};Server=" + server_.Name() + ";Database=" + database +
                        ";Uid=sa;Pwd=Test-1;",
                    "", "", ado::adOptionUnspecified);
    return connection;
}

Lines FaultFixture::Ask(const std::string& database, const std::string& statement) const {
    std::optional<ado::Connection> own;
    std::optional<ado::Connection>& connection = database == "master" ? master_ : own;
    if (!connection) {
        connection.emplace(Connect(database));
    }
    std::int64_t affected = 0;
    const auto rows = connection->Execute(statement, affected, ado::adCmdText);
    Lines lines;
    while (rows->State() == ado::adStateOpen && !rows->Eof()) {
        std::string line;
        for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
            const ado::Variant value = rows->Fields().Item(i).Value();
            line += (i == 0 ? "" : " ") + (value.IsNull() ? std::string("-") : value.ToString());
        }
        lines.push_back(line);
        rows->MoveNext();
    }
    return lines;
}

std::string FaultFixture::AskOne(const std::string& database, const std::string& statement) const {
    const Lines lines = Ask(database, statement);
    return lines.empty() ? "" : lines.front();
}

bool FaultFixture::HasDatabase(const std::string& name) const {
    return !Ask("master", "SELECT name FROM master.dbo.sysdatabases WHERE name = '" + name + "'").empty();
}

Lines FaultFixture::LogLines() const {
    // The folder has one log, named after the program that wrote it.
    const std::filesystem::directory_iterator logs(Folder() / "Log");
    return logs == std::filesystem::directory_iterator()
               ? Lines{}
               : support::LogLines(platform::ReadWholeFile(logs->path().string()));
}

void MakeServerModel(const std::function<void(FaultFixture&)>& prepare, const std::filesystem::path& model) {
    support::RunInChildren({{"preparation",
                             [&] {
                                 FaultFixture fixture;
                                 prepare(fixture);
                                 fixture.SaveAs(model);
                             }}},
                           1);
}

void TryEveryFault(const char* name, const FaultyOperation& operation) {
    const support::TempFolder folder;
    const std::filesystem::path& model = folder.Path();
    MakeServerModel(operation.prepare, model);
    std::vector<support::Case> cases = {{"no fault", [&] { RunWithoutFault(operation, model); }}};
    for (std::size_t i = 0; i < operation.steps.size(); ++i) {
        const std::string& event = operation.steps[i].event;
        for (const FaultKind& kind : kFaults) {
            if (!kind.always && !EveryFault()) {
                continue;
            }
            const std::string fault = support::NameOf(kind.fault);
            cases.push_back({fault + " at " + event, [&, i] { RunWithFault(operation, model, i, kind, 0); }});
            if (kind.in_front && event != "login") {
                cases.push_back({fault + " in the event before " + event,
                                 [&, i] { RunWithFault(operation, model, i, kind, 1); }});
            }
        }
    }
    support::RunInChildren(cases, kFaultsAtOnce);
    std::printf("%s: %zu faults tried at %zu steps\n", name, cases.size() - 1, operation.steps.size());
}

} // namespace kv
