#include "umsservice/Environment.h"

#include "DebugLevelPath.h"
#include "StringPaths.h"
#include "posix/ProgramPath.h"

namespace umsservice {
Environment Environment::forRunningSystem() {
  Environment environment;
  environment.fileSystem = posixFileSystem();
  environment.notificationCenter = defaultNotificationCenter();
  environment.logSink = standardErrorLogSink();
  std::string folder = stringByDeletingLastPathComponent(pathOfRunningProgram());
  environment.debugLevelSource = folder.empty()
                                     ? fixedDebugLevelSource(0)
                                     : plistDebugLevelSource(environment.fileSystem, debugLevelPath(folder));
  environment.placementRules = hostPlacementRules();
  return environment;
}

}  // namespace umsservice
