/// A tag reader that answers as a test says.
#pragma once

#include <functional>

#include "umsservice/OVMediaInfoFactory.h"

namespace umsservice::testing {

class ScriptedTags final : public OVMediaInfoFactory {
 public:
  using Answer = std::function<MaybeDictionary(const std::string& path)>;

  explicit ScriptedTags(Answer tagsOf) : answer(std::move(tagsOf)) {}

  std::shared_ptr<OVMediaInfoBuilder> getBuilder(const std::string& path) override {
    if (knows && !knows(path)) return nullptr;
    return std::make_shared<Builder>(answer);
  }

  /// The tags of a path, or nil.
  Answer answer;
  /// Whether there is a reader for a path at all; unset, there is.
  std::function<bool(const std::string& path)> knows;

 private:
  class Builder final : public OVMediaInfoBuilder {
   public:
    explicit Builder(Answer tagsOf) : answer_(std::move(tagsOf)) {}
    MaybeDictionary build(const std::string& path) override { return answer_(path); }

   private:
    const Answer answer_;
  };
};

}  // namespace umsservice::testing
