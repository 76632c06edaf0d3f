// String functions that cut, join and repeat. Positions and lengths count UTF-16 units.
#include <algorithm>
#include <cmath>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

constexpr std::int32_t kInvalidLeftLength = 537;
constexpr std::int32_t kInvalidLength = 536;

Type TextOfFirst(Types types) {
    return TextTypeOf(types[0]);
}

Type WideTextOfFirst(Types types) {
    return WideTextTypeOf(types[0]);
}

/// int, or bigint of a (max) type.
Type LengthType(Types types) {
    return Simple(types[0].length == kMaxLength && HasLength(types[0].id) ? TypeId::BigInt : TypeId::Int);
}

std::size_t CountOf(std::int64_t number) {
    return static_cast<std::size_t>(number);
}

Value Len(Values values, Types types) {
    if (const auto* bytes = std::get_if<Bytes>(&values[0])) {
        return std::ssize(bytes->data);
    }
    const std::string text = TextOf(values[0], types[0]);
    return static_cast<std::int64_t>(TextLength(TrimTrailingBlanks(text)));
}

Value DataLength(Values values, Types types) {
    if (const auto* text = std::get_if<std::string>(&values[0])) {
        return static_cast<std::int64_t>(TextLength(*text)) * (IsUnicode(types[0].id) ? 2 : 1);
    }
    if (const auto* bytes = std::get_if<Bytes>(&values[0])) {
        return std::ssize(bytes->data);
    }
    return std::int64_t{StorageBytes(types[0])};
}

Value Left(Values values, Types types) {
    const std::int64_t count = IntOf(values[1], types[1]);
    if (count < 0) {
        RaiseError(kInvalidLeftLength);
    }
    return SubText(TextOf(values[0], types[0]), 0, CountOf(count));
}

Value Right(Values values, Types types) {
    const std::int64_t count = IntOf(values[1], types[1]);
    if (count < 0) {
        RaiseError(kInvalidLength, {"right"});
    }
    const std::string text = TextOf(values[0], types[0]);
    const std::size_t length = TextLength(text);
    return SubText(text, length - std::min(length, CountOf(count)));
}

Type SubstringType(Types types) {
    if (IsBinary(types[0].id)) {
        return Sized(TypeId::VarBinary, types[0].id == TypeId::Image ? kMaxLength : StorageBytes(types[0]));
    }
    return TextTypeOf(types[0]);
}

Value Substring(Values values, Types types) {
    const std::int64_t start = IntOf(values[1], types[1]);
    const std::int64_t count = IntOf(values[2], types[2]);
    if (count < 0) {
        RaiseError(kInvalidLeftLength);
    }
    // Positions before the first character count, but no character is there.
    const std::int64_t first = std::max<std::int64_t>(start, 1);
    const std::size_t room = CountOf(std::max<std::int64_t>(0, start + count - first));
    if (const auto* bytes = std::get_if<Bytes>(&values[0])) {
        const std::size_t from = std::min(CountOf(first - 1), bytes->data.size());
        return Bytes{bytes->data.substr(from, room)};
    }
    return SubText(TextOf(values[0], types[0]), CountOf(first - 1), room);
}

Value Upper(Values values, Types types) {
    return ToUpper(TextOf(values[0], types[0]));
}

Value Lower(Values values, Types types) {
    return ToLower(TextOf(values[0], types[0]));
}

std::string WithoutLeadingBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first);
}

Value LTrim(Values values, Types types) {
    return WithoutLeadingBlanks(TextOf(values[0], types[0]));
}

Value RTrim(Values values, Types types) {
    return std::string(TrimTrailingBlanks(TextOf(values[0], types[0])));
}

Value Trim(Values values, Types types) {
    return std::string(TrimTrailingBlanks(WithoutLeadingBlanks(TextOf(values[0], types[0]))));
}

Value Replicate(Values values, Types types) {
    const std::int64_t count = IntOf(values[1], types[1]);
    if (count < 0) {
        return {};
    }
    const std::string text = TextOf(values[0], types[0]);
    const Type type = WideTextOfFirst(types);
    std::size_t times = CountOf(count);
    if (text.empty()) {
        return text;
    }
    if (type.length != kMaxLength) {
        times = std::min(times, CountOf(type.length) / TextLength(text) + 1);
    } else {
        RequireRoom(text.size() * times);
    }
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        result += text;
    }
    return FitText(std::move(result), type);
}

Value Space(Values values, Types types) {
    const std::int64_t count = IntOf(values[0], types[0]);
    constexpr std::int64_t most = 8000;
    return count < 0 ? Value{} : Value(std::string(CountOf(std::min(count, most)), ' '));
}

Value Reverse(Values values, Types types) {
    std::u16string units = ToUtf16(TextOf(values[0], types[0]));
    std::reverse(units.begin(), units.end());
    return FromUtf16(units);
}

Type StuffType(Types types) {
    return CommonType(WideTextTypeOf(types[0]), WideTextTypeOf(types[3]));
}

Value Stuff(Values values, Types types) {
    if (IsNull(values[0]) || IsNull(values[1]) || IsNull(values[2])) {
        return {};
    }
    const std::u16string text = ToUtf16(TextOf(values[0], types[0]));
    const std::int64_t start = IntOf(values[1], types[1]);
    const std::int64_t count = IntOf(values[2], types[2]);
    if (start < 1 || start > std::ssize(text) || count < 0) {
        return {};
    }
    // Where the text to insert is NULL, nothing is inserted.
    const std::u16string insert = IsNull(values[3]) ? std::u16string() : ToUtf16(TextOf(values[3], types[3]));
    RequireRoom(text.size() + insert.size());
    const std::size_t first = CountOf(start - 1);
    const std::size_t rest = std::min(text.size(), first + CountOf(count));
    return FitText(FromUtf16(text.substr(0, first) + insert + text.substr(rest)), StuffType(types));
}

Type ConcatType(Types types) {
    bool unicode = false;
    bool longest = false;
    std::int64_t length = 0;
    for (const Type& type : types) {
        const Type text = TextTypeOf(type);
        unicode = unicode || IsUnicode(text.id);
        longest = longest || text.length == kMaxLength;
        length += text.length;
    }
    const std::int64_t most = unicode ? 4000 : 8000;
    return Sized(unicode ? TypeId::NVarChar : TypeId::VarChar,
                 longest ? kMaxLength : static_cast<std::int32_t>(std::min(length, most)));
}

Value Concat(Values values, Types types) {
    std::string result;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!IsNull(values[i])) {
            result = Concatenate(result, TextOf(values[i], types[i]));
        }
    }
    return FitText(std::move(result), ConcatType(types));
}

Value Str(Values values, Types types) {
    const double number = FloatOf(values[0], types[0]);
    const std::int64_t length = values.size() > 1 ? IntOf(values[1], types[1]) : 10;
    const std::int64_t asked = values.size() > 2 ? IntOf(values[2], types[2]) : 0;
    constexpr std::int64_t most_length = 8000;
    constexpr std::int64_t most_digits = 16;
    if (length < 1 || length > most_length || asked < 0) {
        return {};
    }
    const std::size_t room = CountOf(length);
    std::string text = FixedText(number, static_cast<int>(std::min(asked, most_digits)));
    if (text.size() > room) {
        // Digits after the point are rounded away before the number is replaced by stars.
        const std::size_t whole = FixedText(std::trunc(number), 0).size();
        const int fits = whole + 1 < room ? static_cast<int>(room - whole - 1) : 0;
        text = FixedText(number, fits);
    }
    return text.size() > room ? std::string(room, '*') : std::string(room - text.size(), ' ') + text;
}

constexpr ScalarFunction kFunctions[] = {
    {"LEN", 1, 1, LengthType, NullIfAnyNull<Len>},
    {"DATALENGTH", 1, 1, LengthType, NullIfAnyNull<DataLength>, true},
    {"LEFT", 2, 2, TextOfFirst, NullIfAnyNull<Left>},
    {"RIGHT", 2, 2, TextOfFirst, NullIfAnyNull<Right>},
    {"SUBSTRING", 3, 3, SubstringType, NullIfAnyNull<Substring>, true},
    {"UPPER", 1, 1, TextOfFirst, NullIfAnyNull<Upper>},
    {"LOWER", 1, 1, TextOfFirst, NullIfAnyNull<Lower>},
    {"LTRIM", 1, 1, TextOfFirst, NullIfAnyNull<LTrim>},
    {"RTRIM", 1, 1, TextOfFirst, NullIfAnyNull<RTrim>},
    {"TRIM", 1, 1, TextOfFirst, NullIfAnyNull<Trim>},
    {"REPLICATE", 2, 2, WideTextOfFirst, NullIfAnyNull<Replicate>},
    {"SPACE", 1, 1, Always<TypeId::VarChar, 8000>, NullIfAnyNull<Space>},
    {"REVERSE", 1, 1, TextOfFirst, NullIfAnyNull<Reverse>},
    {"STUFF", 4, 4, StuffType, Stuff},
    {"CONCAT", 2, kAnyNumber, ConcatType, Concat},
    {"STR", 1, 3, Always<TypeId::VarChar, 8000>, NullIfAnyNull<Str>},
};

} // namespace

std::span<const ScalarFunction> StringFunctions() {
    return kFunctions;
}

} // namespace devsql
