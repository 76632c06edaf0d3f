// CREATE and ALTER TRIGGER, ENABLE and DISABLE TRIGGER, and UPDATE(column), which stands in triggers alone.
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

CreateModuleStatement Parser::ParseTriggerModule() {
    CreateModuleStatement module;
    module_allowed_ = false;
    module.name = TakeObjectName();
    ExpectWord("ON");
    if (IsWord("DATABASE") || (IsWord("ALL") && IsWord("SERVER", 1))) {
        Unsupported("DDL trigger");
    }
    module.table = TakeObjectName();
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            if (TakeWord("ENCRYPTION")) {
                module.encrypted = true;
            } else {
                ParseExecuteAs();
            }
        });
    }
    if (IsWord("INSTEAD") && IsWord("OF", 1)) {
        Unsupported("INSTEAD OF trigger");
    }
    ExpectOneOf({"FOR", "AFTER"});
    module.events = ParseTriggerEvents();
    TakeWords({"WITH", "APPEND"}); // Several triggers for one statement are the rule.
    TakeWords({"NOT", "FOR", "REPLICATION"});
    ExpectWord("AS");
    in_trigger_ = true;
    module.body = ParseStatementsUntilEnd();
    if (module.body.empty()) {
        SyntaxError();
    }
    return module;
}

std::uint8_t Parser::ParseTriggerEvents() {
    constexpr std::array kEvents = {kOnInsert, kOnUpdate, kOnDelete};
    std::uint8_t events = 0;
    CommaSeparated([&] {
        const int event = ExpectOneOf({"INSERT", "UPDATE", "DELETE"});
        const std::uint8_t bit = kEvents[static_cast<std::size_t>(event)];
        if ((events & bit) != 0) { // Each event stands once.
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
    if (IsWord("DATABASE") || (IsWord("ALL") && IsWord("SERVER", 1))) {
        Unsupported("DDL trigger");
    }
    triggers.table = TakeObjectName();
    return Wrap(std::move(triggers));
}

/// UPDATE(column) becomes the comparison of a function of the same name, which no call can name, with 1.
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
