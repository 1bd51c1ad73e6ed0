/// A notifier with ears on it.
#pragma once

#include "LogExpectations.h"
#include "TestDevice.h"
#include "TypedEntries.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsservice::testing {

class NotifierTest : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  NotificationRecorder& notifications = surroundings.notifications;

  std::unique_ptr<OVUmsDeviceNotifier> notifierOf(uint32_t files, uint64_t bytes) {
    return std::make_unique<OVUmsDeviceNotifier>(surroundings.environment, "source", "destination", 7,
                                                 kMediaVideo, "Pocket One", 2, files, bytes);
  }
  std::vector<Notification> progress() const { return notifications.named("QDORVEL_NOTI_TRANSFER_PROGRESS"); }
  std::vector<Notification> results() const {
    return notifications.named("QDORVEL_NOTI_MEDIA_TRASFER_RESULT");
  }

  /// "CURRENT/MAX STATUS PERCENT" for progress, "result STATUS" for an item's result, in order.
  Lines told() const {
    Lines lines;
    for (const Notification& posted : notifications.all()) {
      auto number = [&](const char* name) {
        return std::to_string(posted.userInfo.get(name).unsignedIntValue());
      };
      if (posted.name == kMediaResultNotification) {
        lines.push_back(stringOf(posted));
      } else {
        lines.push_back(number("Current") + "/" + number("Max") + " failed " + number("Fail") + " status " +
                        number("TransferStatus") + " at " + number("CurrentProgress") + " of " +
                        number("MaxProgress"));
      }
    }
    return lines;
  }

 private:
  static std::string stringOf(const Notification& posted) {
    char text[32];
    std::snprintf(text, sizeof text, "result 0x%08x",
                  posted.userInfo.get(key::kResultStatus).unsignedIntValue());
    return text;
  }
};

}  // namespace umsservice::testing
