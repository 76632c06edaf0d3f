// Date functions. The word for a date part comes as a text in the first argument.
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/date_parser.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

DatePart PartOf(Values values, std::string_view function) {
    const auto* word = std::get_if<std::string>(&values[0]);
    const std::string_view name = word == nullptr ? std::string_view() : *word; // no part has an empty name
    const auto part = FindDatePart(name);
    const bool counted = function == "dateadd" || function == "datediff";
    if (!part || (counted && part == DatePart::IsoWeek)) {
        RaiseError(155, {name, function});
    }
    return *part;
}

/// A smalldatetime and a date keep their type; everything else is converted to datetime.
Type DateAddType(Types types) {
    return Simple(types[2].id == TypeId::SmallDateTime || types[2].id == TypeId::Date ? types[2].id
                                                                                      : TypeId::DateTime);
}

Value DateAdd(Values values, Types types) {
    const DatePart part = PartOf(values, "dateadd");
    if (AnyNull(values)) {
        return {};
    }
    const Type type = DateAddType(types);
    if (type.id == TypeId::Date && part >= DatePart::Hour) {
        RaiseError(9810, {std::get<std::string>(values[0]), "dateadd", TypeName(type.id)});
    }
    const auto sum = AddDatePart(part, IntOf(values[1], types[1]), DateOf(values[2], types[2]));
    const auto result = sum && type.id == TypeId::SmallDateTime ? ToSmallDateTime(*sum) : sum;
    if (!result) {
        RaiseError(517, {TypeName(type.id)});
    }
    return *result;
}

Value DateDiff(Values values, Types types) {
    const DatePart part = PartOf(values, "datediff");
    if (AnyNull(values)) {
        return {};
    }
    const std::int64_t count = CountDateParts(part, DateOf(values[1], types[1]), DateOf(values[2], types[2]));
    RaiseIf(count > INT32_MAX || count < INT32_MIN, 535, {"datediff"});
    return count;
}

Value DatePartOf(Values values, Types types) {
    const DatePart part = PartOf(values, "datepart");
    if (AnyNull(values)) {
        return {};
    }
    return std::int64_t{GetDatePart(part, DateOf(values[1], types[1]), CurrentDateSettings().first_day)};
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
    return std::to_string(GetDatePart(part, date, CurrentDateSettings().first_day));
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

Value EndOfMonth(Values values, Types types) {
    if (IsNull(values[0])) {
        return {};
    }
    const std::int64_t months = values.size() > 1 && !IsNull(values[1]) ? IntOf(values[1], types[1]) : 0;
    const auto moved = AddDatePart(DatePart::Month, months, DateOf(values[0], types[0]));
    if (!moved) {
        RaiseError(517, {TypeName(TypeId::Date)});
    }
    const CivilTime civil = ToCivil(*moved);
    return DateTime{DaysFromCivil(civil.year, civil.month, DaysInMonth(civil.year, civil.month)), 0};
}

/// DATEFROMPARTS, DATETIMEFROMPARTS: numbers that make no date are error 289.
Value FromParts(Values values, Types types) {
    std::int32_t parts[] = {1900, 1, 1, 0, 0, 0, 0};
    constexpr std::int32_t kLeast[] = {1753, 1, 1, 0, 0, 0, 0};
    std::int32_t most[] = {9999, 12, 31, 23, 59, 59, 999};
    for (std::size_t i = 0; i < values.size(); ++i) {
        parts[i] = static_cast<std::int32_t>(IntOf(values[i], types[i]));
        most[2] = i == 2 ? DaysInMonth(parts[0], parts[1]) : most[2];
        if (parts[i] < kLeast[i] || parts[i] > most[i]) {
            RaiseError(289, {values.size() == 3 ? "date" : "datetime"});
        }
    }
    const DateTime second =
        FromCivil({parts[0], parts[1], parts[2], parts[3], parts[4], parts[5], 0}); // .999 is the next second
    const auto result = AddDatePart(DatePart::Millisecond, parts[6], second);
    return result ? Value(*result) : Value();
}

constexpr ScalarFunction kFunctions[] = {
    {"EOMONTH", 1, 2, Always<TypeId::Date>, EndOfMonth},
    {"DATEFROMPARTS", 3, 3, Always<TypeId::Date>, NullIfAnyNull<FromParts>},
    {"DATETIMEFROMPARTS", 7, 7, Always<TypeId::DateTime>, NullIfAnyNull<FromParts>},
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
