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
    if (TakeSymbol(";")) {
        if (TakeInteger() != 1) {
            Unsupported("procedure number");
        }
    }
    const bool parenthesis = TakeSymbol("(");
    while (Peek().kind == TokenKind::Variable) {
        Parameter parameter = ParseParameter();
        module.parameters.push_back(std::move(parameter));
        if (!TakeSymbol(",")) {
            break;
        }
    }
    if (parenthesis) {
        ExpectSymbol(")");
    }
    if (TakeWord("WITH")) {
        do {
            const int option = TakeOneOf({"RECOMPILE", "ENCRYPTION"});
            if (option < 0) {
                ParseExecuteAs();
            }
            module.recompile = module.recompile || option == 0;
            module.encrypted = module.encrypted || option == 1;
        } while (TakeSymbol(","));
    }
    if (TakeWords({"FOR", "REPLICATION"})) {
        // FOR REPLICATION has no effect: the procedure runs like any other.
    }
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
        do {
            module.parameters.push_back(ParseParameter());
        } while (TakeSymbol(","));
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
        do {
            if (TakeWord("ENCRYPTION")) {
                module.encrypted = true;
            } else if (!TakeWord("SCHEMABINDING") && !TakeWords({"CALLED", "ON", "NULL", "INPUT"})) {
                ParseExecuteAs();
            }
        } while (TakeSymbol(","));
    }
    TakeWord("AS");
    if (!IsWord("BEGIN")) {
        SyntaxError();
    }
    module.body.push_back(ParseStatement());
    while (TakeSymbol(";")) {
    }
    if (!AtEnd()) {
        SyntaxError();
    }
    return module;
}

/// WITH EXECUTE AS CALLER, OWNER or SELF: no effect, because every login may do everything.
void Parser::ParseExecuteAs() {
    if (!(IsWord("EXECUTE") || IsWord("EXEC")) || !IsWord("AS", 1) ||
        !(IsWord("CALLER", 2) || IsWord("OWNER", 2) || IsWord("SELF", 2))) {
        Unsupported(Peek().text);
    }
    Take();
    Take();
    Take();
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
        do {
            const int option = TakeOneOf({"ENCRYPTION", "SCHEMABINDING", "VIEW_METADATA"});
            if (option < 0) {
                SyntaxError();
            }
            module.encrypted = module.encrypted || option == 0;
        } while (TakeSymbol(","));
    }
    ExpectWord("AS");
    module.query = ParseQuery();
    if (TakeWords({"WITH", "CHECK", "OPTION"})) {
        module.check_option = true;
    }
    return module;
}

} // namespace devsql
