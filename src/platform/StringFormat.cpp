#include "StringFormat.h"

#include <algorithm>
#include <cstdio>

namespace umsservice {
namespace {

/// One conversion: its flags and width as they stand in the format, and its letter.
struct Conversion {
  std::string flags;
  char letter = 0;
};

/// Reads the conversion that begins after a '%' and moves past it.
Conversion takeConversion(std::string_view format, size_t& at) {
  Conversion conversion;
  constexpr std::string_view kFlags = "0123456789-+ #";
  constexpr size_t kLongestFlags = 4;  // bounds the width that a text can ask for
  while (at < format.size() && kFlags.find(format[at]) != std::string_view::npos) {
    if (conversion.flags.size() < kLongestFlags) conversion.flags += format[at];
    ++at;
  }
  if (at < format.size()) conversion.letter = format[at++];
  return conversion;
}

std::string convertedNumber(const Conversion& conversion, uint32_t number) {
  std::string format = "%" + conversion.flags + conversion.letter;
  char buffer[64];
  int length = conversion.letter == 'd'
                   ? std::snprintf(buffer, sizeof buffer, format.c_str(), static_cast<int32_t>(number))
                   : std::snprintf(buffer, sizeof buffer, format.c_str(), number);
  return length < 0 ? std::string() : std::string(buffer);
}

std::string converted(const Conversion& conversion, const FormatArgument& argument) {
  switch (conversion.letter) {
    case '@':
    case 's':
      return argument.object();
    case 'p':
      return argument.pointer();
    case 'd':
    case 'u':
    case 'x':
      return convertedNumber(conversion, argument.number());
    default:
      return std::string();
  }
}

std::string hexadecimal(const void* pointer) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "0x%llx",
                static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(pointer)));
  return buffer;
}

}  // namespace

std::string FormatArgument::object() const {
  if (auto* text = std::get_if<std::string_view>(&held_)) return std::string(*text);
  if (auto* value = std::get_if<const Value*>(&held_)) return (*value)->description();
  if (auto* error = std::get_if<const FileError*>(&held_)) return (*error)->description();
  if (auto* pointer = std::get_if<const void*>(&held_)) return *pointer ? hexadecimal(*pointer) : "(null)";
  if (auto* number = std::get_if<int64_t>(&held_)) return std::to_string(*number);
  if (auto* number = std::get_if<uint64_t>(&held_)) return std::to_string(*number);
  return "(null)";
}

uint32_t FormatArgument::number() const {
  if (auto* number = std::get_if<int64_t>(&held_)) return static_cast<uint32_t>(*number);
  auto* number = std::get_if<uint64_t>(&held_);
  return number ? static_cast<uint32_t>(*number) : 0;
}

std::string FormatArgument::pointer() const {
  if (auto* pointer = std::get_if<const void*>(&held_)) return hexadecimal(*pointer);
  if (auto* text = std::get_if<std::string_view>(&held_)) return hexadecimal(text->data());
  if (auto* value = std::get_if<const Value*>(&held_)) return (*value)->isNil() ? "0x0" : hexadecimal(*value);
  return "0x0";
}

std::string stringWithFormat(std::string_view format, std::initializer_list<FormatArgument> arguments) {
  std::string text;
  auto argument = arguments.begin();
  size_t at = 0;
  while (at < format.size()) {
    size_t percent = std::min(format.find('%', at), format.size());
    text.append(format.substr(at, percent - at));
    at = percent + 1;
    if (percent == format.size()) break;
    Conversion conversion = takeConversion(format, at);
    if (conversion.letter == '%') {
      text += '%';
    } else if (argument != arguments.end()) {
      text += converted(conversion, *argument++);
    }
  }
  return text;
}

}  // namespace umsservice
