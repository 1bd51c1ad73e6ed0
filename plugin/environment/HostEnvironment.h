/// What the library needs from outside, answered by the application that loaded the bundle: the default
/// notification center, `NSLog`, "DEBUG.plist" of the main bundle, and the host's own classes, found by name
/// each time they are needed. Files are the system's; volumes are found by the host rules of placement.
///
/// One set for all services of the process; safe from any thread.
#pragma once

#include "umsservice/Environment.h"

namespace umsplugin {

umsservice::Environment hostEnvironment();

// The parts, each in a file of its own.
std::shared_ptr<umsservice::NotificationCenter> hostNotificationCenter();
std::shared_ptr<umsservice::LogSink> hostLogSink();
std::shared_ptr<umsservice::DebugLevelSource> hostDebugLevelSource();
std::shared_ptr<umsservice::ProfileInfo> hostProfileInfo();
std::shared_ptr<umsservice::OVMediaInfoFactory> hostMediaInfoFactory();
std::shared_ptr<umsservice::NotifierFactory> hostNotifierFactory();

}  // namespace umsplugin
