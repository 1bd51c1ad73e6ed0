/// What a `UMSService` object is made of: the library's service, and the two objects of the host's world that
/// belong to it. For the files that implement the class.
#pragma once

#import "UMSServiceBundle/UMSServicePrivate.h"

#include "bridge/LiveContainers.h"
#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"
#include "service/ConfirmDelegate.h"
#include "umsservice/UMSService.h"

// Members stand in the order in which they need each other.
struct UMSServiceParts {
  template <typename... Identity>
  explicit UMSServiceParts(const Identity&... identity)
      : service(umsplugin::hostEnvironment(), identity...),
        volumes([[UMSLiveArray alloc] initOverArray:*service.diskInformation()]) {}
  ~UMSServiceParts() { [volumes release]; }
  UMSServiceParts(const UMSServiceParts&) = delete;
  UMSServiceParts& operator=(const UMSServiceParts&) = delete;

  const std::shared_ptr<umsplugin::ConfirmDelegate> confirmDelegate =
      std::make_shared<umsplugin::ConfirmDelegate>();
  umsservice::UMSService service;
  UMSLiveArray* const volumes;  ///< what `diskInformation` answers
};
