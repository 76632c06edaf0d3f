// Names, declarations, precedence and result types.
#include <gtest/gtest.h>

#include <set>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

const Type kInt = Simple(TypeId::Int);
const Type kFloat = Simple(TypeId::Float);
const Type kMoney = Simple(TypeId::Money);
const Type kDateTime = Simple(TypeId::DateTime);

TEST(SystemTypeTable, IsInTheOrderOfTheIds) {
    std::set<int> xtypes;
    for (const SystemType& row : SystemTypes()) {
        EXPECT_EQ(SystemTypeOf(row.id).name, row.name);
        EXPECT_TRUE(xtypes.insert(row.xtype).second) << row.name;
        EXPECT_EQ(FindTypeId(row.name), row.id);
    }
    EXPECT_EQ(SystemTypes().size(), 25U);
    EXPECT_EQ(SystemTypeOf(TypeId::NVarChar).xtype, 231);
    EXPECT_EQ(SystemTypeOf(TypeId::DateTime).xtype, 61);
    EXPECT_EQ(SystemTypeOf(TypeId::Int).odbc_type, 4);
}

TEST(TypeNames, HaveSynonyms) {
    EXPECT_EQ(FindTypeId("INTEGER"), TypeId::Int);
    EXPECT_EQ(FindTypeId("dec"), TypeId::Decimal);
    EXPECT_EQ(FindTypeId("national character varying"), TypeId::NVarChar);
    EXPECT_EQ(FindTypeId("rowversion"), TypeId::Timestamp);
    EXPECT_EQ(FindTypeId("double precision"), TypeId::Float);
    EXPECT_EQ(FindTypeId("blob"), std::nullopt);
}

TEST(TypeNames, InFullIncludeTheDeclaredSize) {
    EXPECT_EQ(FullTypeName(DecimalType(18, 2)), "decimal(18,2)");
    EXPECT_EQ(FullTypeName(Sized(TypeId::VarChar, 30)), "varchar(30)");
    EXPECT_EQ(FullTypeName(Sized(TypeId::VarBinary, kMaxLength)), "varbinary(max)");
    EXPECT_EQ(FullTypeName(kInt), "int");
    EXPECT_EQ(FullTypeName(Simple(TypeId::Text)), "text");
}

TEST(Sizes, FollowFromTheDeclaration) {
    EXPECT_EQ(StorageBytes(DecimalType(9, 0)), 5);
    EXPECT_EQ(StorageBytes(DecimalType(19, 0)), 9);
    EXPECT_EQ(StorageBytes(DecimalType(28, 0)), 13);
    EXPECT_EQ(StorageBytes(DecimalType(38, 0)), 17);
    EXPECT_EQ(StorageBytes(Sized(TypeId::NVarChar, 10)), 20);
    EXPECT_EQ(StorageBytes(Sized(TypeId::VarChar, kMaxLength)), -1);
    EXPECT_EQ(StorageBytes(kDateTime), 8);
    EXPECT_EQ(TypePrecision(Sized(TypeId::NVarChar, 10)), 10);
    EXPECT_EQ(TypePrecision(kMoney), 19);
    EXPECT_EQ(TypeScale(kMoney), 4);
    EXPECT_EQ(TypeScale(kFloat), std::nullopt);
}

std::string Declared(TypeId id, std::optional<std::int64_t> first = {},
                     std::optional<std::int64_t> second = {}, bool max = false) {
    return Outcome([&] { return FullTypeName(DeclaredType(id, first, second, max, 1)); });
}

TEST(Declarations, HaveDefaults) {
    EXPECT_EQ(Declared(TypeId::VarChar), "varchar(1)");
    EXPECT_EQ(FullTypeName(DeclaredType(TypeId::VarChar, {}, {}, false, 30)), "varchar(30)");
    EXPECT_EQ(Declared(TypeId::Decimal), "decimal(18,0)");
    EXPECT_EQ(Declared(TypeId::Numeric, 9), "numeric(9,0)");
    EXPECT_EQ(Declared(TypeId::Float), "float");
    EXPECT_EQ(Declared(TypeId::Float, 24), "real");
    EXPECT_EQ(Declared(TypeId::NVarChar, {}, {}, true), "nvarchar(max)");
}

TEST(Declarations, OverTheLimitsAreErrors) {
    EXPECT_EQ(Declared(TypeId::VarChar, 0), "1001 Line 1: Length or precision specification 0 is invalid.");
    EXPECT_EQ(Declared(TypeId::VarChar, 8001), "131 The size (8001) given to the type 'varchar' exceeds the "
                                               "maximum allowed for any data type (8000).");
    EXPECT_EQ(Declared(TypeId::NVarChar, 4001),
              "2717 The size (4001) given to the type 'nvarchar' exceeds the maximum allowed (4000).");
    EXPECT_EQ(Declared(TypeId::Int, 5),
              "2716 Column, parameter, or variable #1: Cannot specify a column width on data type int.");
    EXPECT_EQ(
        Declared(TypeId::Decimal, 39),
        "2750 Column or parameter #1: Specified column precision 39 is greater than the maximum precision of "
        "38.");
    EXPECT_EQ(Declared(TypeId::Decimal, 3, 5), "192 The scale must be less than or equal to the precision.");
    EXPECT_EQ(Declared(TypeId::Char, {}, {}, true), "102 Incorrect syntax near 'max'.");
}

TEST(Declarations, NameTheColumnOrParameterInErrors) {
    EXPECT_EQ(Outcome([] {
                  return FullTypeName(DeclaredType(TypeId::Char, 9000, {}, false, 1, {"column", "Note", 3}));
              }),
              "131 The size (9000) given to the column 'Note' exceeds the maximum allowed for any data type "
              "(8000).");
}

TEST(ConversionTable, IsImplicitExplicitOrRefused) {
    EXPECT_EQ(ConversionAllowed(TypeId::VarChar, TypeId::Int), Allowed::Implicit);
    EXPECT_EQ(ConversionAllowed(TypeId::Int, TypeId::NVarChar), Allowed::Implicit);
    EXPECT_EQ(ConversionAllowed(TypeId::VarChar, TypeId::VarBinary), Allowed::Explicit);
    EXPECT_EQ(ConversionAllowed(TypeId::DateTime, TypeId::Int), Allowed::Explicit);
    EXPECT_EQ(ConversionAllowed(TypeId::Int, TypeId::DateTime), Allowed::Implicit);
    EXPECT_EQ(ConversionAllowed(TypeId::Float, TypeId::UniqueIdentifier), Allowed::Never);
    EXPECT_EQ(ConversionAllowed(TypeId::VarBinary, TypeId::Float), Allowed::Never);
    EXPECT_EQ(ConversionAllowed(TypeId::NVarChar, TypeId::Image), Allowed::Never);
    EXPECT_EQ(ErrorOf([] { RequireImplicit(TypeId::DateTime, TypeId::Float); }), 257);
    EXPECT_EQ(ErrorOf([] { RequireImplicit(TypeId::Int, TypeId::UniqueIdentifier); }), 206);
}

TEST(ConversionTable, AllowsATypeToItself) {
    for (const SystemType& row : SystemTypes()) {
        EXPECT_EQ(ConversionAllowed(row.id, row.id), Allowed::Implicit) << row.name;
    }
}

struct CommonCase {
    Type a;
    Type b;
    std::string_view expected;
};

TEST(CommonTypes, AreTheStrongerTypeAndFitBoth) {
    const CommonCase cases[] = {
        {kInt, Simple(TypeId::SmallInt), "int"},
        {kInt, Sized(TypeId::VarChar, 20), "int"},
        {DecimalType(5, 2), DecimalType(10, 4), "decimal(10,4)"},
        {DecimalType(5, 2), kInt, "decimal(12,2)"},
        {DecimalType(38, 0), DecimalType(38, 10), "decimal(38,0)"},
        {DecimalType(9, 2), kMoney, "decimal(19,4)"},
        {kMoney, kInt, "money"},
        {Simple(TypeId::Real), DecimalType(18, 4), "real"},
        {kFloat, Simple(TypeId::Real), "float"},
        {kDateTime, Sized(TypeId::VarChar, 20), "datetime"},
        {Sized(TypeId::Char, 5), Sized(TypeId::VarChar, 10), "varchar(10)"},
        {Sized(TypeId::VarChar, 10), Sized(TypeId::NVarChar, 5), "nvarchar(10)"},
        {Sized(TypeId::VarChar, 10), Sized(TypeId::NChar, 5), "nvarchar(10)"},
        {Sized(TypeId::VarChar, 8000), Sized(TypeId::NVarChar, 5), "nvarchar(4000)"},
        {Sized(TypeId::VarChar, kMaxLength), Sized(TypeId::Char, 5), "varchar(max)"},
        {Sized(TypeId::VarBinary, 4), Sized(TypeId::Binary, 8), "varbinary(8)"},
        {Sized(TypeId::VarChar, 4), Simple(TypeId::Text), "text"},
        {kUntypedNull, Sized(TypeId::VarChar, 4), "varchar(4)"},
        {Simple(TypeId::UniqueIdentifier), Sized(TypeId::VarChar, 36), "uniqueidentifier"},
        {kInt, Simple(TypeId::UniqueIdentifier),
         "206 Operand type clash: uniqueidentifier is incompatible with int"},
    };
    for (const CommonCase& c : cases) {
        EXPECT_EQ(Outcome([&] { return FullTypeName(CommonType(c.a, c.b)); }), c.expected)
            << FullTypeName(c.a) << " and " << FullTypeName(c.b);
    }
}

TEST(CommonTypes, TreatAnIntegerLiteralAsAnInt) {
    EXPECT_EQ(CommonType(IntLiteralType(1), IntLiteralType(2)), kInt);
    EXPECT_EQ(CommonType(kUntypedNull, IntLiteralType(2)), kInt);
    EXPECT_EQ(Settled(kUntypedNull), kInt);
    EXPECT_TRUE(IsUntypedNull(CommonType(kUntypedNull, kUntypedNull)));
}

struct OperatorCase {
    Type left;
    BinaryOperator op;
    Type right;
    std::string_view expected;
};

TEST(OperatorTypes, FollowTheRulesOfPrecisionAndScale) {
    using enum BinaryOperator;
    const OperatorCase cases[] = {
        {DecimalType(5, 2), Add, DecimalType(6, 3), "decimal(7,3)"},
        {DecimalType(5, 2), Multiply, DecimalType(6, 3), "decimal(12,5)"},
        {DecimalType(5, 2), Divide, DecimalType(6, 3), "decimal(15,9)"},
        {DecimalType(5, 2), Modulo, DecimalType(6, 3), "decimal(6,3)"},
        {DecimalType(38, 10), Add, DecimalType(38, 10), "decimal(38,10)"},
        {DecimalType(38, 20), Multiply, DecimalType(38, 20), "decimal(38,6)"},
        {DecimalType(38, 0), Multiply, DecimalType(38, 0), "decimal(38,0)"},
        {DecimalType(18, 2), Multiply, kInt, "decimal(29,2)"},
        {DecimalType(2, 1), Divide, IntLiteralType(1), "decimal(7,6)"},
        {kInt, Divide, kInt, "int"},
        {Simple(TypeId::TinyInt), Add, Simple(TypeId::TinyInt), "tinyint"},
        {kInt, Add, Sized(TypeId::VarChar, 5), "int"},
        {kMoney, Multiply, kInt, "money"},
        {Sized(TypeId::VarChar, 5), Add, Sized(TypeId::VarChar, 6), "varchar(11)"},
        {Sized(TypeId::VarChar, 5), Add, Sized(TypeId::NVarChar, 6), "nvarchar(11)"},
        {Sized(TypeId::VarChar, 5000), Add, Sized(TypeId::VarChar, 5000), "varchar(8000)"},
        {Sized(TypeId::VarChar, 5000), Add, Sized(TypeId::VarChar, kMaxLength), "varchar(max)"},
        {kDateTime, Add, kInt, "datetime"},
        {kDateTime, Subtract, kDateTime, "datetime"},
        {Simple(TypeId::SmallInt), BitAnd, kInt, "int"},
        {kUntypedNull, Add, Sized(TypeId::VarChar, 5), "varchar(10)"},
    };
    for (const OperatorCase& c : cases) {
        EXPECT_EQ(Outcome([&] { return FullTypeName(OperatorType(c.op, c.left, c.right)); }), c.expected)
            << FullTypeName(c.left) << " " << OperatorWord(c.op) << " " << FullTypeName(c.right);
    }
}

TEST(OperatorTypes, RefuseTypesWithoutTheOperator) {
    using enum BinaryOperator;
    const OperatorCase cases[] = {
        {Simple(TypeId::Bit), Add, Simple(TypeId::Bit),
         "402 The data types bit and bit are incompatible in the add operator."},
        {Sized(TypeId::VarChar, 1), Subtract, Sized(TypeId::VarChar, 1),
         "8117 Operand data type varchar is invalid for subtract operator."},
        {Simple(TypeId::Text), Add, Sized(TypeId::VarChar, 1),
         "402 The data types text and varchar are incompatible in the add operator."},
        {kFloat, BitAnd, kInt, "402 The data types float and int are incompatible in the '&' operator."},
        {kFloat, Modulo, kInt, "402 The data types float and int are incompatible in the modulo operator."},
        {kDateTime, Multiply, kInt, "8117 Operand data type datetime is invalid for multiply operator."},
    };
    for (const OperatorCase& c : cases) {
        EXPECT_EQ(Outcome([&] { return FullTypeName(OperatorType(c.op, c.left, c.right)); }), c.expected);
    }
    EXPECT_EQ(ErrorOf([] { OperatorType(UnaryOperator::Minus, Sized(TypeId::VarChar, 1)); }), 8117);
    EXPECT_EQ(ErrorOf([] { OperatorType(UnaryOperator::BitNot, kFloat); }), 8117);
    EXPECT_EQ(ErrorOf([] { RequireComparable(Simple(TypeId::Text), Simple(TypeId::Text), "equal to"); }),
              402);
}

TEST(AggregateTypes, FollowTheArgument) {
    EXPECT_EQ(SumType(Simple(TypeId::TinyInt)), kInt);
    EXPECT_EQ(SumType(DecimalType(9, 2)), DecimalType(38, 2));
    EXPECT_EQ(AverageType(DecimalType(9, 2)), DecimalType(38, 6));
    EXPECT_EQ(SumType(Simple(TypeId::SmallMoney)), kMoney);
    EXPECT_EQ(SumType(Simple(TypeId::Real)), kFloat);
    EXPECT_EQ(Outcome([] { return FullTypeName(SumType(Sized(TypeId::VarChar, 5))); }),
              "8117 Operand data type varchar is invalid for sum operator.");
    EXPECT_EQ(Outcome([] { return FullTypeName(ExtremeType(Simple(TypeId::Bit), "max")); }),
              "8117 Operand data type bit is invalid for max operator.");
}

} // namespace
} // namespace devsql
