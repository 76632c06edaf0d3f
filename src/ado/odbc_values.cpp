#include "ado/odbc_values.h"

#include <cstdio>
#include <utility>

namespace ado {
namespace {

namespace odbc = platform::odbc;

struct ToVariant {
    odbc::SqlType type;

    Variant operator()(std::monostate) const { return Null(); }
    Variant operator()(bool value) const { return value; }
    Variant operator()(std::int64_t value) const { return value; }
    Variant operator()(double value) const {
        return type == odbc::SqlType::Real ? Variant(static_cast<float>(value)) : Variant(value);
    }
    Variant operator()(std::string& value) const {
        return IsExact(type) ? Variant(Decimal{std::move(value)}) : Variant(std::move(value));
    }
    Variant operator()(odbc::Bytes& value) const { return std::move(value); }
    Variant operator()(const odbc::Timestamp& value) const { return value; }
    Variant operator()(const odbc::Guid& value) const { return TextOf(value); }
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

bool IsExact(odbc::SqlType type) {
    return type == odbc::SqlType::Decimal || type == odbc::SqlType::Numeric;
}

std::string TextOf(const odbc::Guid& guid) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.data1,
                  unsigned{guid.data2}, unsigned{guid.data3}, unsigned{guid.data4[0]},
                  unsigned{guid.data4[1]}, unsigned{guid.data4[2]}, unsigned{guid.data4[3]},
                  unsigned{guid.data4[4]}, unsigned{guid.data4[5]}, unsigned{guid.data4[6]},
                  unsigned{guid.data4[7]});
    return text;
}

Variant VariantOf(odbc::SqlType type, odbc::Value& value) {
    return std::visit(ToVariant{type}, value);
}

odbc::Value OdbcValueOf(const Variant& value) {
    return std::visit(ToOdbc{}, value.Get());
}

} // namespace ado
