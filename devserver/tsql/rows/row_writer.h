// Writes rows into one table and enforces its definition: conversions, NOT NULL, defaults, identity, checks,
// unique keys, foreign keys with their cascades; then fires its triggers. Used inside Transactions::Write.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/session/session_core.h"
#include "devserver/tsql/session/triggers.h"

namespace devsql {

/// A row of a table: a value for each of its columns.
using RowValues = std::vector<Value>;

struct StoredRow {
    std::int64_t row_id = 0; ///< SQLite's number of the row
    RowValues values;
};

/// Writes the rows of one statement to one table. The caller calls Insert, Update or Delete, then Finish,
/// then FireTriggers.
class RowWriter {
  public:
    /// `statement` is named in messages: INSERT, UPDATE, DELETE.
    RowWriter(SessionCore& session, Target target, std::string statement);

    /// Inserts a row. A column without value gets its default. Values are of the columns' types.
    void Insert(std::vector<std::optional<Value>> given);
    /// Turns off CHECK and foreign keys, for a bulk load.
    void IgnoreConstraints();
    /// Changes rows: `before` and `after` are their old and new values.
    void Update(const std::vector<StoredRow>& before, std::vector<RowValues> after);
    void Delete(const std::vector<StoredRow>& rows);
    /// Does the checks that need all rows written, and stores the identity counter.
    void Finish();
    /// Runs the triggers. Must be called last, after Finish and everything else that the statement does.
    void FireTriggers();
    /// For a bulk load that does not ask for triggers.
    void IgnoreTriggers() { firing_.reset(); }
    /// `columns` are the ids of those that an UPDATE assigns to, for UPDATE(column) in its triggers.
    void SetAssigned(std::set<int> columns);

    /// Called for every row that this writer itself changes (not for cascades), with its old and new values;
    /// null where there is none.
    using Observer = std::function<void(const RowValues* before, const RowValues* after)>;
    void Observe(Observer observer) { observer_ = std::move(observer); }

    /// The identity value of the row inserted last; nothing if no row has got one.
    std::optional<std::int64_t> last_identity() const { return identity_given_; }
    /// The default's value, of the column's type.
    Value DefaultOf(const ColumnDef& column);
    /// Fills in the columns that the server computes: timestamps and computed columns.
    void Complete(RowValues& row);

    /// All rows for which `condition` (over the table itself) holds.
    static std::vector<StoredRow> Read(SessionCore& session, const TableDef& table,
                                       const std::string& condition,
                                       const std::vector<std::pair<Value, Type>>& parameters);

  private:
    struct Check {
        std::string name;
        BoundPtr condition;
        std::string column; ///< as the message names it; empty where the check names several columns
    };

    void BindExpressions();
    void PrepareFiring();
    BoundPtr BindOverRow(const std::string& text);
    /// Gives an identity column its value, or moves the counter to a value that the statement has given.
    void FillIdentity(std::size_t column, std::optional<Value>& value);
    void CheckRow(const RowValues& row);
    void Store(const RowValues& row, std::optional<std::int64_t> row_id);
    /// The statement that stores a row: a parameter for each column and, if asked for, one more for the row's
    /// number.
    SqliteStatement PrepareInsert(bool with_row_id);
    /// The statement that updates a row: parameter 1 is the row's number, the columns follow.
    SqliteStatement PrepareUpdate();
    bool UniqueKeyChanged(const RowValues& before, const RowValues& after) const;
    /// Raises 547 if the row that `row` refers to does not exist.
    void RequireParent(const ForeignKeyDef& key, const RowValues& row);
    /// Applies ON DELETE or ON UPDATE to the rows that refer to the key of `before`. `after` is the changed
    /// row; null for a deleted one. Raises 547 for NO ACTION.
    void ReleaseChildren(const ForeignKeyDef& key, const RowValues& before, const RowValues* after);
    void Cascade(const ForeignKeyDef& key, const TablePtr& child, const std::vector<StoredRow>& rows,
                 const RowValues* after);
    bool KeyChanged(const std::vector<int>& columns, const RowValues& before, const RowValues& after) const;
    /// True where the rows go to a linked server, which enforces the table's definition itself. Raises 405
    /// where the statement has an OUTPUT clause.
    bool IsRemote() const;
    [[noreturn]] void ExplainUnique(const StorageError& error, const RowValues& row);
    [[noreturn]] void ForeignKeyError(const ForeignKeyDef& key, std::string_view kind, const TableDef& other,
                                      std::string_view column) const;
    std::string DatabaseName() const;
    std::string TableName() const;

    SessionCore& session_;
    Target target_;
    const TableDef& table_;
    std::string statement_;
    Observer observer_;
    std::vector<Check> checks_;
    std::map<int, BoundPtr> defaults_; ///< by column id; bound when a row first needs one
    std::map<int, BoundPtr> computed_;
    std::optional<SqliteStatement> insert_;
    std::vector<RowValues> new_rows_;                            ///< for the foreign keys at the end
    std::vector<std::vector<std::optional<Value>>> remote_rows_; ///< sent together, at the end
    /// A row whose old key may have gone, for the rows that refer to it.
    struct Removed {
        RowValues before;
        std::optional<RowValues> after;
    };
    std::vector<Removed> removed_;
    std::optional<Firing> firing_;                 ///< the rows for the triggers; empty if no trigger fires
    std::shared_ptr<std::vector<Firing>> firings_; ///< of the statement: cascades first, the target last
    std::optional<std::int64_t> identity_;       ///< the table's identity counter; empty before the first row
    bool identity_loaded_ = false;               ///< `identity_` has been read
    bool identity_dirty_ = false;                ///< `identity_` must be stored by Finish
    bool ignores_keys_ = false;                  ///< does not check foreign keys
    std::optional<std::int64_t> identity_given_; ///< of the row inserted last
};

} // namespace devsql
