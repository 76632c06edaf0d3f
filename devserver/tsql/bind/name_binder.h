// Finds the tables, views, columns and types that names mean.
#pragma once

#include <optional>
#include <string>

#include "devserver/tsql/bind/binding.h"

namespace devsql {

struct ObjectPlace;

class NameBinder : private BinderPart {
  public:
    explicit NameBinder(Binder& binder) : BinderPart(binder) {}

    /// A name in a FROM clause. Adds the source to `scope` and returns its SQL. Raises 208, 1011, 1013, 1087.
    std::string Source(const ast::NamedSource& named, Scope& scope);
    /// The column of that name in `scope`, or in the nearest query around it that has one. Raises 128, 207,
    /// 209, 311, 4104.
    BoundPtr Column(const ast::ColumnExpr& column, const Scope* scope) const;
    /// The table that a statement writes to. Raises 208, 259, 286, 1087, 40517.
    Target WriteTarget(const ast::Name& name);
    ScopeSource SourceOf(const TablePtr& table, const std::string& exposed,
                         const std::string& sql_alias) const;
    /// For a user's type sets `user_type` to its name and `nullable` to whether it accepts NULL; both may be
    /// null. `default_length` as in DeclaredType. Raises 2715 for an unknown type.
    Type ResolveType(const ast::TypeSpec& spec, std::int32_t default_length, std::string* user_type,
                     bool* nullable);

  private:
    /// A source whose name is being bound.
    struct Naming {
        const ast::NamedSource& named;
        std::string exposed;
        std::string alias; ///< in SQLite's SQL
        Scope& scope;
    };
    std::string AddTable(const Naming& naming, const TablePtr& table);
    std::string CommonTable(const Naming& naming, const CommonTables::Entry& entry);
    std::string LinkedTable(const Naming& naming);
    std::string CatalogueTable(const Naming& naming);
    std::string View(const Naming& naming, const ObjectDef& view, const std::string& database);
    std::optional<std::string> SystemView(const Naming& naming, const ObjectPlace& place);
    /// The table of a WITH; null for an unknown name.
    const CommonTables::Entry* FindCommon(const std::string& name) const;
    /// A table of a linked server. A table that the statement names twice is fetched once.
    std::shared_ptr<RemoteTable> Remote(const ast::Name& name);
};

} // namespace devsql
