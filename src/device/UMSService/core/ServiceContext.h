/// What every operation of one service reads: one small struct that the service owns and lends by reference.
///
/// Shared with the worker thread, which keeps it alive until it has left its loop. Every member is safe from
/// any thread. Members stand in the order in which they need each other.
#pragma once

#include <atomic>
#include <mutex>

#include "CancelList.h"
#include "DefaultFolders.h"
#include "Identity.h"
#include "Log.h"
#include "VolumeRegistry.h"
#include "VolumeSpaces.h"

namespace umsservice {

struct ServiceContext {
  ServiceContext(Environment surroundings, std::string describedAs, MaybeString locationID)
      : environment(std::move(surroundings)),
        description(std::move(describedAs)),
        identity(std::move(locationID)) {}

  // Constant after construction.
  const Environment environment;
  const std::string description;  ///< the service as log lines show it
  const Log log{environment};

  // Own their synchronisation.
  Identity identity;
  CancelList cancelList{log};
  VolumeRegistry volumes;
  DefaultFolders defaultFolders{environment, log, identity, volumes};
  VolumeSpaces spaces{environment, log, volumes};
  std::atomic<uint8_t> releaseState{0};  ///< 1 once the service is released or its device gone; never back
  std::atomic<int32_t> fileTransferStatus{0};  ///< 2 while the host marks a transfer; release waits for it
  std::recursive_mutex synchronizedSection;  ///< held by each long operation, and by hosts that exclude them

  FileSystem& files() const { return *environment.fileSystem; }
  bool isReleased() const { return releaseState.load(std::memory_order_acquire) == 1; }
};

}  // namespace umsservice
