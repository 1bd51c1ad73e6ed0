/// Dictionaries of notifications as lines of text, number widths included.
#pragma once

#include <string>
#include <vector>

#include "umsservice/Value.h"

namespace umsservice::testing {

inline const char* nameOf(Value::Kind kind) {
  constexpr const char* kNames[] = {"nil", "null", "bool", "i32",  "u32",   "i64",
                                    "u64", "real", "text", "data", "array", "dictionary"};
  return kNames[static_cast<size_t>(kind)];
}

/// "KEY: KIND VALUE" for each entry, in the order of the keys.
inline std::vector<std::string> typed(const Dictionary& userInfo) {
  std::vector<std::string> lines;
  for (const std::string& name : userInfo.keys()) {
    Value value = userInfo.get(name);
    lines.push_back(name + ": " + nameOf(value.kind()) + " " + value.description());
  }
  return lines;
}

using Lines = std::vector<std::string>;

}  // namespace umsservice::testing
