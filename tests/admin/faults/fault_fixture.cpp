#include "admin/faults/fault_fixture.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "ado/connection.h"
#include "platform/files.h"
#include "support/short_time_outs.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using support::Fault;

// Behind a database's name.
constexpr char kDataEnd[] = "_dat.mdf";
constexpr char kLogEnd[] = "_lg.ldf";
constexpr char kPreparation[] = "PRINT ''"; // the layer's own, in front of every statement

/// The driver gives up a login that hangs by going, and a statement by cancelling it.
constexpr Fault kFaults[] = {Fault::CutBefore, Fault::CutAfter,   Fault::HangBefore,
                             Fault::HangAfter, Fault::KillBefore, Fault::KillAfter};

bool IsBefore(Fault fault) {
    return fault == Fault::CutBefore || fault == Fault::HangBefore || fault == Fault::KillBefore;
}

bool IsKill(Fault fault) {
    return fault == Fault::KillBefore || fault == Fault::KillAfter;
}

/// The events of the steps up to and with `last`, as the proxy sees them.
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

/// What the proxy has seen, with a word in the place of what is another one each time.
Lines SeenEvents(FaultRoom& room) {
    Lines events = room.Proxy().Events();
    for (std::string& event : events) {
        ReplaceAll(event, room.DataFolder().string(), "{data}");
        ReplaceAll(event, room.ServerName(), "{server}");
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
    FaultRoom room(model);
    EXPECT_EQ(operation.state(room), operation.state_before);
    support::TakeTimeOuts(); // those of the preparation
    EXPECT_TRUE(operation.run(room));
    EXPECT_EQ(support::TakeTimeOuts(), std::set<std::uintptr_t>{300});
    EXPECT_EQ(SeenEvents(room), EventsUpTo(operation.steps, operation.steps.size() - 1));
    EXPECT_EQ(operation.state(room), operation.steps.back().state);
    EXPECT_EQ(room.LogLines(), Lines());
}

/// `ahead` is how many events before the step's own the fault strikes.
void RunWithFault(const FaultyOperation& operation, const std::filesystem::path& model, std::size_t step,
                  Fault fault, std::size_t ahead) {
    FaultRoom room(model);
    Lines events = EventsUpTo(operation.steps, step);
    events.resize(events.size() - ahead);
    room.Proxy().Arm(events.size() - 1, fault);
    EXPECT_FALSE(operation.run(room));
    EXPECT_TRUE(room.Proxy().Struck());
    EXPECT_EQ(SeenEvents(room), events); // nothing ran behind it
    EXPECT_EQ(room.LogLines(), operation.log_lines(step));
    if (IsKill(fault)) {
        room.StartServerAgain();
    }
    EXPECT_EQ(operation.state(room),
              IsBefore(fault) ? StateBefore(operation, step) : operation.steps[step].state);
}

} // namespace

FaultRoom::FaultRoom() : proxy_(server_.Port(), [this] { server_.Kill(); }) {
    SetUp();
}

FaultRoom::FaultRoom(const std::filesystem::path& model)
    : server_(model), proxy_(server_.Port(), [this] { server_.Kill(); }) {
    SetUp();
    for (const std::string& name : DatabasesInOldFolder()) {
        // A backslash in front of the name, as an installation has it.
        const std::string path = OldFolder().string() + "\\" + name;
        Ask("master", "sp_attach_db N'" + name + "', N'" + path + kDataEnd + "', N'" + path + kLogEnd + "'");
    }
}

Lines FaultRoom::DatabasesInOldFolder() const {
    Lines names;
    for (const auto& entry : std::filesystem::directory_iterator(OldFolder())) {
        const std::string file = entry.path().filename().string();
        if (file.ends_with(kDataEnd)) {
            names.push_back(file.substr(0, file.size() - std::string_view(kDataEnd).size()));
        }
    }
    return names;
}

void FaultRoom::SetUp() {
    for (const char* folder : {"data", "old", "Log"}) {
        std::filesystem::create_directory(Folder() / folder);
    }
    const std::filesystem::path registry = Folder() / "registry.reg";
    std::ofstream(registry) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK\\QUORLEN\\Log]\n@=\""
                            << (Folder() / "Log").string() << "\"\n";
    setenv("KVLSQLDBMGR_REGISTRY", registry.c_str(), 1);
}

void FaultRoom::KeepAs(const std::filesystem::path& model) {
    for (const std::string& name : DatabasesInOldFolder()) {
        Ask("master", "sp_detach_db N'" + name + "'");
    }
    server_.Stop();
    std::filesystem::copy(Folder(), model, std::filesystem::copy_options::recursive);
}

void FaultRoom::CreateDatabase(const std::string& name, const Lines& batches) {
    const std::string path = (OldFolder() / name).string();
    Ask("master", "CREATE DATABASE " + name + " ON (NAME=" + name + "_dat, FILENAME='" + path + kDataEnd +
                      "') LOG ON (NAME=" + name + "_lg, FILENAME='" + path + kLogEnd + "')");
    for (const std::string& batch : batches) {
        Ask(name, batch);
    }
}

void FaultRoom::StartServerAgain() {
    master_.reset();
    server_.StartAgain();
}

ado::Connection FaultRoom::Connect(const std::string& database) const {
    ado::Connection connection;
    connection.CursorLocation(ado::adUseClient);
    connection.Open("Driver={SQL Server};Server=" + server_.Name() + ";Database=" + database +
                        ";Uid=sa;Pwd=Test-1;",
                    "", "", ado::adOptionUnspecified);
    return connection;
}

Lines FaultRoom::Ask(const std::string& database, const std::string& statement) const {
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

std::string FaultRoom::AskOne(const std::string& database, const std::string& statement) const {
    const Lines lines = Ask(database, statement);
    return lines.empty() ? "" : lines.front();
}

bool FaultRoom::HasDatabase(const std::string& name) const {
    return !Ask("master", "SELECT name FROM master.dbo.sysdatabases WHERE name = '" + name + "'").empty();
}

Lines FaultRoom::LogLines() const {
    constexpr std::size_t kHead = std::string_view("2006-05-12 14:03:22 : Error in ").size();
    Lines lines;
    const std::filesystem::directory_iterator logs(Folder() /
                                                   "Log"); // one, called after the program that wrote it
    std::ifstream log(logs == std::filesystem::directory_iterator() ? "" : logs->path());
    for (std::string line; std::getline(log, line);) {
        EXPECT_TRUE(line.ends_with('\r'));
        lines.push_back(line.substr(kHead, line.size() - kHead - 1));
    }
    return lines;
}

void MakeModel(const std::function<void(FaultRoom&)>& prepare, const std::filesystem::path& model) {
    support::RunInChildren({{"preparation",
                             [&] {
                                 FaultRoom room;
                                 prepare(room);
                                 room.KeepAs(model);
                             }}},
                           1);
}

void TryEveryFault(const char* name, const FaultyOperation& operation) {
    const support::TempFolder folder;
    const std::filesystem::path& model = folder.Path();
    MakeModel(operation.prepare, model);
    std::vector<support::Case> cases = {{"no fault", [&] { RunWithoutFault(operation, model); }}};
    for (std::size_t i = 0; i < operation.steps.size(); ++i) {
        const std::string& event = operation.steps[i].event;
        for (const Fault fault : kFaults) {
            cases.push_back({std::string(support::NameOf(fault)) + " at " + event,
                             [&, i, fault] { RunWithFault(operation, model, i, fault, 0); }});
        }
        if (event != "login") {
            cases.push_back({"cut in front of " + event,
                             [&, i] { RunWithFault(operation, model, i, Fault::CutBefore, 1); }});
        }
    }
    support::RunInChildren(cases, kFaultsAtOnce);
    std::printf("%s: %zu faults tried at %zu steps\n", name, cases.size() - 1, operation.steps.size());
}

} // namespace kv
