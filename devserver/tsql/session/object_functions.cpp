// Functions about the objects of a database: tables, columns, indexes, identities.
#include <algorithm>
#include <array>

#include "devserver/storage/databases.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"
#include "devserver/tsql/session/session_function_parts.h"
#include "devserver/tsql/session/triggers.h"

namespace devsql {
namespace {

constexpr Type kInt = Simple(TypeId::Int);
constexpr Type kName = Sized(TypeId::NVarChar, 128);

struct Found {
    Catalogue* catalogue = nullptr;
    ObjectDef object;
};

std::optional<Found> FindNamed(SessionCore& session, const std::string& text) {
    const ast::Name name = ParseName(text);
    if (name.empty() || name.parts.size() > 3) {
        return std::nullopt;
    }
    const ObjectPlace place = PlaceOf(session, name);
    if (!FindDatabase(session.connection(), place.database)) {
        return std::nullopt;
    }
    Catalogue& catalogue = session.databases().Get(place.database);
    std::optional<ObjectDef> object = catalogue.FindObject(place.schema, place.name);
    return object ? std::optional(Found{&catalogue, std::move(*object)}) : std::nullopt;
}

Value ObjectId(SessionCore& session, Values values, Types types) {
    const std::string text = TextOf(values, types, 0);
    const ast::Name name = ParseName(text);
    if (!name.empty() && IsSessionTable(name.last())) {
        const TablePtr table = session.temporaries().Find(name.last());
        return table ? Value(table->id) : Value();
    }
    const std::optional<Found> found = FindNamed(session, text);
    if (!found) {
        return {};
    }
    const std::string kind = AsciiUpper(TrimTrailingBlanks(TextOf(values, types, 1)));
    return kind.empty() || kind == found->object.type ? Value(found->object.id) : Value();
}

Value ObjectName(SessionCore& session, Values values, Types types) {
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    const std::optional<ObjectDef> object = id ? session.databases().Current().FindObject(*id) : std::nullopt;
    return object ? Value(object->name) : Value();
}

bool HasIndex(const TableDef& table, bool (*test)(const IndexDef&)) {
    for (const IndexDef& index : table.indexes) {
        if (test(index)) {
            return true;
        }
    }
    return false;
}

struct EventProperty {
    std::string_view name;
    std::uint8_t events;
};

/// The properties of OBJECTPROPERTY that only triggers have.
Value TriggerProperty(SessionCore& session, const ObjectDef& trigger, std::string_view property) {
    constexpr EventProperty kEvents[] = {
        {"EXECISINSERTTRIGGER", ast::kOnInsert}, {"EXECISUPDATETRIGGER", ast::kOnUpdate},
        {"EXECISDELETETRIGGER", ast::kOnDelete}, {"EXECISAFTERTRIGGER", kAnyEvent},
        {"EXECISINSTEADOFTRIGGER", 0},           {"EXECISFIRSTINSERTTRIGGER", 0},
        {"EXECISFIRSTUPDATETRIGGER", 0},         {"EXECISFIRSTDELETETRIGGER", 0},
        {"EXECISLASTINSERTTRIGGER", 0},          {"EXECISLASTUPDATETRIGGER", 0},
        {"EXECISLASTDELETETRIGGER", 0},          {"EXECISTRIGGERNOTFORREPL", 0}};
    for (const EventProperty& entry : kEvents) {
        if (entry.name == property) {
            return std::int64_t{
                (EventsOfTrigger(session, session.databases().Current(), trigger) & entry.events) != 0};
        }
    }
    if (property == "EXECISTRIGGERDISABLED") {
        const TablePtr table = session.databases().Table(session.databases().Current(), trigger.parent);
        const auto found = std::ranges::find(table->triggers, trigger.id, &TriggerDef::id);
        return std::int64_t{found != table->triggers.end() && found->disabled};
    }
    return {};
}

/// The properties of OBJECTPROPERTY that count a table's triggers or name the first of them.
Value TriggersOfTable(SessionCore& session, const TableDef& table, std::string_view property) {
    constexpr std::pair<std::string_view, std::uint8_t> kEvents[] = {
        {"INSERT", ast::kOnInsert}, {"UPDATE", ast::kOnUpdate}, {"DELETE", ast::kOnDelete}};
    for (const auto& [word, event] : kEvents) {
        std::int64_t count = 0;
        std::int64_t first = 0;
        for (const TriggerDef& trigger : table.triggers) {
            const ObjectDef object = session.databases().Current().FindObject(trigger.id).value();
            if ((EventsOfTrigger(session, session.databases().Current(), object) & event) != 0) {
                first = count++ == 0 ? trigger.id : first;
            }
        }
        const std::string name = std::string(word) + "TRIGGER";
        if (property == "TABLEHAS" + name) {
            return std::int64_t{count > 0};
        }
        if (property == "TABLE" + name + "COUNT") {
            return count;
        }
        if (property == "TABLE" + name) {
            return first;
        }
    }
    return {};
}

/// The properties of OBJECTPROPERTY that only tables have.
Value TableProperty(const TableDef& table, std::string_view property) {
    if (property == "TABLEHASPRIMARYKEY") {
        return std::int64_t{HasIndex(table, [](const IndexDef& index) { return index.primary_key; })};
    }
    if (property == "TABLEHASINDEX") {
        return std::int64_t{!table.indexes.empty()};
    }
    if (property == "TABLEHASCLUSTINDEX") {
        return std::int64_t{HasIndex(table, [](const IndexDef& index) { return index.clustered; })};
    }
    if (property == "TABLEHASUNIQUECNST") {
        return std::int64_t{
            HasIndex(table, [](const IndexDef& index) { return index.constraint && !index.primary_key; })};
    }
    if (property == "TABLEHASIDENTITY") {
        return std::int64_t{table.IdentityColumn() != nullptr};
    }
    if (property == "TABLEHASFOREIGNKEY") {
        return std::int64_t{!table.foreign_keys.empty()};
    }
    if (property == "TABLEHASFOREIGNREF") {
        return std::int64_t{!table.referencing.empty()};
    }
    if (property == "TABLEHASCHECKCNST") {
        return std::int64_t{!table.checks.empty()};
    }
    if (property == "TABLEHASTIMESTAMP") {
        return std::int64_t{
            std::any_of(table.columns.begin(), table.columns.end(),
                        [](const ColumnDef& column) { return column.type.id == TypeId::Timestamp; })};
    }
    return {};
}

/// The properties of OBJECTPROPERTY that ask for the kind of object; empty for any other property.
std::optional<bool> KindProperty(const ObjectDef& object, std::string_view property) {
    struct Kind {
        std::string_view property;
        std::string_view type;
    };
    constexpr std::array<Kind, 11> kKinds = {{{"ISUSERTABLE", "U"},
                                              {"ISTABLE", "U"},
                                              {"ISVIEW", "V"},
                                              {"ISPROCEDURE", "P"},
                                              {"ISPRIMARYKEY", "PK"},
                                              {"ISUNIQUECNST", "UQ"},
                                              {"ISFOREIGNKEY", "F"},
                                              {"ISCHECKCNST", "C"},
                                              {"ISDEFAULTCNST", "D"},
                                              {"ISTRIGGER", "TR"},
                                              {"ISSCALARFUNCTION", "FN"}}};
    const auto found = std::ranges::find(kKinds, property, &Kind::property);
    return found == kKinds.end() ? std::nullopt : std::optional(object.type == found->type);
}

/// The properties of OBJECTPROPERTY that every object has; empty for any other property.
std::optional<std::int64_t> CommonProperty(const ObjectDef& object, std::string_view property) {
    struct Entry {
        std::string_view property;
        std::int64_t value;
    };
    const Entry entries[] = {{"ISCONSTRAINT", !IsTableOrModule(object.type)},
                             {"ISMSSHIPPED", object.shipped},
                             {"ISSYSTEMTABLE", 0},
                             {"ISINLINEFUNCTION", 0},
                             {"ISTABLEFUNCTION", 0},
                             {"ISEXTENDEDPROC", 0},
                             {"ISRULE", 0},
                             {"ISREPLPROC", 0},
                             {"EXECISSTARTUP", 0},
                             {"OWNERID", 1},
                             {"EXECISQUOTEDIDENTON", object.quoted_identifier},
                             {"ISQUOTEDIDENTON", object.quoted_identifier},
                             {"EXECISANSINULLSON", object.ansi_nulls},
                             {"ISANSINULLSON", object.ansi_nulls},
                             {"ISENCRYPTED", object.encrypted}};
    const auto* found = std::ranges::find(entries, property, &Entry::property);
    return found == std::end(entries) ? std::nullopt : std::optional(found->value);
}

Value ObjectProperty(SessionCore& session, Values values, Types types) {
    const std::optional<std::int64_t> id = IntOf(values, types, 0);
    const std::optional<ObjectDef> object = id ? session.databases().Current().FindObject(*id) : std::nullopt;
    if (!object) {
        return {};
    }
    const std::string property = AsciiUpper(TextOf(values, types, 1));
    if (const std::optional<bool> kind = KindProperty(*object, property)) {
        return std::int64_t{*kind};
    }
    if (const std::optional<std::int64_t> common = CommonProperty(*object, property)) {
        return *common;
    }
    if (object->type == "TR") {
        return TriggerProperty(session, *object, property);
    }
    const TablePtr table =
        object->type == "U" ? session.databases().Table(session.databases().Current(), *id) : nullptr;
    if (!table) {
        return {};
    }
    const Value of_table = TableProperty(*table, property);
    return IsNull(of_table) ? TriggersOfTable(session, *table, property) : of_table;
}

TablePtr TableById(SessionCore& session, Values values, Types types, std::size_t index) {
    const std::optional<std::int64_t> id = IntOf(values, types, index);
    const std::optional<ObjectDef> object = id ? session.databases().Current().FindObject(*id) : std::nullopt;
    return object && object->type == "U" ? session.databases().Table(session.databases().Current(), *id)
                                         : nullptr;
}

Value ColumnProperty(SessionCore& session, Values values, Types types) {
    const TablePtr table = TableById(session, values, types, 0);
    const ColumnDef* column = table ? table->Find(TextOf(values, types, 1)) : nullptr;
    if (column == nullptr) {
        return {};
    }
    const std::string property = AsciiUpper(TextOf(values, types, 2));
    if (property == "ISIDENTITY") {
        return std::int64_t{column->identity};
    }
    if (property == "ALLOWSNULL") {
        return std::int64_t{column->nullable};
    }
    if (property == "ISCOMPUTED") {
        return std::int64_t{!column->computed.empty()};
    }
    if (property == "ISROWGUIDCOL") {
        return std::int64_t{column->row_guid};
    }
    if (property == "COLUMNID") {
        return std::int64_t{column->id};
    }
    if (property == "PRECISION") {
        return std::int64_t{TypePrecision(column->type)};
    }
    if (property == "SCALE") {
        const std::optional<std::int32_t> scale = TypeScale(column->type);
        return scale ? Value(std::int64_t{*scale}) : Value();
    }
    if (property == "ISIDNOTFORREPL" || property == "ISOUTPARAM" || property == "ISINDEXABLE") {
        return std::int64_t{property == "ISINDEXABLE" && !IsOldLob(column->type.id)};
    }
    if (property == "USESANSITRIM") {
        return std::int64_t{1};
    }
    return {};
}

Value ColLength(SessionCore& session, Values values, Types types) {
    const std::optional<Found> found = FindNamed(session, TextOf(values, types, 0));
    const TablePtr table = found && found->object.type == "U"
                               ? session.databases().Table(*found->catalogue, found->object.id)
                               : nullptr;
    const ColumnDef* column = table ? table->Find(TextOf(values, types, 1)) : nullptr;
    return column == nullptr ? Value() : Value(std::int64_t{StorageBytes(column->type)});
}

Value ColName(SessionCore& session, Values values, Types types) {
    const TablePtr table = TableById(session, values, types, 0);
    const std::optional<std::int64_t> id = IntOf(values, types, 1);
    for (const ColumnDef& column : table ? table->columns : std::vector<ColumnDef>()) {
        if (id && column.id == *id) {
            return column.name;
        }
    }
    return {};
}

/// The index for which `test` is true; null if there is none, or no table.
const IndexDef* FindIndex(const TablePtr& table, bool (*test)(const IndexDef&, const std::string&),
                          const std::string& wanted) {
    for (const IndexDef& index :
         table ? std::span<const IndexDef>(table->indexes) : std::span<const IndexDef>()) {
        if (test(index, wanted)) {
            return &index;
        }
    }
    return nullptr;
}

Value IndexProperty(SessionCore& session, Values values, Types types) {
    const TablePtr table = TableById(session, values, types, 0);
    const IndexDef* index = FindIndex(
        table, [](const IndexDef& i, const std::string& name) { return SameText(i.name, name); },
        TextOf(values, types, 1));
    if (index == nullptr) {
        return {};
    }
    const std::string property = AsciiUpper(TextOf(values, types, 2));
    const std::pair<std::string_view, std::int64_t> properties[] = {
        {"INDEXID", index->id},      {"ISCLUSTERED", index->clustered},
        {"ISUNIQUE", index->unique}, {"INDEXDEPTH", 1},
        {"INDEXFILLFACTOR", 0},      {"ISAUTOSTATISTICS", 0},
        {"ISDISABLED", 0},           {"ISFULLTEXTKEY", 0},
        {"ISHYPOTHETICAL", 0},       {"ISPADINDEX", 0},
        {"ISSTATISTICS", 0},         {"ISPAGELOCKDISALLOWED", 0},
        {"ISROWLOCKDISALLOWED", 0}};
    for (const auto& [name, value] : properties) {
        if (name == property) {
            return value;
        }
    }
    return {};
}

/// INDEX_COL(table, index id, key): the key's column.
Value IndexColumn(SessionCore& session, Values values, Types types) {
    const std::optional<Found> found = FindNamed(session, TextOf(values, types, 0));
    const TablePtr table = found && found->object.type == "U"
                               ? session.databases().Table(*found->catalogue, found->object.id)
                               : nullptr;
    const IndexDef* index = FindIndex(
        table, [](const IndexDef& i, const std::string& id) { return std::to_string(i.id) == id; },
        TextOf(values, types, 1));
    const std::optional<std::int64_t> key = IntOf(values, types, 2);
    if (index == nullptr || !key || *key < 1 || *key > std::ssize(index->columns)) {
        return {};
    }
    const int wanted = index->columns[static_cast<std::size_t>(*key - 1)].column;
    const auto column = std::ranges::find(table->columns, wanted, &ColumnDef::id);
    return column == table->columns.end() ? Value() : Value(column->name);
}

Value IdentityInfo(SessionCore& session, const std::string& name, int what) {
    const std::optional<Found> found = FindNamed(session, name);
    const TablePtr table = found && found->object.type == "U"
                               ? session.databases().Table(*found->catalogue, found->object.id)
                               : nullptr;
    const ColumnDef* column = table ? table->IdentityColumn() : nullptr;
    if (column == nullptr) {
        return {};
    }
    std::int64_t value = what == 1 ? column->seed : column->increment;
    if (what == 0) {
        value = found->catalogue->IdentityValue(table->id).value_or(column->seed);
    }
    return Decimal{value, 0};
}

constexpr SessionFunction kFunctions[] = {
    {"OBJECT_ID", 1, 2, kInt, ObjectId, false},
    {"OBJECT_NAME", 1, 1, kName, ObjectName, false},
    {"OBJECTPROPERTY", 2, 2, kInt, ObjectProperty, false},
    {"OBJECTPROPERTYEX", 2, 2, kInt, ObjectProperty, false},
    {"COLUMNPROPERTY", 3, 3, kInt, ColumnProperty, false},
    {"INDEXPROPERTY", 3, 3, kInt, IndexProperty, false},
    {"INDEX_COL", 3, 3, kName, IndexColumn, false},
    {"COL_LENGTH", 2, 2, Simple(TypeId::SmallInt), ColLength, false},
    {"COL_NAME", 2, 2, kName, ColName, false},
    {"IDENT_CURRENT", 1, 1, DecimalType(38, 0),
     [](SessionCore& s, Values v, Types t) { return IdentityInfo(s, TextOf(v, t, 0), 0); }, false},
    {"IDENT_SEED", 1, 1, DecimalType(38, 0),
     [](SessionCore& s, Values v, Types t) { return IdentityInfo(s, TextOf(v, t, 0), 1); }, false},
    {"IDENT_INCR", 1, 1, DecimalType(38, 0),
     [](SessionCore& s, Values v, Types t) { return IdentityInfo(s, TextOf(v, t, 0), 2); }, false},
};

} // namespace

std::span<const SessionFunction> ObjectFunctions() {
    return kFunctions;
}

} // namespace devsql
