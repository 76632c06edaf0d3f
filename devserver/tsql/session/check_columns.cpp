// Finds names of columns among the tokens of an expression.
#include "devserver/tsql/session/check_columns.h"

#include <vector>

#include "devserver/tsql/parse/lexer.h"

namespace devsql {

std::set<int> ColumnsNamed(const TableDef& table, std::string_view expression) {
    const std::vector<Token> tokens = Tokenize(expression);
    std::set<int> columns;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const bool name = tokens[i].kind == TokenKind::Word || tokens[i].kind == TokenKind::Bracketed ||
                          tokens[i].kind == TokenKind::DoubleQuoted;
        const bool leads = tokens[i + 1].kind == TokenKind::Symbol &&
                           (tokens[i + 1].text == "(" || tokens[i + 1].text == "."); // a function, a table
        const ColumnDef* column = name && !leads ? table.Find(tokens[i].text) : nullptr;
        if (column != nullptr) {
            columns.insert(column->id);
        }
    }
    return columns;
}

const ColumnDef* ColumnOfCheck(const TableDef& table, std::string_view expression) {
    const std::set<int> columns = ColumnsNamed(table, expression);
    return columns.size() == 1 ? &table.ById(*columns.begin()) : nullptr;
}

} // namespace devsql
