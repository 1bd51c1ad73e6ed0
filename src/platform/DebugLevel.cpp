#include <plist/plist.h>

#include <cstdlib>
#include <limits>

#include "FileContents.h"
#include "umsservice/Log.h"

namespace umsservice {
namespace {

constexpr uint64_t kLongestPropertyList = 1 << 20;

struct FreePlist {
  void operator()(void* node) const { plist_free(node); }
};
using Plist = std::unique_ptr<void, FreePlist>;

Plist parsedPropertyList(const Data& bytes) {
  plist_t root = nullptr;
  if (!bytes.empty()) {
    plist_from_memory(reinterpret_cast<const char*>(bytes.data()), static_cast<uint32_t>(bytes.size()),
                      &root);
  }
  return Plist(root);
}

Value numberOrText(plist_t node) {
  switch (node ? plist_get_node_type(node) : PLIST_NONE) {
    case PLIST_UINT: {
      uint64_t number = 0;
      plist_get_uint_val(node, &number);
      return number;
    }
    case PLIST_REAL: {
      double real = 0;
      plist_get_real_val(node, &real);
      return real;
    }
    case PLIST_BOOLEAN: {
      uint8_t flag = 0;
      plist_get_bool_val(node, &flag);
      return flag != 0;
    }
    case PLIST_STRING: {
      char* text = nullptr;
      plist_get_string_val(node, &text);
      Value value(text ? text : "");
      std::free(text);
      return value;
    }
    default:
      return Value();
  }
}

class PlistDebugLevelSource final : public DebugLevelSource {
 public:
  PlistDebugLevelSource(std::shared_ptr<FileSystem> files, std::string path)
      : files_(std::move(files)), path_(std::move(path)) {}

  int32_t debugLevel() override {
    auto bytes = readContents(*files_, path_, kLongestPropertyList);
    if (!bytes) return 0;
    Plist root = parsedPropertyList(*bytes);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return 0;
    return numberOrText(plist_dict_get_item(root.get(), "DEBUG_LEVEL")).intValue();
  }

 private:
  const std::shared_ptr<FileSystem> files_;
  const std::string path_;
};

class FixedDebugLevelSource final : public DebugLevelSource {
 public:
  explicit FixedDebugLevelSource(int32_t level) : level_(level) {}
  int32_t debugLevel() override { return level_; }

 private:
  const int32_t level_;
};

}  // namespace

std::shared_ptr<DebugLevelSource> plistDebugLevelSource(std::shared_ptr<FileSystem> files, std::string path) {
  return std::make_shared<PlistDebugLevelSource>(std::move(files), std::move(path));
}

std::shared_ptr<DebugLevelSource> fixedDebugLevelSource(int32_t level) {
  return std::make_shared<FixedDebugLevelSource>(level);
}

}  // namespace umsservice
