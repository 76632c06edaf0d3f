// CREATE and ALTER of procedures, functions and views, each of which must be alone in its batch. Triggers are
// in parser_triggers.cpp.
#include <algorithm>

#include "devserver/tsql/parse/parser_impl.h"

namespace devsql {

using namespace ast;

StatementPtr Parser::ParseModule(ObjectKind kind, bool alter, bool or_alter) {
    struct Entry {
        ObjectKind kind;
        std::string_view word;
        CreateModuleStatement (Parser::*parse)();
    };
    static constexpr Entry kEntries[] = {{ObjectKind::View, "VIEW", &Parser::ParseViewModule},
                                         {ObjectKind::Function, "FUNCTION", &Parser::ParseFunctionModule},
                                         {ObjectKind::Trigger, "TRIGGER", &Parser::ParseTriggerModule},
                                         {ObjectKind::Procedure, "PROCEDURE", &Parser::ParseProcedureModule}};
    const Entry& entry = *std::ranges::find(kEntries, kind, &Entry::kind);
    if (!module_allowed_) {
        Fail(111, {(alter ? "ALTER " : "CREATE ") + std::string(entry.word)});
    }
    CreateModuleStatement module = (this->*entry.parse)();
    module.kind = kind;
    module.alter = alter;
    module.or_alter = or_alter;
    module.text = std::string(source_);
    return Wrap(std::move(module));
}

CreateModuleStatement Parser::ParseProcedureModule() {
    CreateModuleStatement module;
    module_allowed_ = false;
    module.name = TakeObjectName();
    if (TakeSymbol(";") && TakeInteger() != 1) {
        Unsupported("procedure number");
    }
    const bool parenthesis = TakeSymbol("(");
    while (Peek().kind == TokenKind::Variable) {
        module.parameters.push_back(ParseParameter());
        if (!TakeSymbol(",")) {
            break;
        }
    }
    if (parenthesis) {
        ExpectSymbol(")");
    }
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            if (TakeWord("ENCRYPTION")) {
                module.encrypted = true;
            } else if (!TakeWord("RECOMPILE")) {
                ParseExecuteAs();
            }
        });
    }
    TakeWords({"FOR", "REPLICATION"}); // No effect: the procedure runs like any other.
    ExpectWord("AS");
    module.body = ParseStatementsUntilEnd();
    return module;
}

CreateModuleStatement Parser::ParseFunctionModule() {
    CreateModuleStatement module;
    module_allowed_ = false;
    module.name = TakeObjectName();
    ExpectSymbol("(");
    if (!IsSymbol(")")) {
        CommaSeparated([&] { module.parameters.push_back(ParseParameter()); });
    }
    ExpectSymbol(")");
    ExpectWord("RETURNS");
    if (IsWord("TABLE") || Peek().kind == TokenKind::Variable) {
        Unsupported("table-valued function");
    }
    Parameter result;
    result.type = ParseType();
    result.output = true;
    module.parameters.push_back(std::move(result));
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            if (TakeWord("ENCRYPTION")) {
                module.encrypted = true;
            } else if (!TakeWord("SCHEMABINDING") && !TakeWords({"CALLED", "ON", "NULL", "INPUT"})) {
                ParseExecuteAs();
            }
        });
    }
    TakeWord("AS");
    if (!IsWord("BEGIN")) {
        SyntaxError();
    }
    module.body.push_back(ParseStatement());
    SkipSemicolons();
    ExpectEnd();
    return module;
}

/// WITH EXECUTE AS CALLER, OWNER or SELF: no effect, because every login may do everything.
void Parser::ParseExecuteAs() {
    if (!IsOneOf({"EXECUTE", "EXEC"}) || !IsWord("AS", 1) || !IsOneOf({"CALLER", "OWNER", "SELF"}, 2)) {
        Unsupported(Peek().text);
    }
    next_ += 3;
}

Parameter Parser::ParseParameter() {
    Parameter parameter;
    parameter.name = TakeVariable();
    Declare(parameter.name);
    TakeWord("AS");
    parameter.type = ParseType();
    if (TakeWord("VARYING")) {
        Unsupported("cursor parameter");
    }
    if (TakeSymbol("=")) {
        const std::size_t begin = Peek().begin;
        if (IsName() && Peek().kind != TokenKind::DoubleQuoted) {
            parameter.default_value = Make(LiteralExpr{Sized(TypeId::NVarChar, 128), Value(Take().text)});
        } else {
            parameter.default_value = ParseUnary();
        }
        parameter.default_text = Text(begin, PreviousEnd());
    }
    parameter.output = TakeOneOf({"OUTPUT", "OUT"}) >= 0;
    TakeWord("READONLY");
    return parameter;
}

CreateModuleStatement Parser::ParseViewModule() {
    CreateModuleStatement module;
    module.name = TakeObjectName();
    if (IsSymbol("(")) {
        module.columns = ParseNameList();
    }
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            module.encrypted |= ExpectOneOf({"ENCRYPTION", "SCHEMABINDING", "VIEW_METADATA"}) == 0;
        });
    }
    ExpectWord("AS");
    module.query = ParseQuery();
    TakeWords({"WITH", "CHECK", "OPTION"}); // No view is written through.
    return module;
}

} // namespace devsql
