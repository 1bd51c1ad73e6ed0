/// A notifier and an error number for tests of the steps on one file.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include "LogExpectations.h"

namespace umsservice::testing {

inline constexpr auto kCopyMethod = "-[UMSService umsCopyFile:srcPath:destPath:context:error:]";
inline constexpr auto kMoveMethod = "-[UMSService umsMoveFile:srcPath:destPath:context:error:]";

class CopyFile : public DeviceTest {
 protected:
  static constexpr uint32_t kRequest = 7;
  static constexpr int32_t kUntouched = 77;

  bool copy(const MaybeString& srcPath, const MaybeString& destPath) {
    error = kUntouched;
    return service->umsCopyFile(kRequest, srcPath, destPath, &notifier, &error);
  }
  bool move(const MaybeString& srcPath, const MaybeString& destPath) {
    error = kUntouched;
    return service->umsMoveFile(kRequest, srcPath, destPath, &notifier, &error);
  }
  uint32_t number() const { return static_cast<uint32_t>(error); }

  OVUmsDeviceNotifier notifier{surroundings.environment,
                               "location-1",
                               "location-1",
                               kRequest,
                               kMediaMusic,
                               "Pocket One",
                               0,
                               1,
                               3'000'000};
  int32_t error = kUntouched;
  std::string to = internal + "/Music/a.mp3";
};

}  // namespace umsservice::testing
