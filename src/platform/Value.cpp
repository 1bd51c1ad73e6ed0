#include "umsservice/Value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <type_traits>

namespace umsservice {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

std::string_view withoutLeadingSpace(std::string_view text) {
  size_t start = text.find_first_not_of(kWhiteSpace);
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// Sign and digits at the start of a text; the amount saturates.
struct ScannedInteger {
  bool negative = false;
  uint64_t amount = 0;
};

ScannedInteger scanInteger(std::string_view text) {
  ScannedInteger scanned;
  text = withoutLeadingSpace(text);
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    scanned.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  if (text.empty() || text.front() < '0' || text.front() > '9') return scanned;
  auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), scanned.amount);
  if (failure == std::errc::result_out_of_range) scanned.amount = std::numeric_limits<uint64_t>::max();
  return scanned;
}

template <typename Signed>
Signed saturatedSigned(ScannedInteger scanned) {
  constexpr auto kMax = static_cast<uint64_t>(std::numeric_limits<Signed>::max());
  if (scanned.negative && scanned.amount > kMax) return std::numeric_limits<Signed>::min();
  uint64_t amount = std::min(scanned.amount, kMax);
  return scanned.negative ? static_cast<Signed>(-static_cast<int64_t>(amount)) : static_cast<Signed>(amount);
}

/// Text below 0 gives what a C conversion makes of the signed number.
template <typename Unsigned>
Unsigned saturatedUnsigned(ScannedInteger scanned) {
  if (scanned.negative) return static_cast<Unsigned>(saturatedSigned<std::make_signed_t<Unsigned>>(scanned));
  return static_cast<Unsigned>(std::min<uint64_t>(scanned.amount, std::numeric_limits<Unsigned>::max()));
}

template <typename Integer>
Integer saturatedReal(double real) {
  if (std::isnan(real)) return 0;
  if (real <= static_cast<double>(std::numeric_limits<Integer>::min()))
    return std::numeric_limits<Integer>::min();
  if (real >= static_cast<double>(std::numeric_limits<Integer>::max()))
    return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(real);
}

bool textIsTrue(std::string_view text) {
  text = withoutLeadingSpace(text);
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  size_t start = text.find_first_not_of('0');
  return start != std::string_view::npos &&
         std::string_view("YyTt123456789").find(text[start]) != std::string_view::npos;
}

/// Length of the sign, digits, fraction and exponent that a text begins with; 0 when it is no number.
size_t lengthOfReal(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789";
  auto skip = [text](size_t at, std::string_view characters) {
    return std::min(text.find_first_not_of(characters, at), text.size());
  };
  auto isAt = [text](size_t at, std::string_view characters) {
    return at < text.size() && characters.find(text[at]) != std::string_view::npos;
  };
  size_t whole = isAt(0, "+-") ? 1 : 0;
  size_t end = skip(whole, kDigits);
  size_t digits = end - whole;
  if (isAt(end, ".")) {
    size_t fraction = end + 1;
    end = skip(fraction, kDigits);
    digits += end - fraction;
  }
  if (digits == 0) return 0;
  size_t exponent = isAt(end, "eE") ? end + 1 : text.size();
  if (isAt(exponent, "+-")) ++exponent;
  return isAt(exponent, kDigits) ? skip(exponent, kDigits) : end;
}

/// Free of the host's locale, whose decimal point may be a comma.
double realOfText(std::string_view text) {
  text = withoutLeadingSpace(text);
  text = text.substr(0, lengthOfReal(text));
  if (text.empty()) return 0;
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double real = 0;
  if (stream >> real) return real;
  return text.front() == '-' ? -HUGE_VAL : HUGE_VAL;  // more than fits
}

std::string realInWords(double real) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << std::setprecision(16) << real;
  return stream.str();
}

std::string indented(std::string text) {
  for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 5))
    text.replace(at, 1, "\n    ");
  return text;
}

std::string describeArray(const Array& array) {
  if (auto words = array.storage()->description()) return *words;
  std::string words = "(";
  for (const Value& element : array.snapshot()) {
    words += (words.size() > 1 ? "," : "") + std::string("\n    ") + indented(element.description());
  }
  return words + "\n)";
}

std::string describeDictionary(const Dictionary& dictionary) {
  if (auto words = dictionary.storage()->description()) return *words;
  std::string words = "{";
  for (const std::string& name : dictionary.keys()) {
    words += "\n    " + name + " = " + indented(dictionary.get(name).description()) + ";";
  }
  return words + "\n}";
}

bool isEqualArrays(const Array& left, const Array& right) {
  if (left.isSame(right)) return true;
  auto first = left.snapshot();
  auto second = right.snapshot();
  if (first.size() != second.size()) return false;
  for (size_t i = 0; i < first.size(); ++i) {
    if (!first[i].isEqual(second[i])) return false;
  }
  return true;
}

/// The amount of a number: its sign, and its bits as a 64-bit integer of that sign.
using WholeAmount = std::pair<bool, uint64_t>;

WholeAmount wholeAmount(const Value& integer) {
  bool negative = integer.kind() != Value::Kind::UInt64 && integer.longLongValue() < 0;
  return {negative, integer.unsignedLongLongValue()};
}

/// Absent for a real that no integer equals.
std::optional<WholeAmount> wholeAmountOfReal(double real) {
  constexpr double kBound = 18446744073709551616.0;  // 2 to the power of 64
  if (!(real >= -kBound / 2 && real < kBound) || std::trunc(real) != real) return std::nullopt;
  if (real < 0) return WholeAmount{true, static_cast<uint64_t>(static_cast<int64_t>(real))};
  return WholeAmount{false, static_cast<uint64_t>(real)};
}

/// A number as a kind of this library's.
Value amountOf(const Value& number) {
  return number.kind() == Value::Kind::Foreign ? number.foreignObject()->number() : number;
}

/// Exact for every pair of widths: a real is never compared with a rounded integer.
bool isEqualNumbers(const Value& left, const Value& right) {
  bool leftIsReal = left.kind() == Value::Kind::Real;
  bool rightIsReal = right.kind() == Value::Kind::Real;
  if (leftIsReal && rightIsReal) {
    double a = left.doubleValue();
    double b = right.doubleValue();
    return a == b || (std::isnan(a) && std::isnan(b));
  }
  if (leftIsReal) return wholeAmountOfReal(left.doubleValue()) == wholeAmount(right);
  if (rightIsReal) return wholeAmountOfReal(right.doubleValue()) == wholeAmount(left);
  return wholeAmount(left) == wholeAmount(right);
}

/// Any alternative of a value as an integer.
template <typename Integer, typename Held>
Integer integerOf(const Held& held) {
  if constexpr (std::is_same_v<Held, double>) {
    return saturatedReal<Integer>(held);
  } else if constexpr (std::is_arithmetic_v<Held>) {
    return static_cast<Integer>(held);
  } else if constexpr (std::is_same_v<Held, std::string>) {
    if constexpr (std::is_signed_v<Integer>)
      return saturatedSigned<Integer>(scanInteger(held));
    else
      return saturatedUnsigned<Integer>(scanInteger(held));
  } else {
    return 0;
  }
}

}  // namespace

Value::Value(MaybeString text) {
  if (text) held_ = std::move(*text);
}
Value::Value(const Array& array) : held_(array.storage()) {}
Value::Value(const Dictionary& dictionary) : held_(dictionary.storage()) {}
Value::Value(Dictionary&& dictionary) : held_(std::move(dictionary.storage_)) {}

MaybeString Value::string() const& {
  const std::string* text = stringIfAny();
  return text ? MaybeString(*text) : std::nullopt;
}

MaybeString Value::string() && {
  std::string* text = std::get_if<std::string>(&held_);
  return text ? MaybeString(std::move(*text)) : std::nullopt;
}

std::optional<Array> Value::array() const {
  auto* storage = std::get_if<std::shared_ptr<ArrayStorage>>(&held_);
  return storage ? std::optional<Array>(Array(*storage)) : std::nullopt;
}

std::optional<Dictionary> Value::dictionary() const& {
  auto* storage = std::get_if<std::shared_ptr<DictionaryStorage>>(&held_);
  return storage ? std::optional<Dictionary>(Dictionary(*storage)) : std::nullopt;
}

std::optional<Dictionary> Value::dictionary() && {
  auto* storage = std::get_if<std::shared_ptr<DictionaryStorage>>(&held_);
  return storage ? std::optional<Dictionary>(Dictionary(std::move(*storage))) : std::nullopt;
}

std::shared_ptr<const Data> Value::data() const {
  auto* bytes = std::get_if<std::shared_ptr<const Data>>(&held_);
  return bytes ? *bytes : nullptr;
}

std::shared_ptr<ForeignObject> Value::foreignObject() const {
  auto* object = std::get_if<std::shared_ptr<ForeignObject>>(&held_);
  return object ? *object : nullptr;
}

bool Value::isNumber() const {
  if (kind() == Kind::Foreign) return !foreignObject()->number().isNil();
  return kind() >= Kind::Boolean && kind() <= Kind::Real;
}

int32_t Value::intValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().intValue();
  return std::visit([](const auto& held) { return integerOf<int32_t>(held); }, held_);
}

uint32_t Value::unsignedIntValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().unsignedIntValue();
  return std::visit([](const auto& held) { return integerOf<uint32_t>(held); }, held_);
}

int64_t Value::longLongValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().longLongValue();
  return std::visit([](const auto& held) { return integerOf<int64_t>(held); }, held_);
}

uint64_t Value::unsignedLongLongValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().unsignedLongLongValue();
  return std::visit([](const auto& held) { return integerOf<uint64_t>(held); }, held_);
}

double Value::doubleValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().doubleValue();
  if (const std::string* text = stringIfAny()) return realOfText(*text);
  if (auto* real = std::get_if<double>(&held_)) return *real;
  return kind() == Kind::UInt64 ? static_cast<double>(unsignedLongLongValue())
                                : static_cast<double>(longLongValue());
}

bool Value::boolValue() const {
  if (kind() == Kind::Foreign) return foreignObject()->number().boolValue();
  if (const std::string* text = stringIfAny()) return textIsTrue(*text);
  if (auto* real = std::get_if<double>(&held_)) return *real != 0;
  return unsignedLongLongValue() != 0;
}

bool Value::isEqual(const Value& other) const {
  if (isNumber() && other.isNumber()) return isEqualNumbers(amountOf(*this), amountOf(other));
  if (kind() != other.kind()) return false;
  switch (kind()) {
    case Kind::String:
      return *stringIfAny() == *other.stringIfAny();
    case Kind::Data:
      return *data() == *other.data();
    case Kind::Array:
      return isEqualArrays(*array(), *other.array());
    case Kind::Dictionary:
      return dictionary()->isEqualToDictionary(*other.dictionary());
    case Kind::Foreign:
      return foreignObject()->isEqual(*other.foreignObject());
    default:
      return true;
  }
}

std::string Value::description() const {
  switch (kind()) {
    case Kind::Absent:
      return "(null)";
    case Kind::Null:
      return "<null>";
    case Kind::Real:
      return realInWords(doubleValue());
    case Kind::String:
      return *stringIfAny();
    case Kind::Data:
      return "<" + std::to_string(data()->size()) + " bytes>";
    case Kind::Array:
      return describeArray(*array());
    case Kind::Dictionary:
      return describeDictionary(*dictionary());
    case Kind::Foreign:
      return foreignObject()->description();
    case Kind::UInt32:
    case Kind::UInt64:
      return std::to_string(unsignedLongLongValue());
    default:
      return std::to_string(longLongValue());
  }
}

}  // namespace umsservice
