#include "JsonLines.h"

#include <gtest/gtest.h>

namespace umsservice::testing {

std::vector<Json> objectsOf(const Ended& ended) {
  std::vector<Json> objects;
  for (const std::string& line : linesOf(ended.output)) {
    Json object = Json::parse(line, nullptr, false);
    EXPECT_TRUE(object.is_object()) << line;
    EXPECT_EQ(object.value("schema", 0), 1) << line;
    objects.push_back(std::move(object));
  }
  return objects;
}

Ended withoutWords(const Ended& ended) {
  Ended objects{ended.status, "", ""};
  for (const std::string& line : linesOf(ended.output)) {
    size_t start = line.find("{\"schema\"");
    if (start != std::string::npos) objects.output += line.substr(start, line.rfind('}') + 1 - start) + "\n";
  }
  return objects;
}

std::vector<Json> objectsOf(const Ended& ended, const std::string& event) {
  std::vector<Json> objects = objectsOf(ended);
  std::erase_if(objects, [&](const Json& object) { return object.value("event", "") != event; });
  return objects;
}

}  // namespace umsservice::testing
