// The tree of T-SQL: the statements that define tables, indexes, modules (views, procedures, functions,
// triggers), databases, principals and their rights. Knows nothing of how they are stored.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "devserver/tsql/parse/ast_query.h"

namespace devsql::ast {

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;
using StatementList = std::vector<StatementPtr>;

// ------------------------------------------------------------------ tables

enum class ReferentialAction : std::uint8_t { NoAction, Cascade, SetNull, SetDefault };

struct IndexColumn {
    std::string name;
    bool descending = false;
};

enum class ConstraintKind : std::uint8_t { PrimaryKey, Unique, ForeignKey, Check, Default };
struct Constraint {
    ConstraintKind kind = ConstraintKind::Check;
    std::string name; ///< empty: the server makes one
    std::vector<IndexColumn> columns;
    bool clustered = false;
    bool clustering_given = false; ///< CLUSTERED or NONCLUSTERED is written
    Name references;               ///< the table that a foreign key refers to
    std::vector<std::string> referenced_columns;
    ReferentialAction on_delete = ReferentialAction::NoAction;
    ReferentialAction on_update = ReferentialAction::NoAction;
    std::string text;         ///< CHECK and DEFAULT: the expression as written, in parentheses
    bool with_check = true;   ///< existing rows are checked; false for ALTER TABLE … WITH NOCHECK
    bool with_values = false; ///< DEFAULT … WITH VALUES: existing rows get it too when the column is new
};

struct Identity {
    std::int64_t seed = 1;
    std::int64_t increment = 1;
};

struct ColumnDefinition {
    std::string name;
    TypeSpec type;
    std::optional<bool> nullable; ///< empty: neither NULL nor NOT NULL is written
    std::optional<Identity> identity;
    bool row_guid = false; ///< ROWGUIDCOL
    std::string collation;
    std::string computed; ///< the text of a computed column's expression; empty for other columns
    std::vector<Constraint> constraints;
};

struct TableDefinition {
    std::vector<ColumnDefinition> columns;
    std::vector<Constraint> constraints;
};

struct CreateTableStatement {
    Name table;
    TableDefinition definition;
};
enum class AlterTableAction : std::uint8_t {
    Add,
    AlterColumn,
    DropColumn,
    DropConstraint,
    EnableConstraint,
    DisableConstraint,
};
struct AlterTableStatement {
    Name table;
    AlterTableAction action = AlterTableAction::Add;
    TableDefinition definition;     ///< ADD, ALTER COLUMN
    std::vector<std::string> names; ///< DROP, CHECK CONSTRAINT; "ALL"
};
enum class ObjectKind : std::uint8_t {
    Table,
    View,
    Procedure,
    Function,
    Trigger,
    Database,
    User,
    Role,
    Login,
    Schema,
    Type,
    Default,
    Rule,
};
struct DropStatement {
    ObjectKind kind;
    std::vector<Name> names;
    bool if_exists = false;
};
struct CreateIndexStatement {
    std::string name;
    Name table;
    bool unique = false;
    bool clustered = false;
    bool drop_existing = false;
    std::vector<IndexColumn> columns;
    std::vector<std::string> included; ///< INCLUDE (columns)
};
struct DropIndexStatement {
    std::vector<std::pair<Name, std::string>> indexes; ///< table, index
    bool if_exists = false;
};

/// ENABLE and DISABLE TRIGGER, also as ALTER TABLE … ENABLE TRIGGER.
struct SwitchTriggersStatement {
    Name table;
    std::vector<std::string> names; ///< "ALL" alone: all of the table
    bool enable = true;
    std::int32_t missing = 4920; ///< the error for a name that is no trigger of the table
};

/// The statements that fire a trigger, as bits.
enum TriggerEvent : std::uint8_t { kOnInsert = 1, kOnUpdate = 2, kOnDelete = 4 };

struct Parameter {
    std::string name;
    TypeSpec type;
    ExprPtr default_value; ///< may be null
    std::string default_text;
    bool output = false;
};
/// CREATE and ALTER of views, procedures, functions and triggers: the text is kept, names are resolved when
/// it runs.
struct CreateModuleStatement {
    ObjectKind kind;
    bool alter = false;
    bool or_alter = false;
    Name name;
    std::vector<Parameter> parameters; ///< of a function, the last one is its result and has no name
    std::vector<std::string> columns;  ///< of a view
    bool encrypted = false;
    QueryPtr query;          ///< of a view
    StatementList body;      ///< of a procedure, function or trigger
    Name table;              ///< of a trigger
    std::uint8_t events = 0; ///< of a trigger: TriggerEvent bits
    std::string text;        ///< the whole batch
};

struct FileSpec {
    std::string name;
    std::string new_name; ///< of ALTER DATABASE
    std::string path;
    std::string size; ///< as written, "5MB"; empty: not given
    std::string max_size;
    std::string growth;
    std::string file_group;
};
struct CreateDatabaseStatement {
    std::string name;
    std::vector<FileSpec> files;
    std::vector<FileSpec> logs;
    bool attach = false;
};
enum class AlterDatabaseAction : std::uint8_t { ModifyName, ModifyFile, Set, Owner };
struct AlterDatabaseStatement {
    std::string database;
    AlterDatabaseAction action = AlterDatabaseAction::Set;
    std::string new_name; ///< ModifyName: the database's new name; Owner: the login that becomes its owner
    FileSpec file;        ///< MODIFY FILE
    std::vector<std::pair<std::string, std::string>> options; ///< upper case; SINGLE_USER has the value ""
    bool rollback_immediate = false;
};

enum class GrantAction : std::uint8_t { Grant, Deny, Revoke };
struct GrantStatement {
    GrantAction action;
    std::vector<std::string> permissions; ///< upper case
    Name object;                          ///< empty for permissions on the database itself
    std::vector<std::string> grantees;
};
struct CreatePrincipalStatement {
    ObjectKind kind; ///< User, Role, Login, Schema
    std::string name;
    std::string login;    ///< CREATE USER … FOR LOGIN; CREATE SCHEMA … AUTHORIZATION
    std::string password; ///< of a login
};
struct CreateTypeStatement {
    Name name;
    TypeSpec base;
    std::optional<bool> nullable;
};
struct AlterRoleStatement {
    std::string role;
    std::string member;
    bool add = true; ///< ADD MEMBER; otherwise DROP MEMBER
};

} // namespace devsql::ast
