/// The host's tag reader: its class `OVMediaInfoFactory`, where it has one.
#import <Foundation/Foundation.h>

#import "UMSServiceBundle/HostClasses.h"
#include "bridge/CallbackScope.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"

namespace umsplugin {
namespace {

class HostMediaInfoBuilder final : public umsservice::OVMediaInfoBuilder {
 public:
  explicit HostMediaInfoBuilder(id builder) : builder_([builder retain]) {}
  ~HostMediaInfoBuilder() override {
    inCallback([this] { [builder_ release]; });
  }
  HostMediaInfoBuilder(const HostMediaInfoBuilder&) = delete;
  HostMediaInfoBuilder& operator=(const HostMediaInfoBuilder&) = delete;

  umsservice::MaybeDictionary build(const std::string& path) override {
    return inCallback([&] { return toDictionary([builder_ build:toHostText(path)]); });
  }

 private:
  const id builder_;
};

class HostMediaInfoFactory final : public umsservice::OVMediaInfoFactory {
 public:
  std::shared_ptr<umsservice::OVMediaInfoBuilder> getBuilder(const std::string& path) override {
    return inCallback([&]() -> std::shared_ptr<umsservice::OVMediaInfoBuilder> {
      Class factory = NSClassFromString(@"OVMediaInfoFactory");
      if (![factory respondsToSelector:@selector(getBuilder:)]) return nullptr;
      id builder = [factory getBuilder:toHostText(path)];
      if (![builder respondsToSelector:@selector(build:)]) return nullptr;
      return std::make_shared<HostMediaInfoBuilder>(builder);
    });
  }
};

}  // namespace

std::shared_ptr<umsservice::OVMediaInfoFactory> hostMediaInfoFactory() {
  return std::make_shared<HostMediaInfoFactory>();
}

}  // namespace umsplugin
