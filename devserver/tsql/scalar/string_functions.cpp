// String functions. Positions and lengths count UTF-16 units.
#include <algorithm>
#include <cmath>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/like.h"
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
    RaiseIf(count < 0, kInvalidLeftLength);
    return SubText(TextOf(values[0], types[0]), 0, CountOf(count));
}

Value Right(Values values, Types types) {
    const std::int64_t count = IntOf(values[1], types[1]);
    RaiseIf(count < 0, kInvalidLength, {"right"});
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
    RaiseIf(count < 0, kInvalidLeftLength);
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

template <bool Left, bool Right>
Value Trim(Values values, Types types) {
    const std::string text = TextOf(values[0], types[0]);
    const std::string rest = Left ? text.substr(std::min(text.find_first_not_of(' '), text.size())) : text;
    return Right ? std::string(TrimTrailingBlanks(rest)) : rest;
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

// ------------------------------------------------------------------ looking for something

/// The units in lower case, so that letters are found whatever their case.
std::u16string Folded(const std::string& text) {
    std::u16string units = ToUtf16(text);
    for (char16_t& unit : units) {
        unit = static_cast<char16_t>(ToLower(static_cast<char32_t>(unit)));
    }
    return units;
}

Value CharIndex(Values values, Types types) {
    const std::u16string what = Folded(TextOf(values[0], types[0]));
    const std::u16string text = Folded(TextOf(values[1], types[1]));
    const std::int64_t start = values.size() > 2 ? IntOf(values[2], types[2]) : 1;
    const auto from = static_cast<std::size_t>(std::max<std::int64_t>(start, 1) - 1);
    if (what.empty()) {
        return std::int64_t{0};
    }
    const std::size_t found = text.find(what, from);
    return found == std::u16string::npos ? std::int64_t{0} : static_cast<std::int64_t>(found) + 1;
}

Value PatIndexOf(Values values, Types types) {
    return PatIndex(TextOf(values[0], types[0]), TextOf(values[1], types[1]));
}

Type ReplaceType(Types types) {
    Type type = WideTextTypeOf(types[0]);
    for (const Type& other : types.subspan(1)) {
        type = CommonType(type, WideTextTypeOf(other));
    }
    return type;
}

Value Replace(Values values, Types types) {
    const std::string text = TextOf(values[0], types[0]);
    const std::u16string units = ToUtf16(text);
    const std::u16string folded = Folded(text);
    const std::u16string what = Folded(TextOf(values[1], types[1]));
    const std::u16string with = ToUtf16(TextOf(values[2], types[2]));
    if (what.empty()) {
        return text;
    }
    std::size_t count = 0;
    for (std::size_t at = 0; (at = folded.find(what, at)) != std::u16string::npos; at += what.size()) {
        ++count;
    }
    RequireRoom(units.size() - count * what.size() + count * with.size());
    std::u16string result;
    std::size_t at = 0;
    for (std::size_t found = 0; (found = folded.find(what, at)) != std::u16string::npos;
         at = found + what.size()) {
        result.append(units, at, found - at).append(with);
    }
    return FitText(FromUtf16(result + units.substr(at)), ReplaceType(types));
}

Value QuoteName(Values values, Types types) {
    // For each mark that may be given, the marks at the same place of the other two open and close the name.
    constexpr std::string_view kGiven = "[]'\"()<>{}`";
    constexpr std::string_view kOpening = "[['\"((<<{{`";
    constexpr std::string_view kClosing = "]]'\"))>>}}`";
    const std::string name = TextOf(values[0], types[0]);
    const std::string mark = values.size() > 1 ? TextOf(values[1], types[1]) : "[";
    constexpr std::size_t most = 128;
    const std::size_t found = mark.empty() ? std::string_view::npos : kGiven.find(mark[0]);
    if (TextLength(name) > most || found == std::string_view::npos) {
        return {};
    }
    std::string quoted(1, kOpening[found]);
    for (const char c : name) {
        quoted.append(c == kClosing[found] ? 2 : 1, c);
    }
    return quoted + kClosing[found];
}

// ------------------------------------------------------------------ single characters

Value Char(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 255) {
        return {};
    }
    return FromCodePage1252(std::string(1, static_cast<char>(code)));
}

Value Ascii(Values values, Types types) {
    const std::string bytes = ToCodePage1252(TextOf(values[0], types[0]));
    return bytes.empty() ? Value{} : Value(std::int64_t{static_cast<unsigned char>(bytes.front())});
}

Value NChar(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 0xFFFF) {
        return {};
    }
    std::string text;
    AppendUtf8(text, static_cast<char32_t>(code));
    return text;
}

Value Unicode(Values values, Types types) {
    const std::u16string units = ToUtf16(TextOf(values[0], types[0]));
    return units.empty() ? Value{} : Value(std::int64_t{units.front()});
}

constexpr ScalarFunction kFunctions[] = {
    {"LEN", 1, 1, LengthType, NullIfAnyNull<Len>},
    {"DATALENGTH", 1, 1, LengthType, NullIfAnyNull<DataLength>, true},
    {"LEFT", 2, 2, TextOfFirst, NullIfAnyNull<Left>},
    {"RIGHT", 2, 2, TextOfFirst, NullIfAnyNull<Right>},
    {"SUBSTRING", 3, 3, SubstringType, NullIfAnyNull<Substring>, true},
    {"UPPER", 1, 1, TextOfFirst, NullIfAnyNull<Upper>},
    {"LOWER", 1, 1, TextOfFirst, NullIfAnyNull<Lower>},
    {"LTRIM", 1, 1, TextOfFirst, NullIfAnyNull<Trim<true, false>>},
    {"RTRIM", 1, 1, TextOfFirst, NullIfAnyNull<Trim<false, true>>},
    {"TRIM", 1, 1, TextOfFirst, NullIfAnyNull<Trim<true, true>>},
    {"REPLICATE", 2, 2, WideTextOfFirst, NullIfAnyNull<Replicate>},
    {"SPACE", 1, 1, Always<TypeId::VarChar, 8000>, NullIfAnyNull<Space>},
    {"REVERSE", 1, 1, TextOfFirst, NullIfAnyNull<Reverse>},
    {"STUFF", 4, 4, StuffType, Stuff},
    {"CONCAT", 2, kAnyNumber, ConcatType, Concat},
    {"STR", 1, 3, Always<TypeId::VarChar, 8000>, NullIfAnyNull<Str>},
    {"CHARINDEX", 2, 3, Always<TypeId::Int>, NullIfAnyNull<CharIndex>, true},
    {"PATINDEX", 2, 2, Always<TypeId::Int>, NullIfAnyNull<PatIndexOf>, true},
    {"REPLACE", 3, 3, ReplaceType, NullIfAnyNull<Replace>},
    {"QUOTENAME", 1, 2, Always<TypeId::NVarChar, 258>, NullIfAnyNull<QuoteName>},
    {"CHAR", 1, 1, Always<TypeId::Char, 1>, NullIfAnyNull<Char>},
    {"ASCII", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Ascii>},
    {"NCHAR", 1, 1, Always<TypeId::NChar, 1>, NullIfAnyNull<NChar>},
    {"UNICODE", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Unicode>},
};

} // namespace

std::span<const ScalarFunction> StringFunctions() {
    return kFunctions;
}

} // namespace devsql
