#include "umsservice/Environment.h"

#include "StringPaths.h"
#include "posix/ProgramPath.h"

namespace umsservice {

Environment Environment::forRunningSystem() {
  Environment environment;
  environment.fileSystem = posixFileSystem();
  environment.notificationCenter = defaultNotificationCenter();
  environment.logSink = standardErrorLogSink();
  std::string folder = stringByDeletingLastPathComponent(pathOfRunningProgram());
  environment.debugLevelSource =
      plistDebugLevelSource(environment.fileSystem, joinedPath(folder, "DEBUG.plist"));
  environment.placementRules = hostPlacementRules();
  return environment;
}

}  // namespace umsservice
