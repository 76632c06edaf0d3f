// FROM: tables, joins and derived tables as SQLite joins them; and WITH.
#pragma once

#include <string>
#include <vector>

#include "devserver/tsql/bind/binding.h"

namespace devsql {

class SourceBinder : private BinderPart {
  public:
    explicit SourceBinder(Binder& binder) : BinderPart(binder) {}

    /// Adds the sources of a FROM clause to `scope`. Returns the clause's SQL without the word FROM.
    std::string From(const std::vector<ast::TableSourcePtr>& sources, Scope& scope);
    /// Binds the tables of a WITH clause and adds them to the innermost level (Binding::common).
    void With(const std::vector<ast::CommonTable>& tables);

  private:
    std::string Source(const ast::TableSource& source, Scope& scope);
    std::string Join(const ast::JoinSource& join, Scope& scope);
    std::string Derived(const ast::DerivedSource& derived, Scope& scope);
    CommonTables::Entry CommonTable(const ast::CommonTable& table);
    std::string Recursive(const ast::CommonTable& table, CommonTables::Entry& entry);
    std::string RecursiveMember(const ast::SelectCore& core, const std::vector<Type>& types);
};

} // namespace devsql
