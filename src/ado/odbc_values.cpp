// Converts each kind of value; decimals and singles are recognised by the column's type.
#include "ado/odbc_values.h"

#include <utility>

#include "odbc/value_text.h"

namespace ado {
namespace {

struct ToVariant {
    odbc::SqlType type; ///< of the column

    Variant operator()(std::monostate) const { return Null(); }
    Variant operator()(bool value) const { return value; }
    Variant operator()(std::int64_t value) const { return value; }
    Variant operator()(double value) const {
        return type == odbc::SqlType::Real ? Variant(static_cast<float>(value)) : Variant(value);
    }
    Variant operator()(std::string& value) const {
        return IsExactNumber(type) ? Variant(Decimal{std::move(value)}) : Variant(std::move(value));
    }
    Variant operator()(odbc::Bytes& value) const { return std::move(value); }
    Variant operator()(const odbc::Timestamp& value) const { return value; }
    Variant operator()(const odbc::Guid& value) const { return GuidText(value); }
};

struct ToOdbc {
    odbc::Value operator()(std::monostate) const { return {}; }
    odbc::Value operator()(Null) const { return {}; }
    odbc::Value operator()(float value) const { return double{value}; }
    odbc::Value operator()(const Decimal& value) const { return value.digits; }
    template <class Same>
    odbc::Value operator()(const Same& value) const {
        return value;
    }
};

} // namespace

bool IsExactNumber(odbc::SqlType type) {
    return type == odbc::SqlType::Decimal || type == odbc::SqlType::Numeric;
}

std::string GuidText(const odbc::Guid& guid) {
    return "{" + odbc::TextOf(guid) + "}";
}

Variant VariantOf(odbc::SqlType type, odbc::Value& value) {
    return std::visit(ToVariant{type}, value);
}

odbc::Value OdbcValueOf(const Variant& value) {
    return std::visit(ToOdbc{}, value.Get());
}

} // namespace ado
