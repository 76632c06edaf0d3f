// A table of a linked server in a statement: its columns as the other server reports them, its rows in a
// temporary table of SQLite while the statement runs, and the changes that are sent back.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devserver/storage/catalogue.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/tsql/parse/ast_query.h"

namespace devsql {

class RemoteServers;

class RemoteTable {
  public:
    /// Asks the other server for the columns. Raises 7202, 7314, 7411 and the errors of RemoteServers::Run.
    RemoteTable(RemoteServers& servers, const ast::Name& name);
    ~RemoteTable();
    RemoteTable(const RemoteTable&) = delete;
    RemoteTable& operator=(const RemoteTable&) = delete;

    const ast::Name& name() const { return name_; }
    const TablePtr& table() const { return table_; }
    /// Makes the temporary table and fetches the rows into it; a second call does nothing.
    void Fill();

    // Each of these takes whole rows, with a value for each column, and raises the errors of the other
    // server.

    /// An empty value means the default of the column.
    void Insert(const std::vector<std::vector<std::optional<Value>>>& rows);
    /// Sets the columns that differ in any row.
    void Update(const std::vector<std::vector<Value>>& before, const std::vector<std::vector<Value>>& after);
    void Delete(const std::vector<std::vector<Value>>& rows);

  private:
    void LoadColumns(TableDef& table);
    void LoadKey(const TableDef& table);
    void DescribeColumns(TableDef& table);
    std::string Prefix() const;
    std::string ColumnList(const std::vector<std::size_t>& positions) const;
    std::string Condition(const std::vector<Value>& row) const;
    void Send(const std::vector<std::string>& statements);

    RemoteServers& servers_;
    ast::Name name_;
    LinkedServer server_;
    std::string qualified_; ///< the table's name at the other server
    TablePtr table_;
    std::vector<std::size_t> key_; ///< positions of the columns that identify a row
    bool made_ = false;            ///< the temporary table exists; the destructor drops it
};

} // namespace devsql
