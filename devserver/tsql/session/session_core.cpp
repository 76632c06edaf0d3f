// A session's databases, temporary tables, frames and callbacks.
#include "devserver/tsql/session/session_core.h"

#include <algorithm>
#include <limits>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/server/server.h"

namespace devsql {
namespace {

/// SQLite's own limit.
constexpr std::size_t kAttachedDatabases = 10;

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

class VarianceAggregate : public Aggregate {
  public:
    VarianceAggregate(bool population, bool deviation)
        : population_(population), deviation_(deviation), sum_(Simple(TypeId::Float)) {}

    void Step(const FunctionCall& call) override { sum_.Add(call.Argument(0, Simple(TypeId::Float))); }
    void Finish(const FunctionCall& call) override {
        call.Result(deviation_ ? sum_.Deviation(population_) : sum_.Variance(population_),
                    Simple(TypeId::Float));
    }

  private:
    bool population_;
    bool deviation_;
    VarianceAccumulator sum_;
};

void CollectSlots(const Bound& node, std::vector<Type>& slots) {
    if (node.kind == BoundKind::Slot) {
        if (slots.size() <= node.slot) {
            slots.resize(node.slot + 1);
        }
        slots[node.slot] = node.condition ? Simple(TypeId::Bit) : node.type;
    }
    for (const BoundPtr& child : node.children) {
        CollectSlots(*child, slots);
    }
}

} // namespace

std::string Folded(std::string_view name) {
    return ToLower(TrimTrailingBlanks(name));
}

SessionCore::SessionCore(Server& owner, std::int32_t session_id, std::string login_name)
    : server(owner),
      connection(owner.MasterFile()),
      id(session_id),
      login(std::move(login_name)),
      remote_(*this) {
    base_.database.clear();
    RegisterFunctions();
    connection.OnBusy([this](int waited) { return WaitForLock(waited); });
    server.users().Register(*this);
}

SessionCore::~SessionCore() {
    // First out of the list, so that nobody ends a session that is ending by itself.
    server.users().Withdraw(*this);
    AbandonTransaction();
    cancelled = false;
    DropGlobalTables();
    ReleaseEverything();
}

void SessionCore::RegisterFunctions() {
    connection.AddFunction("tsql", [this](const FunctionCall& call) { Callback(call); });
    connection.AddFunction("tsql_single", [](const FunctionCall& call) {
        if (call.Int(1) > 1) {
            RaiseError(512);
        }
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
    // Only counted where a query takes the column.
    connection.AddFunction("tsql_rows", [this](const FunctionCall& call) {
        const std::string database = std::get<std::string>(call.Argument(0, Sized(TypeId::NVarChar, 128)));
        const TablePtr table = Table(Database(database), call.Int(1));
        if (!table) {
            return;
        }
        SqliteStatement count = connection.Prepare("SELECT count(*) FROM " + table->Qualified());
        call.Result(count.Step() ? Value(count.Int(0)) : Value(), Simple(TypeId::BigInt));
    });
    connection.AddFunction("tsql_check_column", [this](const FunctionCall& call) {
        const std::string name = std::get<std::string>(call.Argument(0, Sized(TypeId::NVarChar, 128)));
        Catalogue& catalogue = Database(name);
        const std::optional<ObjectDef> check = catalogue.FindObject(call.Int(1));
        const TablePtr table = check ? Table(catalogue, check->parent) : nullptr;
        if (const ColumnDef* column = table ? ColumnOfCheck(*table, check->text) : nullptr) {
            call.Result(std::int64_t{column->id}, Simple(TypeId::Int));
        }
    });
    connection.AddAggregate("tsql_stdev", [] { return std::make_unique<VarianceAggregate>(false, true); });
    connection.AddAggregate("tsql_stdevp", [] { return std::make_unique<VarianceAggregate>(true, true); });
    connection.AddAggregate("tsql_var", [] { return std::make_unique<VarianceAggregate>(false, false); });
    connection.AddAggregate("tsql_varp", [] { return std::make_unique<VarianceAggregate>(true, false); });
}

std::string SessionCore::SumFunction(const Type& type, bool average) {
    std::string name = std::string(average ? "tsql_avg_" : "tsql_sum_") +
                       std::to_string(static_cast<int>(type.id)) + "_" + std::to_string(type.precision) +
                       "_" + std::to_string(type.scale);
    if (sum_functions_.insert(name).second) {
        connection.AddAggregate(name,
                                [type, average] { return std::make_unique<SumAggregate>(type, average); });
    }
    return name;
}

void SessionCore::Callback(const FunctionCall& call) {
    const auto found = operations_.find(call.Int(0));
    if (found == operations_.end()) {
        throw std::logic_error("an operation that has ended was called");
    }
    CheckCancelled();
    const Operation& operation = found->second;
    std::vector<Value> slots(operation.slots.size());
    for (std::size_t i = 0; i < slots.size(); ++i) {
        slots[i] = call.Argument(i + 1, operation.slots[i]);
    }
    const Type& type = operation.expression->condition ? Simple(TypeId::Bit) : operation.expression->type;
    call.Result(Compute(*operation.expression, *this, slots), type);
}

std::int64_t SessionCore::AddOperation(BoundPtr operation) {
    std::vector<Type> slots;
    CollectSlots(*operation, slots);
    operations_[next_operation_] = {std::move(operation), std::move(slots)};
    return next_operation_++;
}

void SessionCore::RemoveOperation(std::int64_t number) {
    operations_.erase(number);
}

std::int32_t SessionCore::AddPrepared(std::string declarations, std::string text) {
    prepared_[next_prepared_] = {std::move(declarations), std::move(text)};
    return next_prepared_++;
}

const SessionCore::Prepared* SessionCore::FindPrepared(std::int32_t handle) const {
    const auto found = prepared_.find(handle);
    return found == prepared_.end() ? nullptr : &found->second;
}

// ------------------------------------------------------------------ databases

Catalogue& SessionCore::Database(const std::string& name) {
    const std::string folded = Folded(name);
    if (const auto known = attached_.find(folded); known != attached_.end()) {
        known->second.last_use = ++uses_;
        return *known->second.catalogue;
    }
    Attached attached;
    std::string alias = "main";
    if (folded != "master") {
        const DatabaseInfo info = server.users().Enter(name, *this);
        attached.id = info.id;
        try {
            alias = Attach(info);
        } catch (...) {
            server.users().Leave(info.id, *this);
            throw;
        }
    }
    attached.catalogue = std::make_unique<Catalogue>(connection, alias);
    attached.last_use = ++uses_;
    return *attached_.emplace(folded, std::move(attached)).first->second.catalogue;
}

/// Attaches what the session has entered, and gives its name in SQLite's SQL.
std::string SessionCore::Attach(const DatabaseInfo& info) {
    Evict();
    const std::string alias = "db" + std::to_string(info.id);
    try {
        connection.Attach(info.DataFile().path, alias);
    } catch (const StorageError& error) {
        CheckCancelled(); // SQLite gives up waiting then, and says that the file is locked.
        RaiseError(5120, {info.DataFile().client_path, std::to_string(error.primary_code()), error.what()});
    }
    // A database that was made after another of this id went has identities of its own.
    if (std::int64_t& created = created_[alias]; created != info.created) {
        std::erase_if(given_identities,
                      [&](const auto& entry) { return entry.first.starts_with(alias + "."); });
        created = info.created;
    }
    return alias;
}

/// Makes room for one more attached database.
void SessionCore::Evict() {
    while (attached_.size() >= kAttachedDatabases && !connection.InTransaction()) {
        auto oldest = attached_.end();
        for (auto entry = attached_.begin(); entry != attached_.end(); ++entry) {
            if (entry->first != "master" && entry->first != Folded(database_) &&
                (oldest == attached_.end() || entry->second.last_use < oldest->second.last_use)) {
                oldest = entry;
            }
        }
        ReleaseDatabase(oldest->first);
    }
}

Catalogue& SessionCore::CurrentDatabase() {
    return Database(CurrentDatabaseName());
}

const std::string& SessionCore::CurrentDatabaseName() const {
    return frame_->database.empty() ? database_ : frame_->database;
}

void SessionCore::Use(const std::string& name) {
    Database(name); // From here on nobody renames or removes it.
    const std::optional<DatabaseInfo> info = FindDatabase(connection, name);
    if (!info) { // Renamed since the session's transaction has read the list: it sees the list as it was.
        RaiseError(911, {name});
    }
    const std::string from = std::exchange(database_, info->name);
    if (sink_ != nullptr) {
        sink_->DatabaseChanged(from, database_);
        Info(5701, {database_}, 2);
    }
}

void SessionCore::ReleaseDatabases() {
    const Uninterrupted whole(*this);
    if (connection.InTransaction()) {
        return;
    }
    std::vector<std::string> others;
    for (const auto& [name, attached] : attached_) {
        if (name != "master" && name != Folded(database_)) {
            others.push_back(name);
        }
    }
    for (const std::string& name : others) {
        ReleaseDatabase(name);
    }
}

void SessionCore::ReleaseDatabase(const std::string& name) {
    const std::string folded = Folded(name);
    const auto found = attached_.find(folded);
    if (found == attached_.end() || folded == "master") {
        return;
    }
    const Uninterrupted whole(*this);
    const int database = found->second.id;
    connection.Detach(found->second.catalogue->alias());
    attached_.erase(found);
    server.users().Leave(database, *this);
}

void SessionCore::ReleaseEverything() {
    ReleaseDatabases();
    ReleaseDatabase(std::exchange(database_, "master"));
}

bool SessionCore::Holds(const std::string& name) const {
    return attached_.contains(Folded(name));
}

/// What is kept of a database, emptied if its catalogue has changed.
SessionCore::Attached* SessionCore::Current(Catalogue& catalogue) {
    for (auto& [name, attached] : attached_) {
        if (attached.catalogue.get() != &catalogue) {
            continue;
        }
        const std::int64_t version = catalogue.Version();
        if (attached.version != version) {
            attached.tables.clear();
            attached.objects.clear();
            attached.modules.clear();
            attached.version = version;
        }
        return &attached;
    }
    throw std::logic_error("a catalogue that is not attached");
}

TablePtr SessionCore::Table(Catalogue& catalogue, std::int64_t table_id) {
    TablePtr& table = Current(catalogue)->tables[table_id];
    if (!table) {
        table = catalogue.LoadTable(table_id);
    }
    return table;
}

std::optional<ObjectDef> SessionCore::Object(Catalogue& catalogue, const std::string& schema,
                                             const std::string& name) {
    auto& objects = Current(catalogue)->objects;
    const auto known = objects.find({schema, name});
    return known != objects.end()
               ? known->second
               : objects.emplace(std::pair(schema, name), catalogue.FindObject(schema, name)).first->second;
}

std::shared_ptr<const ast::CreateModuleStatement> SessionCore::Module(Catalogue& catalogue,
                                                                      const ObjectDef& object) {
    auto& module = Current(catalogue)->modules[object.id];
    if (!module) {
        module = std::make_shared<const ast::CreateModuleStatement>(
            ParseModule(object.text, object.quoted_identifier));
    }
    return module;
}

void SessionCore::ForgetTables() {
    for (auto& [name, attached] : attached_) {
        attached.version = -1;
    }
}

// ------------------------------------------------------------------ temporary tables

TablePtr SessionCore::FindTemporary(const std::string& name) const {
    const std::string folded = Folded(name);
    const auto behind = temporary_.upper_bound({folded, std::numeric_limits<int>::max()});
    return behind == temporary_.begin() || std::prev(behind)->first.first != folded
               ? nullptr
               : std::prev(behind)->second;
}

bool SessionCore::HasOwnTemporary(const std::string& name) const {
    return temporary_.contains({Folded(name), TemporaryLevel()});
}

void SessionCore::AddTemporary(TableDef table) {
    const auto known = std::find_if(temporary_.begin(), temporary_.end(),
                                    [&](const auto& entry) { return entry.second->id == table.id; });
    const auto key =
        known == temporary_.end() ? std::pair(Folded(table.name), TemporaryLevel()) : known->first;
    temporary_[key] = std::make_shared<const TableDef>(std::move(table));
}

void SessionCore::DropTemporariesFrom(int level) {
    std::erase_if(temporary_, [&](const auto& entry) {
        const auto& [key, table] = entry;
        if (key.second < level) {
            return false;
        }
        temporary_identities.erase(table->id);
        connection.Execute("DROP TABLE IF EXISTS " + table->Qualified());
        return true;
    });
}

bool IsGlobalTable(std::string_view name) {
    return name.starts_with("##");
}

bool IsSessionTable(std::string_view name) {
    return name.starts_with("#") && !IsGlobalTable(name);
}

void SessionCore::DropGlobalTables() {
    for (const std::string& name : std::exchange(global_tables_, {})) {
        try {
            Catalogue& catalogue = Database("tempdb");
            const std::optional<ObjectDef> object = catalogue.FindObject("dbo", name);
            if (object && object->type == "U") {
                const TablePtr table = Table(catalogue, object->id);
                Write(catalogue.alias(), [&] {
                    connection.Execute("DROP TABLE " + table->Qualified());
                    catalogue.RemoveObject(object->id);
                });
            }
        } catch (const std::exception&) { // The next start makes tempdb anew.
            return;
        }
    }
}

void SessionCore::DropTemporary(const std::string& name) {
    if (const TablePtr table = FindTemporary(name)) {
        temporary_identities.erase(table->id);
        std::erase_if(temporary_, [&](const auto& entry) { return entry.second == table; });
    }
}

TablePtr SessionCore::FindTableVariable(std::string_view name) const {
    const auto found = frame_->tables.find(ToUpper(name));
    return found == frame_->tables.end() ? nullptr : found->second;
}

// ------------------------------------------------------------------ frames

Variable& SessionCore::FindVariable(std::string_view name) {
    const auto found = frame_->variables.find(ToUpper(name));
    if (found == frame_->variables.end()) {
        if (frame_->tables.contains(ToUpper(name))) {
            RaiseError(137, {name});
        }
        RaiseError(137, {name});
    }
    return found->second;
}

void SessionCore::Push(Frame& frame) {
    if (nesting_ >= 32) {
        RaiseError(217, {"32"});
    }
    frame.caller = frame_;
    frame_ = &frame;
    ++nesting_;
}

void SessionCore::Pop() {
    const Uninterrupted whole(*this);
    Frame* const frame = frame_;
    for (const auto& [name, table] : frame->tables) {
        temporary_identities.erase(table->id);
        connection.Execute("DROP TABLE IF EXISTS " + table->Qualified());
    }
    if (TemporaryLevel() > 0) {
        DropTemporariesFrom(TemporaryLevel());
    }
    frame_ = frame->caller;
    --nesting_;
}

std::shared_ptr<Cursor> SessionCore::FindCursor(const std::string& name) {
    const std::string folded = ToUpper(name);
    if (const auto local = frame_->cursors.find(folded); local != frame_->cursors.end()) {
        return local->second;
    }
    const auto global = global_cursors.find(folded);
    return global == global_cursors.end() ? nullptr : global->second;
}

void SessionCore::CloseCursors() {
    const auto close = [](auto& cursors) {
        for (auto& [name, cursor] : cursors) {
            if (cursor) {
                cursor->open = false;
            }
        }
    };
    close(global_cursors);
    for (Frame* frame = frame_; frame != nullptr; frame = frame->caller) {
        close(frame->cursors);
    }
}

// ------------------------------------------------------------------ messages and ends

void SessionCore::Print(const Message& message) {
    Message sent = message;
    // Severity 10 goes to clients as 0, for the sake of older ones.
    sent.severity = message.severity == 10 ? 0 : message.severity;
    sink_->Send(sent);
}

void SessionCore::Info(std::int32_t number, std::initializer_list<std::string_view> arguments,
                       std::uint8_t state) {
    const SqlError error = ErrorOf(number, arguments, state);
    Print({number, error.severity(), state, error.text(), frame_->procedure, line});
}

void SessionCore::Done(Command command, std::optional<std::int64_t> rows) {
    statement_ended_ = true;
    sink_->StatementDone(command, options.nocount ? std::nullopt : rows, !frame_->procedure.empty());
}

void SessionCore::EndStatement() {
    const bool silent = options.nocount && !frame_->procedure.empty();
    if (!statement_ended_ && !silent) {
        Done(Command::None, std::nullopt);
    }
}

void SessionCore::CheckCancelled() const {
    if (cancelled) {
        throw Cancelled{};
    }
}

SessionCore::Uninterrupted::Uninterrupted(SessionCore& session) : session_(session) {
    const std::lock_guard lock(session_.interrupting_);
    ++session_.uninterrupted_;
}

SessionCore::Uninterrupted::~Uninterrupted() {
    const std::lock_guard lock(session_.interrupting_);
    --session_.uninterrupted_;
}

void SessionCore::Cancel() {
    cancelled = true;
    {
        const std::lock_guard lock(interrupting_);
        if (uninterrupted_ == 0) {
            connection.Interrupt();
        }
    }
    remote_.Cancel();
}

} // namespace devsql
