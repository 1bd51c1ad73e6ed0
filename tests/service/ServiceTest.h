/// A device whose worker can be caught in the middle of a copy.
#pragma once

#include "Eventually.h"
#include "LogExpectations.h"
#include "TestDevice.h"
#include "TypedEntries.h"

namespace umsservice::testing {

/// Bytes of a file that have been copied when its first progress is posted: the first whole number of
/// 4096-byte units above 1,000,000.
inline constexpr uint64_t kFirstReport = 245 * 4096;

class ServiceTest : public DeviceTest {
 protected:
  /// A file that is copied in three reports.
  std::string longFile = sandbox.patternFile("in/long.mp3", 2'500'000);
  std::string shortFile = sandbox.file("in/short.mp3", "la la la");

  Array longContents() const { return Array{content(longFile, "long.mp3")}; }
  Array shortContents(const std::string& name = "short.mp3") const { return Array{content(shortFile, name)}; }
  bool queueLong(uint32_t serviceID) {
    return service->copyContentsMacToDevice(serviceID, longContents(), kMediaMusic, 0);
  }
  bool queueShort(uint32_t serviceID, const std::string& name) {
    return service->copyContentsMacToDevice(serviceID, shortContents(name), kMediaMusic, 0);
  }

  std::string onDevice(const std::string& name) const { return internal + "/Music/" + name; }
  /// Whether exactly the part that was reported first is on the device.
  void expectFirstReportOnly() const {
    EXPECT_EQ(bytesOf(onDevice("long.mp3")), bytesOf(longFile).substr(0, kFirstReport));
  }

  /// Runs a copy with the number 1 on the test's own thread, as a host may.
  void runCopy(const Array& contents) {
    _serviceinfo request;
    request.serviceID = 1;
    request.command = kCommandCopyToDevice;
    request.mediaType = kMediaMusic;
    request.contents = contents;
    service->doUmsFileService(&request);
  }

  /// Runs a handler once, on the thread that copies, at the first progress of the first copy.
  void onFirstProgress(std::function<void()> handler) {
    notifications.onEach(
        [handler, ran = std::make_shared<std::atomic<bool>>(false)](const Notification& posted) {
          if (posted.name == kTransferProgressNotification && !ran->exchange(true)) handler();
        });
  }

  bool waitForLine(const std::string& methodAndMessage) const {
    return eventually([&] {
      auto lines = log.messages();
      return std::count(lines.begin(), lines.end(), methodAndMessage) > 0;
    });
  }
  /// The last line of the worker before it needs the section that long operations run in.
  bool waitForDispatchedCopy() const {
    return eventually([this] {
      auto lines = linesOf(surroundings, "-[UMSService doUmsFileService:]");
      return !lines.empty() && lines.back().ends_with("FS_COMMAND_OV_COPY_TO_DEVICE_CONTENTS");
    });
  }
  /// The last line of a release, before it waits for its worker.
  bool waitForRelease() const { return waitForLine("-[UMSService dealloc] EXIT"); }
  bool waitForWorkersEnd(size_t workers = 1) const {
    return eventually([&] { return log.count("umsFileServiceQueueThread Exit!") == workers; });
  }
  /// The request numbers of the request results, in order.
  std::vector<uint32_t> finished() const {
    return numbers(notifications.named(kUmsResultNotification), key::kServiceID);
  }
};

}  // namespace umsservice::testing
