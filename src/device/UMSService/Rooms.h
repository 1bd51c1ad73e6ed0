/// The rooms of one service in the order in which they need each other.
///
/// Shared by the service object and its worker thread: a service that is released on its own worker is gone
/// at once, while the worker still finds everything that it leaves its loop by.
#pragma once

#include "DeviceScan.h"
#include "DirectTransfer.h"
#include "Dispatcher.h"
#include "MediaListings.h"
#include "Operations.h"
#include "RequestEntry.h"
#include "RequestQueue.h"
#include "umsservice/UMSService.h"

namespace umsservice {

struct UMSService::Rooms {
  Rooms(const Environment& environment, std::string description, const MaybeString& locationID,
        std::shared_ptr<SynchronizedObject> object)
      : context(environment, std::move(description), locationID, std::move(object)) {}

  ServiceContext context;
  ServiceReports reports{context};
  FolderOperations folders{context};
  DeviceScan scan{context};
  DirectTransfer transfers{context, folders};
  MediaTools media{context, folders, reports};
  PodcastTools podcasts{media};
  MediaListings listings{context, folders, media.files, podcasts.indexes};
  Operations operations{media, podcasts};
  Dispatcher dispatcher{context, reports, operations};
  RequestQueue queue{context, reports};
  RequestEntry entry{context, queue};
};

}  // namespace umsservice
