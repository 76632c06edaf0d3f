// Runs the statements that define databases and the objects in them: tables, indexes, views, procedures,
// types, users, roles, rights. Each function raises the errors of its statement as SqlError.
#pragma once

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/parse/ast_definitions.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

// ---- tables (define_tables.cpp)
void RunCreateTable(SessionCore& session, const ast::CreateTableStatement& create);
/// Creates the table of SELECT … INTO.
void CreateTableFor(SessionCore& session, const ast::Name& name, const std::vector<Column>& columns);
/// Creates a table variable of the running batch or procedure.
void DeclareTable(SessionCore& session, const std::string& name, const ast::TableDefinition& definition);

/// Builds the definition of one table from its parts, for a new table and for one that is altered.
class TableBuilder {
  public:
    /// `catalogue` is null for a temporary table. `altering` is true for ALTER TABLE, which has an error
    /// number of its own.
    TableBuilder(SessionCore& session, Catalogue* catalogue, TableDef table, bool altering = false);

    void AddColumn(const ast::ColumnDefinition& column);
    /// `column` is the column that the constraint follows; empty for a constraint of the table.
    void AddConstraint(const ast::Constraint& constraint, const std::string& column);
    TableDef& table() { return table_; }
    const std::vector<ForeignKeyDef>& foreign_keys() const { return foreign_keys_; }
    /// A generated name: "PK__Batches__4F7CD00D".
    std::string MadeName(std::string_view prefix, std::string_view column = "") const;

  private:
    void AddKey(const ast::Constraint& constraint, const std::string& column);
    void AddForeignKey(const ast::Constraint& constraint, const std::string& column);
    void FindKeyColumns(const ast::Constraint& constraint, const std::string& column,
                        const TableDef& referenced, ForeignKeyDef& key) const;
    static void RequireReferencedKey(const ast::Constraint& constraint, const TableDef& referenced,
                                     ForeignKeyDef& key);
    void AddCheck(const ast::Constraint& constraint, const std::string& column);
    void AddDefault(const ast::Constraint& constraint, const std::string& column);
    Type TypeOfComputed(const std::string& text);
    TablePtr Referenced(const ast::Constraint& constraint, const std::string& name);
    ColumnDef& Column(const std::string& name, std::int32_t error);

    SessionCore& session_;
    Catalogue* catalogue_;
    TableDef table_;
    bool altering_;
    std::vector<ForeignKeyDef> foreign_keys_;
};

/// Raises 2760 if the database does not have the schema.
void RequireSchema(Catalogue& catalogue, const std::string& schema);
/// Raises 2714 if the name of one of the table's constraints is taken.
void RequireFreeNames(Catalogue& catalogue, TableBuilder& builder);

// ---- changing and dropping (alter_tables.cpp)
void RunAlterTable(SessionCore& session, const ast::AlterTableStatement& alter);
void RunCreateIndex(SessionCore& session, const ast::CreateIndexStatement& create);
void RunDropIndex(SessionCore& session, const ast::DropIndexStatement& drop);

// ---- modules, drops, types (define_modules.cpp)
void RunCreateModule(SessionCore& session, const ast::CreateModuleStatement& create);
void RunDrop(SessionCore& session, const ast::DropStatement& drop);
void RunCreateType(SessionCore& session, const ast::CreateTypeStatement& create);

// ---- triggers (define_modules.cpp)
/// The id of the table that CREATE or ALTER TRIGGER names. Sets `schema` to the table's schema, which is the
/// trigger's too. Raises 8197, 2103, 2108.
std::int64_t TableOfTrigger(SessionCore& session, const ast::CreateModuleStatement& trigger,
                            std::string& schema);
void RunSwitchTriggers(SessionCore& session, const ast::SwitchTriggersStatement& triggers);

// ---- principals (principals.cpp)
void RunGrant(SessionCore& session, const ast::GrantStatement& grant);
void RunCreatePrincipal(SessionCore& session, const ast::CreatePrincipalStatement& create);
void RunAlterRole(SessionCore& session, const ast::AlterRoleStatement& alter);
void DropPrincipal(SessionCore& session, ast::ObjectKind kind, const std::string& name, bool if_exists);
// Shared by CREATE LOGIN, USER and ROLE, ALTER ROLE and the procedures for the same (sp_addlogin, …). Each
// raises the procedure's errors: 15007, 15023, 15025, 15401, 15410, ...

void AddLogin(SessionCore& session, const std::string& name, const std::string& password,
              const std::string& database);
void AddUser(SessionCore& session, const std::string& login, const std::string& name);
void AddRole(SessionCore& session, const std::string& name);
void SetRoleMember(SessionCore& session, const std::string& role, const std::string& member, bool add);

// ---- databases (database_statements.cpp)
void RunCreateDatabase(SessionCore& session, const ast::CreateDatabaseStatement& create);
void RunAlterDatabase(SessionCore& session, const ast::AlterDatabaseStatement& alter);
void DropDatabase(SessionCore& session, const std::string& name, bool if_exists);
void DetachDatabase(SessionCore& session, const std::string& name);
void AttachDatabase(SessionCore& session, const std::string& name, const std::vector<std::string>& files);
void SetDatabaseOption(SessionCore& session, const std::string& database, const std::string& option,
                       const std::string& value, bool rollback_immediate);

} // namespace devsql
