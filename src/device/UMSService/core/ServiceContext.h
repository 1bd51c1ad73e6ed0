/// What every operation of one service reads: one small struct that the service owns and lends by reference.
///
/// Shared with the worker thread, which keeps it alive until it has left its loop. Every member is safe from
/// any thread. Members stand in the order in which they need each other.
#pragma once

#include <atomic>

#include "CancelList.h"
#include "DefaultFolders.h"
#include "Identity.h"
#include "Log.h"
#include "VolumeRegistry.h"
#include "VolumeSpaces.h"
#include "WorkerEnd.h"
#include "umsservice/SynchronizedObject.h"

namespace umsservice {

struct ServiceContext {
  /// Without an object of the host's, `describedAs` is what log lines show.
  ServiceContext(Environment surroundings, std::string describedAs, MaybeString locationID,
                 std::shared_ptr<SynchronizedObject> hostObject = nullptr)
      : environment(std::move(surroundings)),
        object(hostObject ? std::move(hostObject) : makeSynchronizedObject()),
        description(object->description().empty() ? std::move(describedAs) : object->description()),
        identity(std::move(locationID)) {}

  // Constant after construction.
  const Environment environment;
  const std::shared_ptr<SynchronizedObject> object;  ///< what the host knows the service by
  const std::string description;                     ///< the service as log lines show it
  const Log log{environment};

  // Own their synchronisation.
  Identity identity;
  CancelList cancelList{log};
  VolumeRegistry volumes;
  DefaultFolders defaultFolders{environment, log, identity, volumes};
  VolumeSpaces spaces{environment, log, volumes};
  WorkerEnd workerEnd;
  std::atomic<uint8_t> releaseState{0};  ///< 1 once the service is released or its device gone; never back
  std::atomic<uint32_t> stoppedRuns{
      0};  ///< runs that an exception stopped, and that told their end themselves
  std::atomic<int32_t> fileTransferStatus{0};  ///< 2 while the host marks a transfer; release waits for it

  /// Held by each long operation, and by hosts that exclude them.
  SynchronizedObject& synchronizedSection() const { return *object; }
  /// Held during a walk over a cancel list, whichever service it is of.
  SynchronizedObject& classSection() const {
    static auto& ofThisProcess = *new std::shared_ptr<SynchronizedObject>(makeSynchronizedObject());
    return environment.serviceClass ? *environment.serviceClass : *ofThisProcess;
  }
  FileSystem& files() const { return *environment.fileSystem; }
  bool isReleased() const { return releaseState.load(std::memory_order_acquire) == 1; }
};

}  // namespace umsservice
