// sp_addextendedproperty, sp_updateextendedproperty and sp_dropextendedproperty: descriptions that scripts
// give to tables and columns. They are kept among the settings of the database, under a JSON list of class,
// object, column and name; sys.extended_properties shows them.
#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/procedures/system_procedures.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr std::string_view kPrefix = "property:";

std::string JsonText(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return quoted + "\"";
}

/// The object that a property describes, in the numbers of sys.extended_properties.
struct Owner {
    std::int64_t kind = 0;                 ///< 0 the database, 1 an object or column, 3 a schema, 7 an index
    std::int64_t major = 0;                ///< the id of the object or schema
    std::int64_t minor = 0;                ///< the id of the column or index; 0 for the object itself
    std::string name = "object specified"; ///< for messages
};

[[noreturn]] void NoSuchOwner(const std::string& name) {
    RaiseError(15135, {name});
}

std::int64_t MinorOf(const TableDef& table, const std::string& kind, const std::string& name) {
    if (AsciiEqual(kind, "COLUMN")) {
        const ColumnDef* column = table.Find(name);
        return column == nullptr ? 0 : column->id;
    }
    for (const IndexDef& index : table.indexes) {
        if (SameText(index.name, name)) {
            return index.id;
        }
    }
    return 0;
}

Owner OwnerOf(SystemCall& call) {
    Owner owner;
    const std::string schema = call.Text("@level0name");
    const std::string name = call.Text("@level1name");
    if (call.IsNull("@level0type")) {
        return owner;
    }
    const std::string level0 = call.Text("@level0type");
    if (!AsciiEqual(level0, "SCHEMA") && !AsciiEqual(level0, "USER")) {
        RaiseError(40517, {"extended property of a " + level0});
    }
    Catalogue& catalogue = call.session().databases().Current();
    owner.name = schema;
    if (call.IsNull("@level1type")) {
        owner.kind = 3;
        owner.major = 1;
        return owner;
    }
    owner.name = schema + "." + name;
    const std::optional<ObjectDef> object = catalogue.FindObject(schema, name);
    if (!object) {
        NoSuchOwner(owner.name);
    }
    owner.kind = 1;
    owner.major = object->id;
    if (call.IsNull("@level2type")) {
        return owner;
    }
    const std::string level2 = call.Text("@level2type");
    const std::string part = call.Text("@level2name");
    owner.name += "." + part;
    if (AsciiEqual(level2, "CONSTRAINT")) {
        const std::optional<ObjectDef> constraint = catalogue.FindObject(schema, part);
        owner.major = constraint ? constraint->id : 0;
    } else if ((AsciiEqual(level2, "COLUMN") || AsciiEqual(level2, "INDEX")) && object->type == "U") {
        owner.kind = AsciiEqual(level2, "INDEX") ? 7 : 1;
        owner.minor = MinorOf(*call.session().databases().Table(catalogue, object->id), level2, part);
    } else {
        RaiseError(40517, {"extended property of a " + level2});
    }
    if (owner.major == 0 || (owner.minor == 0 && !AsciiEqual(level2, "CONSTRAINT"))) {
        NoSuchOwner(owner.name);
    }
    return owner;
}

enum class Change : std::uint8_t { Add, Update, Drop };

std::int32_t ChangeProperty(SystemCall& call, Change change) {
    RaiseIf(call.IsNull("@name"), 15600, {"sp_addextendedproperty"});
    const Owner owner = OwnerOf(call);
    const std::string name = call.Text("@name");
    const std::string key = std::string(kPrefix) + "[" + std::to_string(owner.kind) + "," +
                            std::to_string(owner.major) + "," + std::to_string(owner.minor) + "," +
                            JsonText(name) + "]";
    Catalogue& catalogue = call.session().databases().Current();
    const bool known =
        catalogue.Prepare("SELECT 1 FROM {db}.devsql_settings WHERE name = ?1").BindText(1, key).Step();
    RaiseIf(known == (change == Change::Add), known ? 15233 : 15217, {name, owner.name});
    call.session().transactions().Write(catalogue.alias(), [&] {
        catalogue.Prepare("DELETE FROM {db}.devsql_settings WHERE name = ?1").BindText(1, key).Run();
        if (change != Change::Drop) {
            catalogue.Prepare("INSERT INTO {db}.devsql_settings(name, value) VALUES(?1, ?2)")
                .BindText(1, key)
                .BindText(2, call.Text("@value"))
                .Run();
        }
    });
    return 0;
}

template <Change kChange>
std::int32_t Property(SystemCall& call) {
    return ChangeProperty(call, kChange);
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_addextendedproperty", Property<Change::Add>},
    {"sp_updateextendedproperty", Property<Change::Update>},
    {"sp_dropextendedproperty", Property<Change::Drop>},
};

} // namespace

std::span<const SystemProcedure> PropertyProcedures() {
    return kProcedures;
}

} // namespace devsql
