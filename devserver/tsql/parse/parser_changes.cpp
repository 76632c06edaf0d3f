// INSERT, UPDATE, DELETE.
#include <array>

#include "devserver/tsql/parse/parser_impl.h"

namespace devsql {

using namespace ast;

InsertStatement Parser::ParseInsert() {
    InsertStatement insert;
    ExpectWord("INSERT");
    insert.top = ParseTop();
    TakeWord("INTO");
    if (Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text, 1087);
        insert.table.parts = {Take().text};
    } else {
        insert.table = TakeObjectName();
    }
    SkipTableHints();
    if (IsSymbol("(") && !BeginsQuery(1) && !IsWord("SELECT", 1)) {
        ExpectSymbol("(");
        do {
            // "t.c" is accepted for the column c.
            insert.columns.push_back(TakeObjectName().last());
        } while (TakeSymbol(","));
        ExpectSymbol(")");
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
    ExpectSymbol("(");
    do {
        bulk.columns.push_back(TakeName());
        ParseType();
        if (TakeWord("COLLATE")) {
            TakeName();
        }
        if (!TakeWords({"NOT", "NULL"})) {
            TakeWord("NULL");
        }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
    if (TakeWord("WITH")) {
        ParseBulkOptions(bulk);
    }
    return bulk;
}

void Parser::ParseBulkOptions(InsertBulkStatement& bulk) {
    ExpectSymbol("(");
    do {
        if (TakeWord("CHECK_CONSTRAINTS")) {
            bulk.check_constraints = true;
        } else if (TakeWord("KEEP_NULLS")) {
            bulk.keep_nulls = true;
        } else if (TakeWord("FIRE_TRIGGERS")) {
            bulk.fire_triggers = true;
        } else if (TakeWord("ORDER")) { // The other options affect neither the rows nor their checks.
            SkipParenthesized();
        } else if (TakeWord("ROWS_PER_BATCH") || TakeWord("KILOBYTES_PER_BATCH")) {
            ExpectSymbol("=");
            Take();
        } else if (!TakeWord("TABLOCK")) {
            Fail(321, {Peek().text});
        }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
}

/// OUTPUT … INTO …, and a second OUTPUT that goes to the client.
void Parser::ParseOutputs(std::vector<OutputClause>& outputs) {
    while (TakeWord("OUTPUT")) {
        OutputClause clause;
        do {
            clause.items.push_back(ParseSelectItem());
        } while (TakeSymbol(","));
        if (TakeWord("INTO")) {
            if (Peek().kind == TokenKind::Variable) {
                RequireDeclared(Peek().text, 1087);
                clause.into.parts = {Take().text};
            } else {
                clause.into = TakeObjectName();
            }
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
        do {
            ExpectSymbol("(");
            std::vector<ExprPtr> row;
            do {
                row.push_back(TakeWord("DEFAULT") ? nullptr : ParseValue());
            } while (TakeSymbol(","));
            ExpectSymbol(")");
            insert.rows.push_back(std::move(row));
        } while (TakeSymbol(","));
    } else if (IsWord("EXEC") || IsWord("EXECUTE")) {
        insert.execute = ParseExecute();
    } else if (BeginsQuery() || IsSymbol("(")) {
        insert.query = ParseQuery();
    } else {
        SyntaxError();
    }
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
    constexpr std::array<std::pair<std::string_view, BinaryOperator>, 5> kCompound = {
        {{"+=", BinaryOperator::Add},
         {"-=", BinaryOperator::Subtract},
         {"*=", BinaryOperator::Multiply},
         {"/=", BinaryOperator::Divide},
         {"%=", BinaryOperator::Modulo}}};
    for (const auto& [symbol, op] : kCompound) {
        if (TakeSymbol(symbol)) {
            assignment.op = op;
            assignment.value = ParseValue();
            return assignment;
        }
    }
    ExpectSymbol("=");
    assignment.value = TakeWord("DEFAULT") ? nullptr : ParseValue();
    return assignment;
}

void Parser::ParseWhere(ExprPtr& where, std::string& cursor) {
    if (!TakeWord("WHERE")) {
        return;
    }
    if (TakeWords({"CURRENT", "OF"})) {
        TakeWord("GLOBAL");
        cursor = Peek().kind == TokenKind::Variable ? TakeVariable() : TakeName();
    } else {
        where = ParseCondition();
    }
}

UpdateStatement Parser::ParseUpdate() {
    UpdateStatement update;
    ExpectWord("UPDATE");
    update.top = ParseTop();
    if (Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text, 1087);
        update.table.parts = {Take().text};
    } else {
        update.table = TakeObjectName();
    }
    SkipTableHints();
    ExpectWord("SET");
    do {
        update.assignments.push_back(ParseAssignment());
    } while (TakeSymbol(","));
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
    if (Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text, 1087);
        statement.table.parts = {Take().text};
    } else {
        statement.table = TakeObjectName();
    }
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
