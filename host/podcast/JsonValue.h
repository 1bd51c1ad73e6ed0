/// JSON as property-list values.
///
/// Objects become dictionaries, null the null object; numbers keep what they are. Reads in bounded time and
/// memory whatever the bytes are: their number and the depth have limits. No state; safe from any thread.
#pragma once

#include <string>
#include <string_view>

#include "umsservice/Value.h"

namespace umsctl {

struct JsonValue {
  /// Nil when the bytes are no JSON.
  umsservice::Value value;
  /// In words, why they are none.
  std::string error;
};

JsonValue readJson(std::string_view bytes);

}  // namespace umsctl
