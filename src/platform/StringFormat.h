/// A small `stringWithFormat`: message texts stay in the code as the system has always written them.
///
/// Understands %@ %d %u %s %p %x with flags and width (as in 0x%08x) and %%. As on the platform, a 64-bit
/// number given to a 32-bit conversion prints its low 32 bits, and nil prints "(null)".
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

#include "umsservice/FileSystem.h"
#include "umsservice/Value.h"

namespace umsservice {

/// One argument of a format. Text is borrowed for the duration of the call.
class FormatArgument {
 public:
  FormatArgument(std::nullptr_t) {}
  FormatArgument(const char* text) {
    if (text) held_ = std::string_view(text);
  }
  FormatArgument(const std::string& text) : held_(std::string_view(text)) {}
  FormatArgument(std::string_view text) : held_(text) {}
  FormatArgument(const MaybeString& text) {
    if (text) held_ = std::string_view(*text);
  }
  FormatArgument(const Value& value) : held_(&value) {}
  FormatArgument(const FileError& error) : held_(&error) {}
  FormatArgument(const void* pointer) : held_(pointer) {}
  template <std::signed_integral T>
  FormatArgument(T number) : held_(static_cast<int64_t>(number)) {}
  template <std::unsigned_integral T>
  FormatArgument(T number) : held_(static_cast<uint64_t>(number)) {}

  /// The argument as "%@" shows it.
  std::string object() const;
  /// The low 32 bits of a number; 0 for anything else.
  uint32_t number() const;
  /// As "%p" shows it. Text counts as a pointer that is there.
  std::string pointer() const;

 private:
  std::variant<std::monostate, std::string_view, const Value*, const FileError*, const void*, int64_t,
               uint64_t>
      held_;
};

/// Conversions without an argument print nothing.
std::string stringWithFormat(std::string_view format, std::initializer_list<FormatArgument> arguments);

}  // namespace umsservice
