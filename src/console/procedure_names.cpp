// The names of parameter types and directions, as the dialog shows them.
#include <array>

#include "console/procedures_form.h"

namespace kv {
namespace {

/// A number of ADO (DataTypeEnum or ParameterDirectionEnum) and the name that is shown for it.
struct Named {
    std::int32_t number;
    const char* name;
};

constexpr std::array kDirections = {Named{1, "Input"}, Named{2, "Output"}, Named{3, "Input/Output"},
                                    Named{4, "Return value"}};

constexpr std::array kDataTypes = {
    Named{0, "Empty"},
    Named{2, "SmallInt"},
    Named{3, "Integer"},
    Named{4, "Single"},
    Named{5, "Double"},
    Named{6, "Currency"},
    Named{7, "Date"},
    Named{8, "BSTR"},
    Named{9, "IDispatch"},
    Named{10, "Error"},
    Named{11, "Boolean"},
    Named{12, "Variant"},
    Named{13, "IUnknown"},
    Named{14, "Decimal"},
    Named{16, "TinyInt"},
    Named{17, "UnsignedTinyInt"},
    Named{18, "UnsignedSmallInt"},
    Named{19, "UnsignedInt"},
    Named{20, "BigInt"},
    Named{21, "UnsignedBigInt"},
    Named{64, "FileTime"},
    Named{72, "GUID"},
    Named{128, "Binary"},
    Named{129, "Char"},
    Named{130, "WChar"},
    Named{131, "Numeric"},
    Named{132, "UserDefined"},
    Named{133, "DBDate"},
    Named{134, "DBTime"},
    Named{135, "DBTimeStamp"},
    Named{136, "Chapter"},
    Named{138, "PropVariant"},
    Named{139, "VarNumeric"},
    Named{200, "VarChar"},
    Named{201, "LongVarChar"},
    Named{202, "VarWChar"},
    Named{203, "LongVarWChar"},
    Named{204, "VarBinary"},
    Named{205, "LongVarBinary"},
    Named{8192, "Array"},
};

template <class Table>
std::string NameOf(const Table& table, std::int32_t number) {
    for (const Named& row : table) {
        if (row.number == number) {
            return row.name;
        }
    }
    return "Unknown";
}

} // namespace

std::string GetDataTypeName(std::int32_t lngType) {
    return NameOf(kDataTypes, lngType);
}

std::string GetDirectionName(std::int32_t lngDirection) {
    return NameOf(kDirections, lngDirection);
}

} // namespace kv
