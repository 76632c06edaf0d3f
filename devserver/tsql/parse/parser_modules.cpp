// CREATE and ALTER of procedures, functions, views and triggers, each of which must be alone in its batch.
// ENABLE and DISABLE TRIGGER, and UPDATE(column), which is allowed in triggers only.
#include <algorithm>
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

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
    ParseModuleOptions(module, {"RECOMPILE"});
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
    UnsupportedIf(IsWord("TABLE") || Peek().kind == TokenKind::Variable, "table-valued function");
    Parameter result;
    result.type = ParseType();
    result.output = true;
    module.parameters.push_back(std::move(result));
    ParseModuleOptions(module, {"SCHEMABINDING", "CALLED"});
    TakeWord("AS");
    SyntaxErrorIf(!IsWord("BEGIN"));
    module.body.push_back(ParseStatement());
    SkipSemicolons();
    ExpectEnd();
    return module;
}

/// WITH ENCRYPTION, EXECUTE AS and the options in `others`, which have no effect.
void Parser::ParseModuleOptions(CreateModuleStatement& module,
                                std::initializer_list<std::string_view> others) {
    if (!TakeWord("WITH")) {
        return;
    }
    CommaSeparated([&] {
        if (TakeWord("ENCRYPTION")) {
            module.encrypted = true;
        } else if (const int other = TakeOneOf(others); other < 0) {
            ParseExecuteAs();
        } else if (*(others.begin() + other) == "CALLED" && !TakeWords({"ON", "NULL", "INPUT"})) {
            SyntaxError();
        }
    });
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
    UnsupportedIf(TakeWord("VARYING"), "cursor parameter");
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

// ------------------------------------------------------------------ triggers

CreateModuleStatement Parser::ParseTriggerModule() {
    CreateModuleStatement module;
    module_allowed_ = false;
    module.name = TakeObjectName();
    ExpectWord("ON");
    UnsupportedIf(IsWord("DATABASE") || (IsWord("ALL") && IsWord("SERVER", 1)), "DDL trigger");
    module.table = TakeObjectName();
    ParseModuleOptions(module, {});
    UnsupportedIf(IsWord("INSTEAD") && IsWord("OF", 1), "INSTEAD OF trigger");
    ExpectOneOf({"FOR", "AFTER"});
    module.events = ParseTriggerEvents();
    TakeWords({"WITH", "APPEND"}); // No effect: a table always takes several triggers.
    TakeWords({"NOT", "FOR", "REPLICATION"});
    ExpectWord("AS");
    in_trigger_ = true;
    module.body = ParseStatementsUntilEnd();
    SyntaxErrorIf(module.body.empty());
    return module;
}

std::uint8_t Parser::ParseTriggerEvents() {
    constexpr std::array kEvents = {kOnInsert, kOnUpdate, kOnDelete};
    std::uint8_t events = 0;
    CommaSeparated([&] {
        const int event = ExpectOneOf({"INSERT", "UPDATE", "DELETE"});
        const std::uint8_t bit = kEvents[static_cast<std::size_t>(event)];
        if ((events & bit) != 0) { // An event may be given only once.
            --next_;
            SyntaxError();
        }
        events = static_cast<std::uint8_t>(events | bit);
    });
    return events;
}

std::vector<std::string> Parser::ParseTriggerNames() {
    std::vector<std::string> names;
    CommaSeparated([&] { names.push_back(TakeWord("ALL") ? "ALL" : TakeObjectName().last()); });
    return names;
}

/// ENABLE | DISABLE TRIGGER name, … | ALL ON table
StatementPtr Parser::ParseSwitchTriggers() {
    constexpr std::int32_t kNoObject = 1088;
    SwitchTriggersStatement triggers;
    triggers.enable = AsciiEqual(Take().text, "ENABLE");
    triggers.missing = kNoObject;
    ExpectWord("TRIGGER");
    triggers.names = ParseTriggerNames();
    ExpectWord("ON");
    UnsupportedIf(IsWord("DATABASE") || (IsWord("ALL") && IsWord("SERVER", 1)), "DDL trigger");
    triggers.table = TakeObjectName();
    return Wrap(std::move(triggers));
}

/// UPDATE(column) becomes UPDATE('column') = 1, a comparison with the session function of that name.
ExprPtr Parser::ParseUpdatedColumn() {
    if (!in_trigger_) {
        Fail(140);
    }
    Take();
    Take();
    CallExpr call{"UPDATE", {}, false, false, {}};
    call.arguments.push_back(Make(LiteralExpr{Sized(TypeId::NVarChar, 128), Value(TakeName())}));
    ExpectSymbol(")");
    return Make(CompareExpr{CompareOp::Equal, Make(std::move(call)),
                            Make(LiteralExpr{Simple(TypeId::Int), Value(std::int64_t{1})})});
}

} // namespace devsql
