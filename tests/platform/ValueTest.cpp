#include <locale>

#include "umsservice/Value.h"

namespace umsservice::testing {
namespace {

using Kind = Value::Kind;

Data bytes(std::string_view text) {
  Data data;
  for (char c : text) data.push_back(static_cast<std::byte>(c));
  return data;
}

TEST(Values, AreNilUntilTheyAreGivenSomething) {
  EXPECT_TRUE(Value().isNil());
  EXPECT_TRUE(Value(nullptr).isNil());
  EXPECT_TRUE(Value(MaybeString()).isNil());
  EXPECT_TRUE(Value(static_cast<const char*>(nullptr)).isNil());
  EXPECT_EQ(Value().kind(), Kind::Absent);
}

TEST(Values, TellNilFromTheNullObjectFromEmptyTextAndFromZero) {
  const Value different[] = {Value(), Null(), "", 0, Data(), Array(), Dictionary()};
  for (const Value& left : different)
    for (const Value& right : different) EXPECT_EQ(left.isEqual(right), &left == &right);
  EXPECT_FALSE(Value(Null()).isNil());
  EXPECT_FALSE(Value("").isNil());
}

TEST(Values, KnowTheKindTheyHold) {
  EXPECT_EQ(Value(Null()).kind(), Kind::Null);
  EXPECT_EQ(Value("text").kind(), Kind::String);
  EXPECT_EQ(Value(std::string("text")).kind(), Kind::String);
  EXPECT_EQ(Value(std::string_view("text")).kind(), Kind::String);
  EXPECT_EQ(Value(MaybeString("text")).kind(), Kind::String);
  EXPECT_EQ(Value(bytes("text")).kind(), Kind::Data);
  EXPECT_EQ(Value(Array()).kind(), Kind::Array);
  EXPECT_EQ(Value(Dictionary()).kind(), Kind::Dictionary);
}

TEST(Values, GiveBackOnlyWhatTheyHold) {
  Value text("text");
  EXPECT_EQ(text.string(), "text");
  EXPECT_EQ(*text.stringIfAny(), "text");
  EXPECT_FALSE(text.array());
  EXPECT_FALSE(text.dictionary());
  EXPECT_FALSE(text.data());
  for (const Value& other :
       {Value(), Value(Null()), Value(7), Value(bytes("7")), Value(Array()), Value(Dictionary())}) {
    EXPECT_FALSE(other.string()) << other.description();
    EXPECT_EQ(other.stringIfAny(), nullptr) << other.description();
  }
  EXPECT_TRUE(Value(Array{1}).array());
  EXPECT_TRUE(Value(Dictionary{{"a", 1}}).dictionary());
  EXPECT_EQ(*Value(bytes("abc")).data(), bytes("abc"));
}

TEST(Values, KeepEveryByteOfTheirText) {
  std::string odd("a\0b\xff\n", 5);
  EXPECT_EQ(Value(odd).string(), odd);
  EXPECT_EQ(Value(odd).description(), odd);
}

TEST(Values, SayEmptyTextIsThereAndAbsentTextIsNot) {
  EXPECT_EQ(Value("").string(), "");
  EXPECT_EQ(Value(MaybeString("")).string(), "");
  EXPECT_EQ(Value().string(), std::nullopt);
}

TEST(Values, CompareTextByteByByte) {
  EXPECT_TRUE(Value("abc").isEqual("abc"));
  EXPECT_FALSE(Value("abc").isEqual("ABC"));
  EXPECT_FALSE(Value("abc").isEqual("abc "));
  EXPECT_FALSE(Value("\u00e9").isEqual("e\u0301"));
}

TEST(Values, CompareBytesArraysAndDictionariesDeeply) {
  EXPECT_TRUE(Value(bytes("abc")).isEqual(bytes("abc")));
  EXPECT_FALSE(Value(bytes("abc")).isEqual(bytes("abd")));
  Value left(Array{1, "two", Dictionary{{"three", Array{4.0, Null()}}}});
  EXPECT_TRUE(left.isEqual(Array{1u, "two", Dictionary{{"three", Array{int64_t{4}, Null()}}}}));
  EXPECT_FALSE(left.isEqual(Array{1, "two", Dictionary{{"three", Array{4.5, Null()}}}}));
  EXPECT_FALSE(Value(Array{1, 2}).isEqual(Array{2, 1}));
  EXPECT_FALSE(Value(Array{1, 2}).isEqual(Array{1}));
  EXPECT_FALSE(Value(Array{1, Value()}).isEqual(Array{1, Null()}));
  EXPECT_TRUE(Value(Dictionary{{"a", 1}, {"b", 2}}).isEqual(Dictionary{{"b", 2}, {"a", 1}}));
  EXPECT_FALSE(Value(Dictionary{{"a", 1}}).isEqual(Dictionary{{"b", 1}}));
  EXPECT_FALSE(Value(Dictionary{{"a", 1}}).isEqual(Dictionary{{"a", 1}, {"b", 2}}));
}

TEST(Values, DescribeThemselvesForLogLines) {
  const std::pair<Value, const char*> rows[] = {
      {Value(), "(null)"},
      {Null(), "<null>"},
      {true, "1"},
      {false, "0"},
      {-7, "-7"},
      {4294967295u, "4294967295"},
      {int64_t{-9000000000}, "-9000000000"},
      {uint64_t{18446744073709551615u}, "18446744073709551615"},
      {5.0, "5"},
      {0.1, "0.1"},
      {-2.5, "-2.5"},
      {1e21, "1e+21"},
      {"text", "text"},
      {"", ""},
      {bytes("abc"), "<3 bytes>"},
      {Array(), "(\n)"},
      {Array{1, "two"}, "(\n    1,\n    two\n)"},
      {Dictionary(), "{\n}"},
      {Dictionary{{"b", 2}, {"a", "x"}}, "{\n    a = x;\n    b = 2;\n}"},
      {Dictionary{{"list", Array{1}}}, "{\n    list = (\n        1\n    );\n}"},
      {Array{Value(), Null()}, "(\n    (null),\n    <null>\n)"},
  };
  for (const auto& [value, words] : rows) EXPECT_EQ(value.description(), words);
}

/// Numbers as people in many countries write them.
struct CommaAndDots final : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Values, DescribeAndReadRealsWithAPointWhateverTheHostsLocale) {
  std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaAndDots));
  std::string words = Value(1234567.5).description();
  double real = Value("1234.5").doubleValue();
  double cut = Value("2,5").doubleValue();
  std::locale::global(before);
  EXPECT_EQ(words, "1234567.5");
  EXPECT_EQ(real, 1234.5);
  EXPECT_EQ(cut, 2);
}

/// An object of a host: a day.
class Day final : public ForeignObject {
 public:
  explicit Day(std::string name) : name_(std::move(name)) {}
  std::string description() const override { return name_; }
  bool isEqual(const ForeignObject& other) const override { return other.description() == name_; }

 private:
  const std::string name_;
};

TEST(Values, CarryAnObjectOfTheHostUntouched) {
  auto day = std::make_shared<Day>("Monday");
  Value value(day);
  EXPECT_EQ(value.kind(), Kind::Foreign);
  EXPECT_EQ(Dictionary({{"day", value}}).get("day").foreignObject(), day);
  EXPECT_EQ(value.description(), "Monday");
  EXPECT_TRUE(value.isEqual(Value(std::make_shared<Day>("Monday"))));
  EXPECT_FALSE(value.isEqual(Value(std::make_shared<Day>("Tuesday"))));
  EXPECT_FALSE(value.isEqual("Monday"));
  EXPECT_FALSE(Value("Monday").isEqual(value));
}

TEST(Values, HoldNothingElseInAnObjectOfTheHost) {
  Value value(std::make_shared<Day>("7"));
  EXPECT_FALSE(value.isNil());
  EXPECT_FALSE(value.isNumber());
  EXPECT_FALSE(value.boolValue());
  EXPECT_EQ(value.intValue(), 0);
  EXPECT_EQ(value.doubleValue(), 0);
  EXPECT_EQ(value.string(), std::nullopt);
  EXPECT_FALSE(value.array() || value.dictionary() || value.data());
  EXPECT_EQ(Value("7").foreignObject(), nullptr);
  EXPECT_TRUE(Value(std::shared_ptr<ForeignObject>()).isNil());
}

/// A number that only its host can write.
class Decimal final : public ForeignObject {
 public:
  explicit Decimal(std::string words) : words_(std::move(words)) {}
  std::string description() const override { return words_; }
  bool isEqual(const ForeignObject& other) const override { return description() == other.description(); }
  Value number() const override { return std::stod(words_); }

 private:
  const std::string words_;
};

TEST(Values, CountANumberOfTheHostAsOneAndShowItInTheHostsWords) {
  Value value(std::make_shared<Decimal>("12345678901234567890"));
  EXPECT_TRUE(value.isNumber());
  EXPECT_EQ(value.description(), "12345678901234567890");
  EXPECT_EQ(value.unsignedLongLongValue(), 12345678901234567168u);
  EXPECT_EQ(value.intValue(), std::numeric_limits<int32_t>::max());
  EXPECT_TRUE(value.boolValue());
  Value small(std::make_shared<Decimal>("41"));
  EXPECT_EQ(small.unsignedIntValue(), 41u);
  EXPECT_EQ(small.longLongValue(), 41);
  EXPECT_EQ(small.doubleValue(), 41);
  EXPECT_TRUE(small.isEqual(41));
  EXPECT_TRUE(Value(41.0).isEqual(small));
  EXPECT_FALSE(small.isEqual(Value(std::make_shared<Decimal>("42"))));
}

TEST(Values, HoldTheSameContainerAndNotACopyOfIt) {
  Array array{1};
  Value held(array);
  array.append(2);
  EXPECT_EQ(held.array()->count(), 2u);
  held.array()->append(3);
  EXPECT_EQ(array.count(), 3u);
  EXPECT_TRUE(held.array()->isSame(array));

  Dictionary dictionary;
  Value copied = Value(dictionary);
  Value again = copied;
  again.dictionary()->set("key", "value");
  EXPECT_EQ(dictionary.string("key"), "value");
}

}  // namespace
}  // namespace umsservice::testing
