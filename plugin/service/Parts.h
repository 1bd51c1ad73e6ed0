/// What a `UMSService` object is made of: the library's service, and the two objects of the host's world that
/// belong to it. For the files that implement the class.
#pragma once

#import "UMSServiceBundle/UMSServicePrivate.h"

#include "bridge/LiveContainers.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"
#include "service/ConfirmDelegate.h"
#include "service/ObjectSection.h"
#include "umsservice/UMSService.h"

// Members stand in the order in which they need each other.
struct UMSServiceParts {
  template <typename... Identity>
  explicit UMSServiceParts(UMSService* object, const Identity&... identity)
      : section(std::make_shared<umsplugin::ObjectSection>(object)),
        service(umsplugin::hostEnvironment(), identity..., section),
        volumes([[UMSLiveArray alloc] initOverArray:*service.diskInformation()]) {}
  ~UMSServiceParts() { [volumes release]; }
  UMSServiceParts(const UMSServiceParts&) = delete;
  UMSServiceParts& operator=(const UMSServiceParts&) = delete;

  const std::shared_ptr<umsplugin::ObjectSection> section;
  const std::shared_ptr<umsplugin::ConfirmDelegate> confirmDelegate =
      std::make_shared<umsplugin::ConfirmDelegate>(section);
  umsservice::UMSService service;
  UMSLiveArray* const volumes;  ///< what `diskInformation` answers
};
