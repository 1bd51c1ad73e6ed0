/// Everything that the library needs from outside, in one place: a host fills in what it has.
///
/// Copied into each service when it is created; shared objects live as long as the last service that uses
/// them, its worker thread included.
#pragma once

#include <memory>

#include "umsservice/Export.h"
#include "umsservice/FileSystem.h"
#include "umsservice/ItemObserver.h"
#include "umsservice/Log.h"
#include "umsservice/NotificationCenter.h"
#include "umsservice/NotifierFactory.h"
#include "umsservice/OVMediaInfoFactory.h"
#include "umsservice/PlacementRules.h"
#include "umsservice/ProfileInfo.h"
#include "umsservice/SynchronizedObject.h"

namespace umsservice {

struct UMS_EXPORT Environment {
  std::shared_ptr<FileSystem> fileSystem;                  ///< required
  std::shared_ptr<NotificationCenter> notificationCenter;  ///< required
  std::shared_ptr<LogSink> logSink;                        ///< required
  std::shared_ptr<DebugLevelSource> debugLevelSource;      ///< required
  std::shared_ptr<const PlacementRules> placementRules;    ///< required
  std::shared_ptr<ProfileInfo> profileInfo;                ///< null: no profile has an answer
  std::shared_ptr<OVMediaInfoFactory> mediaInfoFactory;    ///< null: no file has tags
  std::shared_ptr<ItemObserver> itemObserver;              ///< null: nobody listens
  std::shared_ptr<NotifierFactory> notifierFactory;        ///< null: the library makes its own notifiers
  /// What stands for all services of a host at once: held while one of them looks through its cancelled
  /// requests. Null: one that all services of the process share.
  std::shared_ptr<SynchronizedObject> serviceClass;

  /// The reason of the exception that is being handled, where the host's language has exceptions that are no
  /// `std::exception`; absent for any other. Called inside a handler. Null: only `what()` is known.
  MaybeString (*exceptionReason)() = nullptr;

  /// The running system: its files, the process-wide notification center, standard error for log lines,
  /// "DEBUG.plist" beside the program for the debug level, and the host rules of placement.
  static Environment forRunningSystem();
};

}  // namespace umsservice
