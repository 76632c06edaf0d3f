// Writes bound expressions as SQLite's SQL, and collects the parameters and operations that the SQL uses.
#include "devserver/tsql/bind/emitter.h"

#include <array>
#include <optional>

#include "devserver/storage/codec.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

constexpr std::array<std::string_view, 6> kCompareSymbols = {"=", "<>", "<", "<=", ">", ">="};

/// True for a conversion after which SQLite would store the same value.
bool ChangesNothing(const Bound& convert) {
    const Type& from = convert.children[0]->type;
    const Type& to = convert.type;
    if (convert.children.size() > 1 || !SameEncoding(from, to)) {
        return false;
    }
    if (IsCharacter(to.id) || IsBinary(to.id)) {
        return convert.assignment && !IsFixedLength(to.id) && (IsUnicode(to.id) || !IsUnicode(from.id)) &&
               (to.length == kMaxLength || IsOldLob(to.id) ||
                (from.length != kMaxLength && from.length <= to.length));
    }
    if (IsInteger(from.id) || from.id == TypeId::Bit) {
        return to.id != TypeId::Bit && Precedence(from.id) <= Precedence(to.id);
    }
    if (IsDecimal(from.id) && IsDecimal(to.id)) {
        return from.precision <= to.precision;
    }
    return from.id == to.id || (from.id == TypeId::Real && to.id == TypeId::Float) ||
           ((from.id == TypeId::SmallDateTime || from.id == TypeId::Date) && to.id == TypeId::DateTime) ||
           (from.id == TypeId::SmallMoney && to.id == TypeId::Money);
}

/// Lists of at least this length are written with literals. SQLite searches all parameters for each numbered
/// one; with 50,000 of them a statement took seven seconds.
constexpr std::size_t kLongList = 100;

/// The value as a literal of SQLite; empty where SQLite has no literal that is exactly the same.
std::optional<std::string> LiteralOf(const Value& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    const auto* text = std::get_if<std::string>(&value);
    const bool whole = text != nullptr && text->find('\0') == std::string::npos;
    return whole ? std::optional(QuoteText(*text)) : std::nullopt;
}

std::size_t HashOf(const Value& value) {
    return std::visit(
        Overloaded{
            [](std::monostate) { return std::size_t{0}; },
            [](const Decimal& v) {
                return std::hash<std::uint64_t>()(static_cast<std::uint64_t>(v.unscaled));
            },
            [](const DateTime& v) { return std::hash<std::int64_t>()(std::int64_t{v.days} << 32 ^ v.ticks); },
            [](const Bytes& v) { return std::hash<std::string>()(v.data); },
            [](const Guid& v) {
                std::size_t hash = 0;
                for (const std::uint8_t byte : v.bytes) {
                    hash = hash * 31 + byte;
                }
                return hash;
            },
            [](const auto& v) { return std::hash<std::remove_cvref_t<decltype(v)>>()(v); },
        },
        value);
}

/// The types of the values that an expression takes, by its slots.
void CollectSlots(const Bound& node, std::vector<Type>& slots) {
    if (node.kind == BoundKind::Slot) {
        if (slots.size() <= node.slot) {
            slots.resize(node.slot + 1);
        }
        slots[node.slot] = node.condition ? Simple(TypeId::Bit) : node.type;
    }
    for (const BoundPtr& child : node.children) {
        CollectSlots(*child, slots);
    }
}

Operation OperationOf(SessionCore& session, BoundPtr expression) {
    Operation operation;
    operation.type = expression->condition ? Simple(TypeId::Bit) : expression->type;
    CollectSlots(*expression, operation.slots);
    operation.compute = [&session, expression = std::move(expression)](std::span<const Value> slots) {
        return Compute(*expression, session, slots);
    };
    return operation;
}

} // namespace

Emission::Emission(SessionCore& session) : session_(session) {}

Emission::~Emission() {
    for (const std::int64_t operation : operations_) {
        session_.functions().Remove(operation);
    }
}

std::string Emission::Parameter(const Value& value, const Type& type) {
    // Equal values share a parameter, because SQLite compares GROUP BY and the list of items as text.
    const std::size_t hash = HashOf(value);
    const auto [first, last] = places_.equal_range(hash);
    for (auto place = first; place != last; ++place) {
        const auto& [known, known_type] = parameters_[place->second];
        if (known == value && known_type == type) {
            return "?" + std::to_string(place->second + 1);
        }
    }
    places_.emplace(hash, parameters_.size());
    parameters_.emplace_back(value, type);
    return "?" + std::to_string(parameters_.size());
}

void Emission::BindAll(SqliteStatement& statement) const {
    int index = 1;
    for (const auto& [value, type] : parameters_) {
        statement.Bind(index++, value, type);
    }
}

bool Emission::IsNative(const Bound& expression) const {
    switch (expression.kind) {
    case BoundKind::Sql:
    case BoundKind::Case:
        return true;
    case BoundKind::Convert:
        return ChangesNothing(expression) && IsNative(*expression.children[0]);
    default:
        return expression.condition && expression.kind != BoundKind::Like && NeedsSql(expression);
    }
}

/// As WithSlots, but keeps expressions whole that SQLite can compute itself.
BoundPtr Emission::Extract(const BoundPtr& expression, std::vector<BoundPtr>& leaves) const {
    if (!NeedsSql(*expression)) {
        return expression;
    }
    if (IsNative(*expression)) {
        leaves.push_back(expression);
        auto slot = std::make_shared<Bound>();
        slot->kind = BoundKind::Slot;
        slot->type = expression->type;
        slot->condition = expression->condition;
        slot->slot = leaves.size() - 1;
        return slot;
    }
    auto copy = std::make_shared<Bound>(*expression);
    for (BoundPtr& child : copy->children) {
        child = Extract(child, leaves);
    }
    return copy;
}

std::string Emission::EmitOperation(const BoundPtr& expression) {
    if (IsConstant(*expression)) {
        try {
            return Parameter(Compute(*expression, session_), expression->type);
        } catch (const SqlError&) {
            // The error must come only if a row needs the value.
        }
    }
    std::vector<BoundPtr> leaves;
    const std::int64_t number = session_.functions().Add(OperationOf(session_, Extract(expression, leaves)));
    operations_.push_back(number);
    std::string call = "tsql(" + std::to_string(number);
    for (const BoundPtr& leaf : leaves) {
        call += ", " + (leaf->condition ? EmitCondition(leaf) : Emit(leaf));
    }
    return call + ")";
}

std::string Emission::EmitListed(const BoundPtr& expression) {
    if (IsConstant(*expression)) {
        try {
            if (const std::optional<std::string> literal = LiteralOf(Compute(*expression, session_))) {
                return *literal;
            }
        } catch (const SqlError&) {
            // The error must come only if a row needs the value.
        }
    }
    return Emit(expression);
}

std::string Emission::Emit(const BoundPtr& expression) {
    if (expression->condition) {
        return EmitCondition(expression);
    }
    switch (expression->kind) {
    case BoundKind::Constant:
        return Parameter(expression->constant, expression->type);
    case BoundKind::Variable:
        return Parameter(session_.calls().FindVariable(expression->text).value, expression->type);
    case BoundKind::Sql:
        return expression->text;
    case BoundKind::Case:
        return NeedsSql(*expression) ? EmitCase(*expression) : EmitOperation(expression);
    case BoundKind::Convert:
        if (ChangesNothing(*expression)) {
            return Emit(expression->children[0]);
        }
        return EmitOperation(expression);
    default:
        return EmitOperation(expression);
    }
}

std::string Emission::EmitCollated(const BoundPtr& expression) {
    std::string text = Emit(expression);
    return IsCharacter(expression->type.id) ? text + " COLLATE " + std::string(kCollation) : text;
}

std::string Emission::EmitCase(const Bound& expression) {
    std::string text = "CASE";
    std::size_t i = 0;
    for (; i + 1 < expression.children.size(); i += 2) {
        text +=
            " WHEN " + EmitCondition(expression.children[i]) + " THEN " + Emit(expression.children[i + 1]);
    }
    if (i < expression.children.size()) {
        text += " ELSE " + Emit(expression.children[i]);
    }
    return text + " END";
}

std::string Emission::EmitJunction(const Bound& condition, std::string_view word) {
    std::string text = "(";
    for (const BoundPtr& child : condition.children) {
        text += (&child == &condition.children.front() ? "" : std::string(" ") + std::string(word) + " ") +
                EmitCondition(child);
    }
    return text + ")";
}

std::string Emission::EmitCondition(const BoundPtr& condition) {
    switch (condition->kind) {
    case BoundKind::Sql:
        return condition->text;
    case BoundKind::Compare:
        return "(" + EmitCollated(condition->children[0]) + " " +
               std::string(kCompareSymbols[static_cast<std::size_t>(condition->compare)]) + " " +
               Emit(condition->children[1]) + ")";
    case BoundKind::And:
        return EmitJunction(*condition, "AND");
    case BoundKind::Or:
        return EmitJunction(*condition, "OR");
    case BoundKind::Not:
        return "(NOT " + EmitCondition(condition->children[0]) + ")";
    case BoundKind::IsNull:
        return "(" + Emit(condition->children[0]) + " IS NULL)";
    case BoundKind::InList: {
        std::string text = "(" + EmitCollated(condition->children[0]) + " IN (";
        const bool is_long = condition->children.size() > kLongList;
        for (std::size_t i = 1; i < condition->children.size(); ++i) {
            text += (i == 1 ? "" : ", ") +
                    (is_long ? EmitListed(condition->children[i]) : Emit(condition->children[i]));
        }
        return text + "))";
    }
    default:
        return EmitOperation(condition);
    }
}

} // namespace devsql
