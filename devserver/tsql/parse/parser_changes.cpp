// INSERT, UPDATE, DELETE.

#include "devserver/tsql/parse/parser_impl.h"

namespace devsql {

using namespace ast;

InsertStatement Parser::ParseInsert() {
    InsertStatement insert;
    ExpectWord("INSERT");
    insert.top = ParseTop();
    TakeWord("INTO");
    insert.table = TakeTable();
    SkipTableHints();
    if (IsSymbol("(") && !BeginsQuery(1) && !IsWord("SELECT", 1)) {
        ListInParentheses([&] {
            // "t.c" is accepted for the column c.
            insert.columns.push_back(TakeObjectName().last());
        });
    }
    ParseOutputs(insert.outputs);
    ParseInsertSource(insert);
    return insert;
}

/// INSERT BULK t (a int, b varchar(10) COLLATE c) WITH (TABLOCK, ROWS_PER_BATCH = 100). The declared types
/// are ignored: the rows bring their own.
InsertBulkStatement Parser::ParseInsertBulk() {
    InsertBulkStatement bulk;
    ExpectWord("INSERT");
    ExpectWord("BULK");
    bulk.table = TakeObjectName();
    ListInParentheses([&] {
        bulk.columns.push_back(TakeName());
        ParseType();
        if (TakeWord("COLLATE")) {
            TakeName();
        }
        if (!TakeWords({"NOT", "NULL"})) {
            TakeWord("NULL");
        }
    });
    if (TakeWord("WITH")) {
        ParseBulkOptions(bulk);
    }
    return bulk;
}

void Parser::ParseBulkOptions(InsertBulkStatement& bulk) {
    ListInParentheses([&] {
        constexpr bool InsertBulkStatement::*kOptions[] = {&InsertBulkStatement::check_constraints,
                                                           &InsertBulkStatement::keep_nulls,
                                                           &InsertBulkStatement::fire_triggers};
        if (const int option = TakeOneOf({"CHECK_CONSTRAINTS", "KEEP_NULLS", "FIRE_TRIGGERS"}); option >= 0) {
            bulk.*kOptions[option] = true;
        } else if (TakeWord("ORDER")) { // The other options affect neither the rows nor their checks.
            SkipParenthesized();
        } else if (TakeWord("ROWS_PER_BATCH") || TakeWord("KILOBYTES_PER_BATCH")) {
            ExpectSymbol("=");
            Take();
        } else if (!TakeWord("TABLOCK")) {
            Fail(321, {Peek().text});
        }
    });
}

/// OUTPUT … INTO …, and a second OUTPUT that goes to the client.
void Parser::ParseOutputs(std::vector<OutputClause>& outputs) {
    while (TakeWord("OUTPUT")) {
        OutputClause clause;
        CommaSeparated([&] { clause.items.push_back(ParseSelectItem()); });
        if (TakeWord("INTO")) {
            clause.into = TakeTable();
            if (IsSymbol("(")) {
                clause.columns = ParseNameList();
            }
        }
        outputs.push_back(std::move(clause));
    }
}

void Parser::ParseInsertSource(InsertStatement& insert) {
    if (TakeWords({"DEFAULT", "VALUES"})) {
        insert.default_values = true;
    } else if (TakeWord("VALUES")) {
        CommaSeparated([&] {
            std::vector<ExprPtr> row;
            ListInParentheses([&] { row.push_back(TakeWord("DEFAULT") ? nullptr : ParseValue()); });
            insert.rows.push_back(std::move(row));
        });
    } else if (TakeOneOf({"EXEC", "EXECUTE"}) >= 0) {
        insert.execute = ParseExecute();
    } else if (BeginsQuery() || IsSymbol("(")) {
        insert.query = ParseQuery();
    } else {
        SyntaxError();
    }
}

/// "=" or an operator such as "+=".
std::optional<BinaryOperator> Parser::TakeAssignment() {
    constexpr std::pair<std::string_view, BinaryOperator> kCompound[] = {{"+=", BinaryOperator::Add},
                                                                         {"-=", BinaryOperator::Subtract},
                                                                         {"*=", BinaryOperator::Multiply},
                                                                         {"/=", BinaryOperator::Divide},
                                                                         {"%=", BinaryOperator::Modulo}};
    for (const auto& [symbol, op] : kCompound) {
        if (TakeSymbol(symbol)) {
            return op;
        }
    }
    ExpectSymbol("=");
    return std::nullopt;
}

Assignment Parser::ParseAssignment() {
    Assignment assignment;
    if (Peek().kind == TokenKind::Variable) {
        assignment.variable = TakeVariable();
        RequireDeclared(assignment.variable);
        ExpectSymbol("=");
        if (IsName() && IsSymbol("=", 1)) { // SET @v = column = expr
            assignment.column = TakeName();
            Take();
        }
        assignment.value = ParseValue();
        return assignment;
    }
    assignment.column = TakeObjectName().last();
    assignment.op = TakeAssignment();
    assignment.value = !assignment.op && TakeWord("DEFAULT") ? nullptr : ParseValue();
    return assignment;
}

void Parser::ParseWhere(ExprPtr& where, std::string& cursor) {
    if (!TakeWord("WHERE")) {
        return;
    }
    if (TakeWords({"CURRENT", "OF"})) {
        TakeWord("GLOBAL");
        cursor = TakeCursorName();
    } else {
        where = ParseCondition();
    }
}

UpdateStatement Parser::ParseUpdate() {
    UpdateStatement update;
    ExpectWord("UPDATE");
    update.top = ParseTop();
    update.table = TakeTable();
    SkipTableHints();
    ExpectWord("SET");
    CommaSeparated([&] { update.assignments.push_back(ParseAssignment()); });
    ParseOutputs(update.outputs);
    if (TakeWord("FROM")) {
        update.from = ParseFrom();
    }
    ParseWhere(update.where, update.cursor);
    SkipQueryOptions();
    return update;
}

DeleteStatement Parser::ParseDelete() {
    DeleteStatement statement;
    ExpectWord("DELETE");
    statement.top = ParseTop();
    TakeWord("FROM");
    statement.table = TakeTable();
    SkipTableHints();
    ParseOutputs(statement.outputs);
    if (TakeWord("FROM")) {
        statement.from = ParseFrom();
    }
    ParseWhere(statement.where, statement.cursor);
    SkipQueryOptions();
    return statement;
}

} // namespace devsql
