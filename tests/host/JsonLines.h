/// The objects that umsctl writes for programs, read as a program reads them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Program.h"

namespace umsservice::testing {

using Json = nlohmann::json;

/// Each line is an object by itself; a line that is none fails the test.
std::vector<Json> objectsOf(const Ended& ended);

/// What a program at a terminal wrote for programs; everything else there is passed over.
Ended withoutWords(const Ended& ended);

/// Those of one event.
std::vector<Json> objectsOf(const Ended& ended, const std::string& event);

}  // namespace umsservice::testing
