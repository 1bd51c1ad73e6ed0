/// Two devices: the usual one as the source, and a destination of one or two folders behind the delegate.
#pragma once

#include "Story.h"

namespace umsservice::testing {

inline constexpr auto kDeviceToDeviceMethod = "-[UMSService doDeviceToDevcieContents:]";

/// A destination that is no `UMSService`: answers as a test says, and keeps what it was given.
class FakeFileService final : public OVFileService {
 public:
  struct Write {
    MaybeDictionary content;
    MaybeString subFolderName;
    uint32_t diskIndex = 0;
    uint32_t mediaType = 0;
    bool isOverWrite = false;
    std::shared_ptr<TransferCallback> callbackObject;
    TransferContext* context = nullptr;
    uint32_t* error = nullptr;

    bool answer(bool result, uint32_t number) const {
      *error = number;
      return result;
    }
  };

  MaybeArray diskInformation() override { return disks; }
  MaybeString modelName() override { return model; }
  bool createFolder(const MaybeString&) override { return false; }
  bool syncWriteFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& subFolderName,
                             uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<TransferCallback>& callbackObject,
                             TransferContext* context, uint32_t* error) override {
    writes.push_back(
        {fileInformation, subFolderName, diskIndex, mediaType, isOverWrite, nullptr, context, error});
    Write call = writes.back();
    call.callbackObject = callbackObject;
    return onWrite(call);
  }

  MaybeString model = "Foreign";
  Array disks;
  std::function<bool(const Write&)> onWrite;
  std::vector<Write> writes;
};

class DeviceToDeviceTest : public DeviceTest {
 protected:
  static constexpr uint32_t kRequest = 7;

  DeviceToDeviceTest() {
    useDelegate();
    delegate.onService = [this](const MaybeString& location) -> std::shared_ptr<OVFileService> {
      asked.push_back(location.value_or("(nil)"));
      return destination;
    };
    request.serviceID = kRequest;
    request.command = kCommandDeviceToDevice;
    request.contents = Array();
    request.mediaType = kMediaMusic;
    request.destPath = there + "/Music";
    request.srcLocationID = "location-1";
    request.destLocationID = "location-2";
  }

  /// A second device of one volume with its own service.
  std::shared_ptr<UMSService> secondDevice() {
    auto second = std::make_shared<UMSService>(surroundings.environment, "location-2");
    second->setDeviceInformation(Dictionary{{"MN", "Pocket Two"}});
    second->addDiskInformation(disk(1, there));
    return second;
  }

  std::string add(const std::string& name, const std::string& bytes) {
    const std::string path = sandbox.file("internal/Music/" + name, bytes);
    request.contents->append(content(path, name));
    return path;
  }
  std::string addLarge(const std::string& name, uint64_t size) {
    const std::string path = sandbox.patternFile("internal/Music/" + name, size);
    request.contents->append(content(path, name));
    return path;
  }
  bool run() { return service->doDeviceToDevcieContents(request); }
  Lines told() const { return story(surroundings); }
  Lines ends() const { return outcomesOf(surroundings); }
  std::vector<uint32_t> results() const {
    return numbers(notifications.named(kMediaResultNotification), key::kResultStatus);
  }

  std::string there = sandbox.folder("there");
  std::shared_ptr<OVFileService> destination;
  std::vector<std::string> asked;
  _serviceinfo request;
};

}  // namespace umsservice::testing
