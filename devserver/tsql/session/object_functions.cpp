// Functions about the objects of a database: tables, columns, indexes, identities.
#include <algorithm>
#include <array>

#include "devserver/storage/databases.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/sql_error.h"
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

/// The number of a property in a list; NULL for a property that is not in it, as in SQL Server.
template <class Properties>
Value NumberOf(const Properties& properties, std::string_view property) {
    for (const auto& [name, value] : properties) {
        if (name == property) {
            return std::int64_t{value};
        }
    }
    return {};
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

/// The properties of OBJECTPROPERTY that only tables have.
Value TableProperty(const TableDef& table, const std::string& property) {
    RaiseIf(property.starts_with("TABLE") && property.find("TRIGGER") != std::string::npos, 40517,
            {"OBJECTPROPERTY '" + property + "'"});
    const auto unique = [](const IndexDef& index) { return index.constraint && !index.primary_key; };
    const auto timestamp = [](const ColumnDef& column) { return column.type.id == TypeId::Timestamp; };
    const std::pair<std::string_view, bool> properties[] = {
        {"TABLEHASPRIMARYKEY", std::ranges::any_of(table.indexes, &IndexDef::primary_key)},
        {"TABLEHASINDEX", !table.indexes.empty()},
        {"TABLEHASCLUSTINDEX", std::ranges::any_of(table.indexes, &IndexDef::clustered)},
        {"TABLEHASUNIQUECNST", std::ranges::any_of(table.indexes, unique)},
        {"TABLEHASIDENTITY", table.IdentityColumn() != nullptr},
        {"TABLEHASFOREIGNKEY", !table.foreign_keys.empty()},
        {"TABLEHASFOREIGNREF", !table.referencing.empty()},
        {"TABLEHASCHECKCNST", !table.checks.empty()},
        {"TABLEHASTIMESTAMP", std::ranges::any_of(table.columns, timestamp)}};
    return NumberOf(properties, property);
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
    return TableProperty(*table, property);
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
    if (property == "SCALE") {
        const std::optional<std::int32_t> scale = TypeScale(column->type);
        return scale ? Value(std::int64_t{*scale}) : Value();
    }
    const std::pair<std::string_view, std::int64_t> properties[] = {
        {"ISIDENTITY", column->identity},
        {"ALLOWSNULL", column->nullable},
        {"ISCOMPUTED", !column->computed.empty()},
        {"ISROWGUIDCOL", column->row_guid},
        {"COLUMNID", column->id},
        {"PRECISION", TypePrecision(column->type)},
        {"ISINDEXABLE", !IsOldLob(column->type.id)},
        {"ISIDNOTFORREPL", 0},
        {"ISOUTPARAM", 0},
        {"USESANSITRIM", 1}};
    return NumberOf(properties, property);
}

/// The table of that name, with its catalogue; null for any other object.
TablePtr TableNamed(SessionCore& session, const std::string& name, Catalogue** catalogue = nullptr) {
    const std::optional<Found> found = FindNamed(session, name);
    if (!found || found->object.type != "U") {
        return nullptr;
    }
    if (catalogue != nullptr) {
        *catalogue = found->catalogue;
    }
    return session.databases().Table(*found->catalogue, found->object.id);
}

Value ColLength(SessionCore& session, Values values, Types types) {
    const TablePtr table = TableNamed(session, TextOf(values, types, 0));
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

Value IdentityInfo(SessionCore& session, const std::string& name, int what) {
    Catalogue* catalogue = nullptr;
    const TablePtr table = TableNamed(session, name, &catalogue);
    const ColumnDef* column = table ? table->IdentityColumn() : nullptr;
    if (column == nullptr) {
        return {};
    }
    std::int64_t value = what == 1 ? column->seed : column->increment;
    if (what == 0) {
        value = catalogue->IdentityValue(table->id).value_or(column->seed);
    }
    return Decimal{value, 0};
}

constexpr SessionFunction kFunctions[] = {
    {"OBJECT_ID", 1, 2, kInt, ObjectId, false},
    {"OBJECT_NAME", 1, 1, kName, ObjectName, false},
    {"OBJECTPROPERTY", 2, 2, kInt, ObjectProperty, false},
    {"OBJECTPROPERTYEX", 2, 2, kInt, ObjectProperty, false},
    {"COLUMNPROPERTY", 3, 3, kInt, ColumnProperty, false},
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
