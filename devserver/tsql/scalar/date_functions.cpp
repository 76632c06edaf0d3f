// Date functions. The word for a date part comes as a text in the first argument.
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

DatePart PartOf(Values values, std::string_view function) {
    const auto* word = std::get_if<std::string>(&values[0]);
    const auto part = word == nullptr ? std::nullopt : FindDatePart(*word);
    if (!part) {
        Raise(155, {word == nullptr ? std::string_view() : *word, function});
    }
    return *part;
}

/// A smalldatetime stays one; everything else is read as a datetime.
Type DateAddType(Types types) {
    return Simple(types[2].id == TypeId::SmallDateTime ? TypeId::SmallDateTime : TypeId::DateTime);
}

Value DateAdd(Values values, Types types) {
    const DatePart part = PartOf(values, "dateadd");
    if (AnyNull(values)) {
        return {};
    }
    const Type type = DateAddType(types);
    const auto sum = AddDatePart(part, IntOf(values[1], types[1]), DateOf(values[2], types[2]));
    const auto result = sum && type.id == TypeId::SmallDateTime ? ToSmallDateTime(*sum) : sum;
    if (!result) {
        Raise(517, {TypeName(type.id)});
    }
    return *result;
}

Value DateDiff(Values values, Types types) {
    const DatePart part = PartOf(values, "datediff");
    if (AnyNull(values)) {
        return {};
    }
    const std::int64_t count = CountDateParts(part, DateOf(values[1], types[1]), DateOf(values[2], types[2]));
    if (count > INT32_MAX || count < INT32_MIN) {
        Raise(535, {"datediff"});
    }
    return count;
}

Value DatePartOf(Values values, Types types) {
    const DatePart part = PartOf(values, "datepart");
    if (AnyNull(values)) {
        return {};
    }
    return std::int64_t{GetDatePart(part, DateOf(values[1], types[1]))};
}

Value DateName(Values values, Types types) {
    const DatePart part = PartOf(values, "datename");
    if (AnyNull(values)) {
        return {};
    }
    const DateTime date = DateOf(values[1], types[1]);
    if (part == DatePart::Month) {
        return std::string(MonthName(GetDatePart(part, date)));
    }
    if (part == DatePart::Weekday) {
        return std::string(WeekdayName(DayOfWeek(date.days)));
    }
    return std::to_string(GetDatePart(part, date));
}

template <DatePart Part>
Value PartOfDate(Values values, Types types) {
    return std::int64_t{GetDatePart(Part, DateOf(values[0], types[0]))};
}

Value IsDate(Values values, Types types) {
    if (IsNull(values[0]) || IsDateTime(types[0].id)) {
        return std::int64_t{!IsNull(values[0])};
    }
    const Type text = Sized(TypeId::VarChar, kMaxLength);
    try {
        Convert(TextOf(values[0], types[0]), text, Simple(TypeId::DateTime));
        return std::int64_t{1};
    } catch (const SqlError&) {
        return std::int64_t{0};
    }
}

constexpr ScalarFunction kFunctions[] = {
    {"DATEADD", 3, 3, DateAddType, DateAdd},
    {"DATEDIFF", 3, 3, Always<TypeId::Int>, DateDiff},
    {"DATEPART", 2, 2, Always<TypeId::Int>, DatePartOf},
    {"DATENAME", 2, 2, Always<TypeId::NVarChar, 30>, DateName},
    {"YEAR", 1, 1, Always<TypeId::Int>, NullIfAnyNull<PartOfDate<DatePart::Year>>},
    {"MONTH", 1, 1, Always<TypeId::Int>, NullIfAnyNull<PartOfDate<DatePart::Month>>},
    {"DAY", 1, 1, Always<TypeId::Int>, NullIfAnyNull<PartOfDate<DatePart::Day>>},
    {"ISDATE", 1, 1, Always<TypeId::Int>, IsDate},
};

} // namespace

std::span<const ScalarFunction> DateFunctions() {
    return kFunctions;
}

} // namespace devsql
