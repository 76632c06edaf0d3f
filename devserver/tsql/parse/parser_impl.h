// The parser's class. Its functions are in parser_*.cpp, by subject; only those files include this header.
#pragma once

#include <initializer_list>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/parse/lexer.h"
#include "devserver/tsql/parse/located_error.h"
#include "devserver/tsql/parse/parser.h"

namespace devsql {

class Parser {
  public:
    Parser(std::string_view source, const ParseOptions& options);

    Batch ParseWholeBatch();
    ast::CreateModuleStatement ParseWholeModule();
    ast::ExprPtr ParseWholeExpression();
    ast::Name ParseWholeName();
    ast::TypeSpec ParseWholeType();
    std::vector<ast::Parameter> ParseWholeParameters();

  private:
    /// Counts nesting, so that a hostile text fails with error 191 and does not overflow the stack.
    class Depth {
      public:
        explicit Depth(Parser& parser);
        ~Depth() { --parser_.depth_; }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;

      private:
        Parser& parser_;
    };

    // ---- tokens (parser_core.cpp)
    // Peek and Is… look at a token without taking it; `ahead` 0 is the next one. Take takes any token. A
    // Take… that returns bool takes a token only if it fits; the others and Expect… raise a syntax error if
    // it does not fit.
    const Token& Peek(std::size_t ahead = 0) const;
    Token Take();
    bool AtEnd() const { return Peek().kind == TokenKind::End; }
    bool IsWord(std::string_view word, std::size_t ahead = 0) const;
    bool IsOneOf(std::initializer_list<std::string_view> words, std::size_t ahead = 0) const;
    bool IsSymbol(std::string_view symbol, std::size_t ahead = 0) const;
    bool IsName(std::size_t ahead = 0) const;
    bool TakeWord(std::string_view word);
    bool TakeWords(std::initializer_list<std::string_view> words);
    bool TakeSymbol(std::string_view symbol);
    void ExpectWord(std::string_view word);
    void ExpectSymbol(std::string_view symbol);
    /// Takes the next token if it is one of `words`, and returns its index; otherwise takes nothing and
    /// returns -1.
    int TakeOneOf(std::initializer_list<std::string_view> words);
    int ExpectOneOf(std::initializer_list<std::string_view> words);
    void ExpectEnd();
    void SkipSemicolons();
    /// Calls `item` for each item of a list.
    template <class Item>
    void CommaSeparated(Item item) {
        do {
            item();
        } while (TakeSymbol(","));
    }
    template <class Item>
    void ListInParentheses(Item item) {
        ExpectSymbol("(");
        CommaSeparated(item);
        ExpectSymbol(")");
    }
    /// Fills `closing_`.
    void FindClosings();
    [[noreturn]] void SyntaxError() const;
    /// Throws a LocatedError at the next token.
    [[noreturn]] void Fail(std::int32_t number, std::initializer_list<std::string_view> arguments = {}) const;
    /// Raises 40517.
    [[noreturn]] void Unsupported(std::string_view what) const;
    void SyntaxErrorIf(bool condition) const;
    void UnsupportedIf(bool condition, std::string_view what) const;
    /// Raises 40510.
    [[noreturn]] void UnsupportedStatement(std::string_view what) const;
    std::string TakeName();
    /// A name or a string: a login, a file's logical name, an option's value.
    std::string TakeNameOrString();
    std::string TakeString();
    std::int64_t TakeInteger();
    ast::Name TakeObjectName();
    /// A table's name or a table variable.
    ast::Name TakeTable();
    /// A cursor's name or a cursor variable.
    std::string TakeCursorName();
    std::string TakeVariable();
    /// Raises 134 if the variable is declared already.
    void Declare(const std::string& variable);
    void RequireDeclared(const std::string& variable, std::int32_t error = 137) const;
    /// The source between two positions in bytes.
    std::string Text(std::size_t begin, std::size_t end) const;
    /// The position in bytes after the token that was taken last.
    std::size_t PreviousEnd() const;

    // ---- expressions (parser_expressions.cpp)
    /// Raises 191 for a chain of too many operators.
    void RequireShort(int links) const;
    ast::ExprPtr ParseExpr();
    ast::ExprPtr ParseCondition();
    ast::ExprPtr ParseValue();
    ast::ExprPtr ParseOr();
    ast::ExprPtr ParseAnd();
    ast::ExprPtr ParseNot();
    ast::ExprPtr ParsePredicate();
    ast::ExprPtr ParsePredicateTail(ast::ExprPtr left, bool negated);
    void RequirePredicate(const ast::Expr& expr) const;
    ast::ExprPtr ParseJunction(std::string_view word, ast::ExprPtr (Parser::*operand)());
    struct OperatorSymbol {
        std::string_view symbol;
        BinaryOperator op;
    };
    ast::ExprPtr ParseOperators(std::span<const OperatorSymbol> operators, ast::ExprPtr (Parser::*operand)());
    ast::ExprPtr ParseAdditive();
    ast::ExprPtr ParseMultiplicative();
    ast::ExprPtr ParseUnary();
    ast::ExprPtr ParsePostfix();
    ast::ExprPtr ParsePrimary();
    ast::ExprPtr ParseLiteral();
    ast::ExprPtr ParseParenthesized();
    ast::ExprPtr ParseCase();
    ast::ExprPtr ParseCast(bool attempt);
    ast::ExprPtr ParseConvert(bool attempt);
    ast::ExprPtr ParseCall(std::string name);
    ast::ExprPtr ParseNamed();
    ast::ExprPtr ParseOdbcEscape();
    ast::Over ParseOver();
    std::vector<ast::ExprPtr> ParseExprList();
    bool BeginsQuery(std::size_t ahead = 0) const;
    template <class Node>
    ast::ExprPtr Make(Node&& node) const {
        return std::make_unique<ast::Expr>(std::forward<Node>(node), Peek().line);
    }
    ast::TypeSpec ParseType();

    // ---- queries (parser_queries.cpp)
    ast::QueryPtr ParseQuery();
    ast::QueryTermPtr ParseUnion();
    ast::QueryTermPtr ParseIntersect();
    ast::QueryTermPtr ParseQueryPrimary();
    ast::SelectCore ParseSelectCore();
    ast::SelectItem ParseSelectItem();
    void ParseAlias(std::string& alias);
    bool BeginsAlias() const;
    void ParseGroupBy(ast::SelectCore& core);
    std::optional<ast::Top> ParseTop();
    std::vector<ast::CommonTable> ParseWith();
    std::vector<ast::TableSourcePtr> ParseFrom();
    ast::TableSourcePtr ParseJoined();
    ast::TableSourcePtr ParseTableSource();
    ast::TableSourcePtr ParseParenthesizedSource();
    ast::QueryPtr ParseValues();
    bool ParseJoinKind(ast::JoinKind& kind);
    bool IsTableHint(std::size_t ahead) const;
    void SkipTableHints();
    /// OPTION (…), of which MAXRECURSION is kept.
    std::int64_t SkipQueryOptions();
    std::vector<ast::OrderItem> ParseOrderBy();
    void ParseOffset(ast::Query& query);
    void ParseOutputs(std::vector<ast::OutputClause>& outputs);
    ast::InsertStatement ParseInsert();
    ast::InsertBulkStatement ParseInsertBulk();
    void ParseBulkOptions(ast::InsertBulkStatement& bulk);
    void ParseInsertSource(ast::InsertStatement& insert);
    ast::UpdateStatement ParseUpdate();
    std::optional<BinaryOperator> TakeAssignment();
    ast::Assignment ParseAssignment();
    ast::DeleteStatement ParseDelete();
    void ParseWhere(ast::ExprPtr& where, std::string& cursor);

    // ---- statements (parser_statements.cpp)
    /// A statement by its first word, which is taken before the function is called.
    struct StatementEntry {
        std::string_view word;
        ast::StatementPtr (*parse)(Parser&);
    };
    static const StatementEntry kStatements[];
    ast::StatementPtr ParseTruncate();
    ast::StatementPtr ParseStatement();
    ast::StatementPtr ParseStatementNode();
    ast::StatementList ParseStatementsUntilEnd();
    ast::StatementList ParseBlock(std::string_view what);
    template <class Node>
    static ast::StatementPtr Wrap(Node&& node) {
        return std::make_unique<ast::Statement>(std::forward<Node>(node), 1);
    }
    ast::StatementPtr ParseDataStatement();
    /// BREAK and CONTINUE; raises `outside` where there is no loop.
    ast::StatementPtr ParseLoopEnd(auto statement, std::int32_t outside);
    ast::StatementPtr ParseCursor(ast::CursorAction action);
    ast::StatementPtr ParseBegin();
    ast::StatementPtr ParseTry();
    ast::StatementPtr ParseIf();
    ast::StatementPtr ParseWhile();
    ast::StatementPtr ParseReturn();
    ast::StatementPtr ParseDeclare();
    ast::Declaration ParseDeclaration();
    ast::StatementPtr ParseCursorDeclaration(std::string name);
    ast::StatementPtr ParseSet();
    ast::StatementPtr ParseSetVariable();
    ast::StatementPtr ParseSetOption();
    ast::StatementPtr ParseExecute();
    ast::ExecuteStatement ParseProcedureCall();
    ast::Argument ParseArgument();
    ast::StatementPtr ParseRaiserror();
    /// THROW with its arguments, DISABLE TRIGGER: statements whose first word is not reserved and may be the
    /// name of a procedure.
    bool BeginsStatementOfNames() const;
    ast::StatementPtr ParseThrow();
    ast::StatementPtr ParseWaitfor();
    ast::StatementPtr ParseTransaction(ast::TransactionAction action);
    ast::StatementPtr ParseFetch();
    ast::StatementPtr ParseReconfigure();
    ast::StatementPtr ParseNamedStatement();
    ast::StatementPtr ParseDbcc();
    ast::StatementPtr ParseCreateStatistics();
    ast::StatementPtr ParseAlterIndex();
    void SkipParenthesized();
    void SkipStatisticsOptions();
    ast::StatementPtr ParseCheckIdentity();

    // ---- definitions (parser_definitions.cpp)
    ast::ObjectKind TakeKind();
    ast::StatementPtr ParseCreate();
    ast::StatementPtr ParseAlter();
    ast::StatementPtr ParseDrop();
    ast::StatementPtr ParseCreateTable();
    ast::TableDefinition ParseTableDefinition();
    ast::ColumnDefinition ParseColumn();
    bool ParseColumnOption(ast::ColumnDefinition& column);
    ast::Constraint ParseConstraint(bool of_column);
    void ParseKeyConstraint(ast::Constraint& constraint, bool of_column);
    void ParseReferences(ast::Constraint& constraint);
    std::string ParseExpressionText();
    std::vector<ast::IndexColumn> ParseIndexColumns();
    std::vector<std::string> ParseNameList();
    void SkipIndexOptions();
    void SkipFileGroup();
    ast::StatementPtr ParseAlterTable();
    void ParseAlterTableAdd(ast::AlterTableStatement& alter, bool with_check);
    void ParseAlterTableDrop(ast::AlterTableStatement& alter);
    ast::StatementPtr ParseCreateIndex();
    ast::StatementPtr ParseDropIndex();
    ast::StatementPtr ParseModule(ast::ObjectKind kind, bool alter, bool or_alter);
    void ParseModuleOptions(ast::CreateModuleStatement& module,
                            std::initializer_list<std::string_view> others);
    ast::CreateModuleStatement ParseProcedureModule();
    ast::CreateModuleStatement ParseViewModule();
    ast::CreateModuleStatement ParseFunctionModule();
    ast::CreateModuleStatement ParseTriggerModule();
    std::uint8_t ParseTriggerEvents();
    std::vector<std::string> ParseTriggerNames();
    ast::StatementPtr ParseSwitchTriggers();
    ast::ExprPtr ParseUpdatedColumn();
    ast::Parameter ParseParameter();

    // ---- databases and security (parser_admin.cpp)
    ast::StatementPtr ParseCreateDatabase();
    ast::FileSpec ParseFileSpec();
    std::vector<ast::FileSpec> ParseFileSpecs();
    std::string ParseSize();
    ast::StatementPtr ParseAlterDatabase();
    void ParseDatabaseOptions(ast::AlterDatabaseStatement& alter);
    ast::StatementPtr ParseAuthorization();
    void ParseExecuteAs();
    ast::StatementPtr ParseGrant(ast::GrantAction action);
    ast::StatementPtr ParseCreatePrincipal(ast::ObjectKind kind);
    ast::StatementPtr ParseCreateType();
    ast::StatementPtr ParseAlterRole();

    std::string_view source_;
    std::vector<Token> tokens_;
    /// For each "(" the position of its ")"; 0 for other tokens and for a parenthesis that is never closed.
    std::vector<std::size_t> closing_;
    std::size_t next_ = 0; ///< the position in `tokens_` of the next token
    bool quoted_identifier_;
    std::set<std::string> declared_; ///< upper case
    int depth_ = 0;                  ///< see Depth
    int loops_ = 0;                  ///< the WHILE loops around the statement that is being parsed
    bool module_allowed_ = false;    ///< no statement stands before: CREATE PROCEDURE and the like may follow
    bool in_trigger_ = false;        ///< UPDATE(column) is allowed
};

} // namespace devsql
