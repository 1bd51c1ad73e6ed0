/// The operations behind the five long commands. The dispatcher chooses one by command and media type; the
/// rooms above the core implement them. Each runs on the worker thread and answers whether it succeeded.
#pragma once

#include "umsservice/ServiceInfo.h"

namespace umsservice {

class LongOperations {
 public:
  virtual ~LongOperations() = default;
  virtual bool doDeleteMediaContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doDeletePodcastContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doCopyMediaContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo) = 0;
  virtual bool doCopyPodcastContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doSyncMediaContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doSyncPodcastContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doDeviceToDevcieContents(const _serviceinfo& serviceInfo) = 0;
  virtual bool doDeviceToDevicePodcast(const _serviceinfo& serviceInfo) = 0;
};

}  // namespace umsservice
