#include "podcast/JsonValue.h"

#include <nlohmann/json.hpp>

namespace umsctl {
namespace {

using namespace umsservice;

/// The library parses without recursion; this builds values as it tells what it finds.
class ValueBuilder final : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return take(Null()); }
  bool boolean(bool flag) override { return take(flag); }
  bool number_integer(number_integer_t number) override { return take(number); }
  bool number_unsigned(number_unsigned_t number) override { return take(number); }
  bool number_float(number_float_t number, const string_t&) override { return take(number); }
  bool string(string_t& text) override { return take(text); }
  bool binary(binary_t&) override { return false; }
  bool key(string_t& name) override {
    open_.back().key = name;
    return true;
  }
  bool start_object(std::size_t) override { return begin(true); }
  bool end_object() override { return end(); }
  bool start_array(std::size_t) override { return begin(false); }
  bool end_array() override { return end(); }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
    if (error_.empty())
      error_ = "it is no JSON: what stands at byte " + std::to_string(position) + " is wrong";
    return false;
  }

  const std::string& error() const { return error_; }
  const Value& value() const { return value_; }

 private:
  static constexpr size_t kDeepest = 64;

  struct Container {
    bool isObject = false;
    Dictionary dictionary;
    std::vector<Value> elements;
    std::string key;
  };

  bool begin(bool isObject) {
    if (open_.size() == kDeepest) {
      error_ = "it is nested too deeply";
      return false;
    }
    open_.push_back({isObject, Dictionary(), {}, {}});
    return true;
  }
  bool end() {
    Container closed = std::move(open_.back());
    open_.pop_back();
    return take(closed.isObject ? Value(closed.dictionary) : Value(Array(std::move(closed.elements))));
  }
  bool take(Value value) {
    if (open_.empty()) {
      value_ = std::move(value);
    } else if (open_.back().isObject) {
      open_.back().dictionary.set(open_.back().key, std::move(value));
    } else {
      open_.back().elements.push_back(std::move(value));
    }
    return true;
  }

  std::vector<Container> open_;
  Value value_;
  std::string error_;
};

}  // namespace

JsonValue readJson(std::string_view bytes) {
  ValueBuilder builder;
  if (nlohmann::json::sax_parse(bytes, &builder)) return {builder.value(), ""};
  return {Value(), builder.error().empty() ? "it is no JSON" : builder.error()};
}

}  // namespace umsctl
