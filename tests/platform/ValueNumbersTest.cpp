#include <cmath>
#include <cstdint>
#include <limits>

#include "umsservice/Value.h"

namespace umsservice::testing {
namespace {

using Kind = Value::Kind;

constexpr int32_t kMin32 = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax32 = std::numeric_limits<int32_t>::max();
constexpr uint32_t kMaxU32 = std::numeric_limits<uint32_t>::max();
constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min();
constexpr int64_t kMax64 = std::numeric_limits<int64_t>::max();
constexpr uint64_t kMaxU64 = std::numeric_limits<uint64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ValueNumbers, KeepTheWidthAndTheSignednessTheyWereMadeWith) {
  EXPECT_EQ(Value(true).kind(), Kind::Boolean);
  EXPECT_EQ(Value(int8_t{-1}).kind(), Kind::Int32);
  EXPECT_EQ(Value(int16_t{-1}).kind(), Kind::Int32);
  EXPECT_EQ(Value(int32_t{-1}).kind(), Kind::Int32);
  EXPECT_EQ(Value(int64_t{-1}).kind(), Kind::Int64);
  EXPECT_EQ(Value(uint8_t{1}).kind(), Kind::UInt32);
  EXPECT_EQ(Value(uint16_t{1}).kind(), Kind::UInt32);
  EXPECT_EQ(Value(uint32_t{1}).kind(), Kind::UInt32);
  EXPECT_EQ(Value(uint64_t{1}).kind(), Kind::UInt64);
  EXPECT_EQ(Value(size_t{1}).kind(), Kind::UInt64);
  EXPECT_EQ(Value(1.5).kind(), Kind::Real);
  EXPECT_EQ(Value(1.5f).kind(), Kind::Real);
}

TEST(ValueNumbers, AreBooleansIntegersAndRealsAndNothingElse) {
  for (const Value& number :
       {Value(false), Value(1), Value(1u), Value(int64_t{1}), Value(kMaxU64), Value(0.5)})
    EXPECT_TRUE(number.isNumber()) << number.description();
  for (const Value& other :
       {Value(), Value(Null()), Value("1"), Value(Data()), Value(Array()), Value(Dictionary())})
    EXPECT_FALSE(other.isNumber()) << other.description();
}

struct IntegerRow {
  Value value;
  int32_t asInt;
  uint32_t asUnsignedInt;
  int64_t asLongLong;
  uint64_t asUnsignedLongLong;
};

void expectIntegers(const std::vector<IntegerRow>& rows) {
  for (const IntegerRow& row : rows) {
    SCOPED_TRACE("value '" + row.value.description() + "' of kind " +
                 std::to_string(static_cast<int>(row.value.kind())));
    EXPECT_EQ(row.value.intValue(), row.asInt);
    EXPECT_EQ(row.value.unsignedIntValue(), row.asUnsignedInt);
    EXPECT_EQ(row.value.longLongValue(), row.asLongLong);
    EXPECT_EQ(row.value.unsignedLongLongValue(), row.asUnsignedLongLong);
  }
}

TEST(ValueNumbers, IntegersAreCutToTheWidthAskedForAsCConversionsDo) {
  expectIntegers({
      {true, 1, 1, 1, 1},
      {false, 0, 0, 0, 0},
      {-1, -1, kMaxU32, -1, kMaxU64},
      {kMin32, kMin32, 0x80000000u, kMin32, 0xffffffff80000000u},
      {kMaxU32, -1, kMaxU32, 4294967295, 4294967295u},
      {int64_t{0x100000007}, 7, 7, 0x100000007, 0x100000007},
      {int64_t{0x80000000}, kMin32, 0x80000000u, 0x80000000, 0x80000000},
      {int64_t{-4294967297}, -1, kMaxU32, -4294967297, 0xfffffffeffffffffu},
      {kMin64, 0, 0, kMin64, 0x8000000000000000u},
      {kMax64, -1, kMaxU32, kMax64, 0x7fffffffffffffffu},
      {kMaxU64, -1, kMaxU32, -1, kMaxU64},
      {uint64_t{0xfedcba9876543210}, 0x76543210, 0x76543210u, static_cast<int64_t>(0xfedcba9876543210),
       0xfedcba9876543210u},
  });
}

TEST(ValueNumbers, RealsLoseTheirFractionTowardsZeroAndSaturate) {
  expectIntegers({
      {0.0, 0, 0, 0, 0},
      {0.99, 0, 0, 0, 0},
      {5.9, 5, 5, 5, 5},
      {-5.9, -5, 0, -5, 0},
      {2147483647.9, kMax32, 2147483647u, 2147483647, 2147483647u},
      {2147483648.0, kMax32, 2147483648u, 2147483648, 2147483648u},
      {-2147483649.0, kMin32, 0, -2147483649, 0},
      {4294967295.5, kMax32, kMaxU32, 4294967295, 4294967295u},
      {4294967296.0, kMax32, kMaxU32, 4294967296, 4294967296u},
      {9223372036854775808.0, kMax32, kMaxU32, kMax64, 9223372036854775808u},
      {-9223372036854775808.0, kMin32, 0, kMin64, 0},
      {18446744073709551616.0, kMax32, kMaxU32, kMax64, kMaxU64},
      {1e300, kMax32, kMaxU32, kMax64, kMaxU64},
      {-1e300, kMin32, 0, kMin64, 0},
      {kInfinity, kMax32, kMaxU32, kMax64, kMaxU64},
      {-kInfinity, kMin32, 0, kMin64, 0},
      {std::nan(""), 0, 0, 0, 0},
  });
}

TEST(ValueNumbers, TextIsReadAsWhiteSpaceSignAndDigits) {
  expectIntegers({
      {"6", 6, 6, 6, 6},
      {"  42", 42, 42, 42, 42},
      {" \t\n\v\f\r7", 7, 7, 7, 7},
      {"+7", 7, 7, 7, 7},
      {"-7", -7, 4294967289u, -7, 18446744073709551609u},
      {"007", 7, 7, 7, 7},
      {"12 apples", 12, 12, 12, 12},
      {"5.9", 5, 5, 5, 5},
      {"1e3", 1, 1, 1, 1},
      {"0x1f", 0, 0, 0, 0},
      {"- 7", 0, 0, 0, 0},
      {"--7", 0, 0, 0, 0},
      {"+-7", 0, 0, 0, 0},
      {"six", 0, 0, 0, 0},
      {"-", 0, 0, 0, 0},
      {"   ", 0, 0, 0, 0},
      {"", 0, 0, 0, 0},
      {std::string("1\0002", 3), 1, 1, 1, 1},
  });
}

TEST(ValueNumbers, TextSaturatesAtTheWidthAskedFor) {
  expectIntegers({
      {"2147483647", kMax32, 2147483647u, 2147483647, 2147483647u},
      {"2147483648", kMax32, 2147483648u, 2147483648, 2147483648u},
      {"-2147483648", kMin32, 0x80000000u, -2147483648, 0xffffffff80000000u},
      {"-2147483649", kMin32, 0x80000000u, -2147483649, 0xffffffff7fffffffu},
      {"4294967295", kMax32, kMaxU32, 4294967295, 4294967295u},
      {"4294967296", kMax32, kMaxU32, 4294967296, 4294967296u},
      {"9223372036854775807", kMax32, kMaxU32, kMax64, 9223372036854775807u},
      {"9223372036854775808", kMax32, kMaxU32, kMax64, 9223372036854775808u},
      {"-9223372036854775808", kMin32, 0x80000000u, kMin64, 0x8000000000000000u},
      {"-9223372036854775809", kMin32, 0x80000000u, kMin64, 0x8000000000000000u},
      {"18446744073709551615", kMax32, kMaxU32, kMax64, kMaxU64},
      {"18446744073709551616", kMax32, kMaxU32, kMax64, kMaxU64},
      {std::string(5000, '9'), kMax32, kMaxU32, kMax64, kMaxU64},
      {"-" + std::string(5000, '9'), kMin32, 0x80000000u, kMin64, 0x8000000000000000u},
  });
}

TEST(ValueNumbers, EveryOtherKindIsZero) {
  expectIntegers({
      {Value(), 0, 0, 0, 0},
      {Null(), 0, 0, 0, 0},
      {Data{std::byte{'7'}}, 0, 0, 0, 0},
      {Array{7}, 0, 0, 0, 0},
      {Dictionary{{"7", 7}}, 0, 0, 0, 0},
  });
  EXPECT_EQ(Value().doubleValue(), 0);
  EXPECT_EQ(Value(Null()).doubleValue(), 0);
  EXPECT_EQ(Value(Array{7}).doubleValue(), 0);
}

TEST(ValueNumbers, AreReadAsRealsFromNumbersAndText) {
  const std::pair<Value, double> rows[] = {
      {true, 1},
      {-7, -7},
      {kMaxU32, 4294967295.0},
      {kMin64, -9223372036854775808.0},
      {kMaxU64, 18446744073709551616.0},
      {2.5, 2.5},
      {"2.5", 2.5},
      {" \n-2.5", -2.5},
      {"+.5", 0.5},
      {"5.", 5},
      {"1e3", 1000},
      {"1.5E-2x", 0.015},
      {"7eggs", 7},
      {"3e+", 3},
      {"1.2.3", 1.2},
      {"12,5", 12},
      {"0x1f", 0},
      {"+-5", 0},
      {".", 0},
      {"-", 0},
      {"e5", 0},
      {"", 0},
      {"inf", 0},
      {"nan", 0},
      {"1e999", kInfinity},
      {"-1e999", -kInfinity},
      {"1e-999", 0},
  };
  for (const auto& [value, real] : rows) EXPECT_EQ(value.doubleValue(), real) << value.description();
}

TEST(ValueNumbers, AreTrueWhenTheyAreNotZero) {
  for (const Value& value : {Value(true), Value(1), Value(-1), Value(2u), Value(int64_t{0x100000000}),
                             Value(kMaxU64), Value(0.1), Value(-0.5), Value(kInfinity)})
    EXPECT_TRUE(value.boolValue()) << value.description();
  for (const Value& value : {Value(false), Value(0), Value(0u), Value(int64_t{0}), Value(0.0), Value(-0.0)})
    EXPECT_FALSE(value.boolValue()) << value.description();
}

TEST(ValueNumbers, TextIsTrueWhenItBeginsLikeYesTrueOrANumberThatIsNotZero) {
  for (const char* text :
       {"Y", "yes", "True", "t", "1", "9", "  YES", "\t\n1", "-1", "+Y", "0001", "-0002", "10", "+0y", "1no"})
    EXPECT_TRUE(Value(text).boolValue()) << text;
  for (const char* text :
       {"", " ", "N", "no", "false", "0", "000", "-0", "+", "--1", "- 1", "on", "x1", "0 1"})
    EXPECT_FALSE(Value(text).boolValue()) << text;
}

TEST(ValueNumbers, NoOtherKindIsTrue) {
  for (const Value& value :
       {Value(), Value(Null()), Value(Data{std::byte{1}}), Value(Array{1}), Value(Dictionary{{"a", 1}})})
    EXPECT_FALSE(value.boolValue()) << value.description();
}

TEST(ValueNumbers, AreEqualWhenTheirAmountsAreWhateverTheirWidths) {
  const Value sevens[] = {7, 7u, int64_t{7}, uint64_t{7}, 7.0, int8_t{7}};
  for (const Value& left : sevens)
    for (const Value& right : sevens) EXPECT_TRUE(left.isEqual(right));
  EXPECT_TRUE(Value(true).isEqual(1));
  EXPECT_TRUE(Value(false).isEqual(0.0));
  EXPECT_TRUE(Value(-1).isEqual(int64_t{-1}));
  EXPECT_TRUE(Value(-1).isEqual(-1.0));
  EXPECT_TRUE(Value(0.0).isEqual(-0.0));
  EXPECT_TRUE(Value(kMin64).isEqual(-9223372036854775808.0));
  EXPECT_TRUE(Value(uint64_t{0x8000000000000000}).isEqual(9223372036854775808.0));
  EXPECT_TRUE(Value(std::nan("")).isEqual(std::nan("")));
}

TEST(ValueNumbers, AreNotEqualWhenOnlyTheirBitsOrRoundedAmountsAre) {
  const std::pair<Value, Value> rows[] = {
      {-1, kMaxU32},
      {-1, kMaxU64},
      {int64_t{-1}, kMaxU64},
      {kMin64, uint64_t{0x8000000000000000}},
      {7, int64_t{0x100000007}},
      {7, 7.5},
      {int64_t{9007199254740993}, 9007199254740992.0},
      {kMax64, 9223372036854775808.0},
      {kMaxU64, 18446744073709551616.0},
      {-1, -1e300},
      {0, std::nan("")},
      {kMax64, kInfinity},
      {7, "7"},
      {true, "1"},
      {0, Value()},
      {0, Null()},
  };
  for (const auto& [left, right] : rows) {
    EXPECT_FALSE(left.isEqual(right)) << left.description() << " and " << right.description();
    EXPECT_FALSE(right.isEqual(left)) << right.description() << " and " << left.description();
  }
}

}  // namespace
}  // namespace umsservice::testing
