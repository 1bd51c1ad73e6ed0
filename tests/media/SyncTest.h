/// A sync request for the device of two folders, run on the test's own thread.
#pragma once

#include "Story.h"

namespace umsservice::testing {

inline constexpr auto kSyncMethod = "-[UMSService doSyncMediaContents:]";
inline constexpr auto kFallOverMethod = "-[UMSService syncUmsFile:atPath:index:mediaType:mediaData:context:]";

/// A request that begins with the internal memory.
inline _serviceinfo syncRequest(uint32_t serviceID) {
  _serviceinfo request;
  request.serviceID = serviceID;
  request.command = kCommandSyncContents;
  request.contents = Array();
  request.mediaType = kMediaMusic;
  request.isStartInternal = 1;
  return request;
}

class SyncTest : public DeviceTest {
 protected:
  static constexpr uint32_t kRequest = 7;

  /// Adds a source file of the name's own bytes, or of others.
  std::string add(const std::string& name) { return add(name, name); }
  std::string add(const std::string& name, const std::string& bytes) {
    return add(sandbox.file("in/" + name, bytes), name, nullptr);
  }
  std::string add(const std::string& path, const std::string& name, std::nullptr_t) {
    request.contents->append(content(path, name));
    return path;
  }
  bool run() { return service->doSyncMediaContents(request); }

  Lines told() const { return story(surroundings); }
  Lines ends() const { return outcomesOf(surroundings); }
  std::vector<uint32_t> results() const {
    return numbers(notifications.named(kMediaResultNotification), key::kResultStatus);
  }

  _serviceinfo request = syncRequest(kRequest);
};

}  // namespace umsservice::testing
