// The result types of operators and aggregates.
#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

using enum TypeId;

constexpr int kMaxPrecision = 38;
/// Division and reduction leave at least this many digits after the point.
constexpr int kLeastScale = 6;

bool IsBitOperator(BinaryOperator op) {
    return op == BinaryOperator::BitAnd || op == BinaryOperator::BitOr || op == BinaryOperator::BitXor;
}

[[noreturn]] void Incompatible(BinaryOperator op, const Type& left, const Type& right) {
    throw ErrorOf(402, {TypeName(left.id), TypeName(right.id), OperatorWord(op)});
}

[[noreturn]] void InvalidOperand(const Type& type, std::string_view op) {
    throw ErrorOf(8117, {TypeName(type.id), op});
}

Type DecimalOperatorType(BinaryOperator op, const Type& left, const Type& right) {
    const Type a = AsDecimalType(left);
    const Type b = AsDecimalType(right);
    const int scale = std::max(a.scale, b.scale);
    const int whole = std::max(a.precision - a.scale, b.precision - b.scale);
    Type result;
    switch (op) {
    case BinaryOperator::Add:
    case BinaryOperator::Subtract:
        result =
            DecimalType(std::min(kMaxPrecision, whole + scale + 1), std::min(scale, kMaxPrecision - whole));
        break;
    case BinaryOperator::Multiply:
        result = ReducedDecimal(a.precision + b.precision + 1, a.scale + b.scale);
        break;
    case BinaryOperator::Divide: {
        const int fraction = std::max(kLeastScale, a.scale + b.precision + 1);
        result = ReducedDecimal(a.precision - a.scale + b.scale + fraction, fraction);
        break;
    }
    default:
        result = ReducedDecimal(std::min(a.precision - a.scale, b.precision - b.scale) + scale, scale);
        break;
    }
    result.id = left.id == Numeric || right.id == Numeric ? Numeric : TypeId::Decimal;
    return result;
}

/// char + char, binary + binary.
Type ConcatenationType(const Type& left, const Type& right) {
    const Type common = CommonType(left, right);
    if (common.length == kMaxLength) {
        return common;
    }
    const std::int32_t most = IsUnicode(common.id) ? 4000 : 8000;
    return Sized(common.id, std::min(most, left.length + right.length));
}

Type BitOperatorType(BinaryOperator op, const Type& left, const Type& right) {
    const auto whole = [](const Type& t) { return IsInteger(t.id) || t.id == Bit; };
    const auto bytes = [](const Type& t) { return t.id == Binary || t.id == VarBinary; };
    if (!(whole(left) || bytes(left)) || !(whole(right) || bytes(right)) || (bytes(left) && bytes(right))) {
        Incompatible(op, left, right);
    }
    return CommonType(left, right);
}

Type DateOperatorType(BinaryOperator op, const Type& common) {
    if ((op != BinaryOperator::Add && op != BinaryOperator::Subtract) || common.id == TypeId::Date) {
        InvalidOperand(common, OperatorWord(op));
    }
    return common;
}

Type ArithmeticType(BinaryOperator op, const Type& left, const Type& right) {
    const Type common = CommonType(left, right);
    if (IsDateTime(common.id)) {
        return DateOperatorType(op, common);
    }
    if (!IsNumber(common.id)) {
        InvalidOperand(common, OperatorWord(op));
    }
    if (common.id == Bit || (op == BinaryOperator::Modulo && IsApproximate(common.id))) {
        Incompatible(op, left, right);
    }
    if (!IsDecimal(common.id)) {
        return common;
    }
    // A text or binary beside a decimal is read as a decimal of the same kind.
    return DecimalOperatorType(op, IsNumber(left.id) ? left : right, IsNumber(right.id) ? right : left);
}

} // namespace

std::string_view OperatorWord(BinaryOperator op) {
    constexpr std::array<std::string_view, 8> words = {"add",    "subtract", "multiply", "divide",
                                                       "modulo", "'&'",      "'|'",      "'^'"};
    return words.at(static_cast<std::size_t>(op));
}

Type AsDecimalType(const Type& type) {
    switch (type.id) {
    case TypeId::Decimal:
    case Numeric:
        return type;
    case Int:
        return DecimalType(type.precision != 0 ? type.precision : 10, 0);
    default: {
        const SystemType& row = SystemTypeOf(type.id);
        return DecimalType(row.precision, row.scale);
    }
    }
}

Type ReducedDecimal(int precision, int scale) {
    if (precision <= kMaxPrecision) {
        return DecimalType(precision, scale);
    }
    const int room = kMaxPrecision - (precision - scale);
    return DecimalType(kMaxPrecision, std::max(std::min(scale, room), std::min(scale, kLeastScale)));
}

Type OperatorType(BinaryOperator op, const Type& left_type, const Type& right_type) {
    if (IsUntypedNull(left_type) && IsUntypedNull(right_type)) {
        return Simple(Int);
    }
    const Type& left = IsUntypedNull(left_type) ? right_type : left_type;
    const Type& right = IsUntypedNull(right_type) ? left_type : right_type;
    if (IsOldLob(left.id) || IsOldLob(right.id)) {
        Incompatible(op, left, right);
    }
    if (IsBitOperator(op)) {
        return BitOperatorType(op, left, right);
    }
    if (op == BinaryOperator::Add) {
        const bool text = IsCharacter(left.id) && IsCharacter(right.id);
        const bool bytes =
            HasLength(left.id) && HasLength(right.id) && IsBinary(left.id) && IsBinary(right.id);
        if (text || bytes) {
            return ConcatenationType(left, right);
        }
        if ((IsCharacter(left.id) && IsBinary(right.id)) || (IsBinary(left.id) && IsCharacter(right.id))) {
            Incompatible(op, left, right);
        }
    }
    return ArithmeticType(op, left, right);
}

Type OperatorType(UnaryOperator op, const Type& operand) {
    if (IsUntypedNull(operand)) {
        return Simple(Int);
    }
    switch (op) {
    case UnaryOperator::Plus:
        return operand;
    case UnaryOperator::Minus:
        if (!IsNumber(operand.id) || operand.id == Bit) {
            InvalidOperand(operand, "minus");
        }
        return operand.id == TinyInt ? Simple(SmallInt) : operand;
    default:
        if (!IsInteger(operand.id) && operand.id != Bit) {
            InvalidOperand(operand, "'~'");
        }
        return Settled(operand);
    }
}

Type SumType(const Type& type) {
    if (!IsNumber(type.id) || type.id == Bit) {
        InvalidOperand(type, "sum");
    }
    if (IsDecimal(type.id)) {
        return DecimalType(kMaxPrecision, type.scale, type.id);
    }
    return Simple(IsMoney(type.id)         ? Money
                  : IsApproximate(type.id) ? Float
                  : type.id == BigInt      ? BigInt
                                           : Int);
}

Type AverageType(const Type& type) {
    if (IsDecimal(type.id)) {
        return DecimalType(kMaxPrecision, std::max<int>(type.scale, kLeastScale), type.id);
    }
    if (!IsNumber(type.id) || type.id == Bit) {
        InvalidOperand(type, "avg");
    }
    return SumType(type);
}

Type ExtremeType(const Type& type, std::string_view function) {
    if (type.id == Bit || IsOldLob(type.id)) {
        InvalidOperand(type, function);
    }
    return Settled(type);
}

} // namespace devsql
