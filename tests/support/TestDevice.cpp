#include "TestDevice.h"

namespace umsservice::testing {
namespace {

Environment emptyEnvironment() {
  Environment environment;
  environment.notificationCenter = makeNotificationCenter();
  environment.placementRules = devicePlacementRules();
  return environment;
}

}  // namespace

TestSurroundings::TestSurroundings() : environment(emptyEnvironment()) {
  level->level = 7;
  environment.fileSystem = files;
  environment.logSink = log;
  environment.debugLevelSource = level;
  environment.itemObserver = items;
  environment.profileInfo = profile;
}

std::shared_ptr<UMSService> TestSurroundings::makeService() const {
  auto service = std::make_shared<UMSService>(environment, "location-1");
  service->setDeviceInformation(Dictionary{{"MN", "Pocket One"}});
  return service;
}

DeviceTest::DeviceTest() {
  service->addDiskInformation(disk(1, internal));
  service->addDiskInformation(disk(2, card));
}

DeviceTest::~DeviceTest() {
  notifications.onEach(nullptr);
}

Dictionary disk(int32_t diskType, const std::string& volumePath) {
  return Dictionary{{key::kDiskType, diskType}, {key::kVolumePath, volumePath}};
}

Dictionary content(const std::string& filePath, const std::string& fileName) {
  return Dictionary{{key::kFilePath, filePath}, {key::kFileName, fileName}};
}

std::vector<std::string> texts(const std::vector<Notification>& notifications, const char* name) {
  std::vector<std::string> found;
  for (const Notification& notification : notifications) {
    found.push_back(notification.userInfo.string(name).value_or("(none)"));
  }
  return found;
}

std::vector<uint32_t> numbers(const std::vector<Notification>& notifications, const char* name) {
  std::vector<uint32_t> found;
  for (const Notification& notification : notifications)
    found.push_back(notification.userInfo.get(name).unsignedIntValue());
  return found;
}

}  // namespace umsservice::testing
