// Binds calls: aggregates, window functions, scalar functions, functions of the session and of users.
#include "devserver/tsql/bind/call_binder.h"

#include <algorithm>
#include <iterator>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"
#include "devserver/tsql/session/user_functions.h"

namespace devsql {
namespace {

constexpr std::string_view kAggregates = "COUNT,COUNT_BIG,SUM,AVG,MIN,MAX,GROUPING";
/// Functions of SQL Server that this one refuses by name; devserver/docs/cuts.md says why.
constexpr std::string_view kRefused =
    "ACOS,ASIN,ATAN,ATN2,BINARY_CHECKSUM,CHECKSUM,CHECKSUM_AGG,COS,COT,CURSOR_STATUS,DEGREES,DIFFERENCE,"
    "EXP,FORMATMESSAGE,HASHBYTES,INDEXPROPERTY,INDEX_COL,LOG,LOG10,NTILE,PARSENAME,PI,POWER,RADIANS,RAND,"
    "SESSIONPROPERTY,SIN,SOUNDEX,SQRT,SQUARE,STDEV,STDEVP,TAN,VAR,VARP";
constexpr std::string_view kRankings = "ROW_NUMBER,RANK,DENSE_RANK";

/// DATEADD(day, …): the first argument is a word, not a column.
constexpr std::string_view kDateCalls = "DATEADD,DATEDIFF,DATEPART,DATENAME";

std::shared_ptr<Bound> Aggregated(std::string text, const Type& type, int depth, bool nullable = true) {
    auto node = MakeSql(std::move(text), type, nullable);
    node->aggregate = true;
    node->depth = depth;
    return node;
}

/// A call of a user's function, which the session runs. Its first two arguments are the database and the
/// object's number. `view_database` is the database of the view being bound, or empty.
BoundPtr UserCall(SessionCore& session, const std::string& view_database, const ast::Name& name,
                  std::vector<BoundPtr> arguments) {
    ObjectPlace place = PlaceOf(session, name);
    if (!view_database.empty() && name.parts.size() < 3) {
        place.database = view_database;
    }
    Catalogue& catalogue = session.databases().Get(place.database);
    const std::optional<ObjectDef> object = catalogue.FindObject(place.schema, place.name);
    if (!object || object->type != "FN") {
        RaiseError(4121, {place.schema, name.text()});
    }
    const std::vector<ParameterDef> parameters = catalogue.Parameters(object->id);
    const std::size_t wanted = parameters.size() - 1; // The last one is the result.
    if (arguments.size() != wanted) {
        RaiseError(arguments.size() < wanted ? 313 : 8144, {name.text()}, 2);
    }
    std::vector<BoundPtr> children = {MakeConstant(place.database, Sized(TypeId::NVarChar, 128)),
                                      MakeConstant(object->id, Simple(TypeId::BigInt))};
    std::ranges::move(arguments, std::back_inserter(children));
    auto node = MakeNode(BoundKind::Session, parameters.back().type, std::move(children));
    node->session = &UserFunctionCall();
    node->nullable = true;
    return node;
}

} // namespace

BoundPtr CallBinder::Call(const ast::CallExpr& call, const Scope* scope) {
    const std::string name = AsciiUpper(call.name);
    RaiseIf(ListHas(kRefused, name), 40517, {name});
    if (call.over) {
        return Window(call, scope);
    }
    if (ListHas(kAggregates, name)) {
        return Aggregate(call, scope);
    }
    RaiseIf(ListHas(kRankings, name), 10753, {call.name});
    if (BoundPtr special = SpecialCall(call, scope)) {
        return special;
    }
    return OrdinaryCall(call, scope);
}

BoundPtr CallBinder::OrdinaryCall(const ast::CallExpr& call, const Scope* scope) {
    const std::string name = AsciiUpper(call.name);
    const ScalarFunction* function = FindFunction(name);
    if (function != nullptr && ListHas(kDateCalls, name)) {
        return DateCall(call, scope, *function);
    }
    std::vector<BoundPtr> arguments;
    for (const ast::ExprPtr& argument : call.arguments) {
        arguments.push_back(binder_.BindValue(*argument, scope));
    }
    if (call.name.find('.') != std::string::npos) {
        return UserCall(session_, binding_.view_database, ParseName(call.name), std::move(arguments));
    }
    RaiseIf(call.star, 102, {"*"});
    return function != nullptr ? ScalarCall(*function, std::move(arguments))
                               : SessionCall(call, std::move(arguments));
}

BoundPtr CallBinder::ScalarCall(const ScalarFunction& function, std::vector<BoundPtr> arguments) {
    CheckArgumentCount(function, arguments.size());
    std::vector<Type> types;
    types.reserve(arguments.size());
    for (const BoundPtr& argument : arguments) {
        types.push_back(argument->type);
    }
    auto node = MakeNode(BoundKind::Function, ResultType(function, types), std::move(arguments));
    node->function = &function;
    node->nullable = true;
    if (function.name == "ISNULL" && node->children.size() == 2) {
        node->nullable = node->children[0]->nullable && node->children[1]->nullable;
    }
    return node;
}

BoundPtr CallBinder::SessionCall(const ast::CallExpr& call, std::vector<BoundPtr> arguments) {
    const SessionFunction* function = FindSessionFunction(AsciiUpper(call.name));
    if (function == nullptr) {
        RaiseError(195, {call.name, "function name"});
    }
    const int count = static_cast<int>(arguments.size());
    if (count < function->min_arguments || count > function->max_arguments) {
        RaiseError(174, {call.name, std::to_string(function->max_arguments)});
    }
    auto node = MakeNode(BoundKind::Session, function->type, std::move(arguments));
    node->session = function;
    node->nullable = true;
    if (function->constant && node->children.empty()) {
        return MakeConstant(Compute(*node, session_), node->type);
    }
    return node;
}

BoundPtr CallBinder::SpecialCall(const ast::CallExpr& call, const Scope* scope) {
    const auto bind = [&](std::size_t index) { return binder_.BindValue(*call.arguments[index], scope); };
    const auto expect = [&](std::size_t count) {
        if (call.arguments.size() != count) {
            RaiseError(174, {ToLower(call.name), std::to_string(count)});
        }
    };
    if (AsciiEqual(call.name, "COALESCE")) {
        RaiseIf(call.arguments.size() < 2, 102, {")"});
        std::vector<std::pair<BoundPtr, BoundPtr>> branches;
        for (std::size_t i = 0; i + 1 < call.arguments.size(); ++i) {
            BoundPtr value = bind(i);
            BoundPtr null = MakeCondition(BoundKind::IsNull, {value});
            branches.emplace_back(MakeCondition(BoundKind::Not, {null}), value);
        }
        return ExpressionBinder::Choice(branches, bind(call.arguments.size() - 1));
    }
    if (AsciiEqual(call.name, "NULLIF")) {
        expect(2);
        BoundPtr value = bind(0);
        BoundPtr equal = binder_.expressions().Compare(ast::CompareOp::Equal, value, bind(1));
        return MakeNode(BoundKind::Case, value->type, {equal, MakeConstant({}, value->type), value});
    }
    if (AsciiEqual(call.name, "IIF")) {
        expect(3);
        std::vector<std::pair<BoundPtr, BoundPtr>> branches;
        branches.emplace_back(binder_.BindCondition(*call.arguments[0], scope), bind(1));
        return ExpressionBinder::Choice(branches, bind(2));
    }
    RaiseIf(AsciiEqual(call.name, "IDENTITY"), 40517, {"IDENTITY function"});
    return nullptr;
}

BoundPtr CallBinder::DateCall(const ast::CallExpr& call, const Scope* scope, const ScalarFunction& function) {
    CheckArgumentCount(function, call.arguments.size());
    const auto* word = std::get_if<ast::ColumnExpr>(&call.arguments[0]->node);
    if (word == nullptr || word->name.parts.size() != 1) {
        RaiseError(1023, {"1", ToLower(call.name)});
    }
    if (!FindDatePart(word->name.last())) {
        RaiseError(155, {word->name.last(), ToLower(call.name)});
    }
    const std::string& part = word->name.last();
    std::vector<BoundPtr> arguments = {
        MakeConstant(part, Sized(TypeId::VarChar, static_cast<std::int32_t>(part.size())))};
    std::vector<Type> types = {arguments[0]->type};
    for (std::size_t i = 1; i < call.arguments.size(); ++i) {
        arguments.push_back(binder_.BindValue(*call.arguments[i], scope));
        types.push_back(arguments.back()->type);
    }
    auto node = MakeNode(BoundKind::Function, ResultType(function, types), std::move(arguments));
    node->function = &function;
    return node;
}

// ------------------------------------------------------------------ aggregates

BoundPtr CallBinder::Aggregate(const ast::CallExpr& call, const Scope* scope) {
    const std::string name = AsciiUpper(call.name);
    const int depth = scope == nullptr ? 0 : scope->depth;
    if (!binding_.clause.aggregates || binding_.clause.inside_aggregate) {
        RaiseError(binding_.clause.inside_aggregate ? 130 : 147);
    }
    if (call.star) {
        RaiseIf(name != "COUNT" && name != "COUNT_BIG", 102, {"*"});
        return Aggregated("count(*)", Simple(name == "COUNT" ? TypeId::Int : TypeId::BigInt), depth, false);
    }
    if (call.arguments.size() != 1) {
        RaiseError(174, {ToLower(call.name), "1"});
    }
    if (name == "GROUPING") { // Its value is filled in where the grouping keys are known.
        BoundPtr key = binder_.BindValue(*call.arguments[0], scope);
        auto node = Aggregated("0", Simple(TypeId::TinyInt), depth, false);
        node->children.push_back(std::move(key));
        return node;
    }
    binding_.clause.inside_aggregate = true;
    BoundPtr operand = binder_.BindValue(*call.arguments[0], scope);
    binding_.clause.inside_aggregate = false;
    return AggregateOf(call, operand, depth);
}

BoundPtr CallBinder::AggregateOf(const ast::CallExpr& call, const BoundPtr& operand, int depth) {
    const std::string name = AsciiUpper(call.name);
    const std::string distinct = call.distinct ? "DISTINCT " : "";
    if (name == "COUNT" || name == "COUNT_BIG") {
        return Aggregated("count(" + distinct + emission_.EmitCollated(operand) + ")",
                          Simple(name == "COUNT" ? TypeId::Int : TypeId::BigInt), depth, false);
    }
    if (name == "MIN" || name == "MAX") {
        const Type type = ExtremeType(operand->type, ToLower(name));
        return Aggregated((name == "MIN" ? "min(" : "max(") + emission_.EmitCollated(operand) + ")", type,
                          depth);
    }
    // SUM and AVG by the server's own aggregates, which overflow and round as each type does.
    const bool average = name == "AVG";
    return Aggregated(session_.functions().SumFunction(operand->type, average) + "(" + distinct +
                          emission_.Emit(operand) + ")",
                      average ? AverageType(operand->type) : SumType(operand->type), depth);
}

// ------------------------------------------------------------------ window functions

std::string CallBinder::OverClause(const ast::Over& over, const Scope* scope) {
    std::string text = " OVER (";
    for (const ast::ExprPtr& key : over.partition_by) {
        text += (&key == &over.partition_by.front() ? "PARTITION BY " : ", ") +
                emission_.EmitCollated(binder_.BindValue(*key, scope));
    }
    for (const ast::OrderItem& item : over.order_by) {
        const BoundPtr value = binder_.BindValue(*item.expr, scope);
        text += (&item == &over.order_by.front() ? " ORDER BY " : ", ") + emission_.EmitCollated(value) +
                (item.descending ? " DESC" : "");
    }
    return text + ")";
}

BoundPtr CallBinder::Window(const ast::CallExpr& call, const Scope* scope) {
    const std::string name = AsciiUpper(call.name);
    if (!binding_.clause.windows) {
        RaiseError(40517, {"OVER outside SELECT and ORDER BY"});
    }
    if (ListHas(kRankings, name)) {
        if (call.over->order_by.empty()) {
            RaiseError(40517, {name + " without ORDER BY"});
        }
        return MakeSql(ToLower(name) + "()" + OverClause(*call.over, scope), Simple(TypeId::BigInt), false);
    }
    if (!ListHas(kAggregates, name) || name == "SUM" || name == "AVG" || call.distinct) {
        RaiseError(40517, {name + " with OVER"});
    }
    BoundPtr aggregate = Aggregate(call, scope);
    return MakeSql(aggregate->text + OverClause(*call.over, scope), aggregate->type, aggregate->nullable);
}

} // namespace devsql
