/// Direct transfers with a callback that keeps what it heard.
#pragma once

#include "LogExpectations.h"
#include "TypedEntries.h"

namespace umsservice::testing {

/// Keeps every report, as it came, and answers as a test says.
class ListeningCallback final : public TransferCallback {
 public:
  struct Report {
    bool full = false;  ///< came with full sizes
    TransferContext* context = nullptr;
    uint64_t max = 0;
    uint64_t current = 0;
  };

  bool transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override {
    return heard({false, context, maxTransferSize, currentTransferSize});
  }
  bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override {
    return heard({true, context, maxTransferSize, currentTransferSize});
  }

  std::vector<Report> reports;
  std::function<bool()> onReport;  ///< unset: YES

 private:
  bool heard(const Report& report) {
    reports.push_back(report);
    return !onReport || onReport();
  }
};

class TransferTest : public DeviceTest {
 protected:
  static constexpr uint32_t kUntouched = 77;

  bool write(const MaybeDictionary& file, const MaybeString& to, bool isOverWrite = false) {
    error = kUntouched;
    return service->writeFileToDevice(file, to, 9, 9, isOverWrite, callback, &context, &error);
  }
  bool read(const MaybeDictionary& file, const MaybeString& to, bool isOverWrite = false) {
    error = kUntouched;
    return service->readFileFromDevice(file, to, 9, 9, isOverWrite, callback, &context, &error);
  }
  bool syncWrite(const MaybeDictionary& file, const MaybeString& subFolder = std::nullopt,
                 uint32_t diskIndex = 0, uint32_t mediaType = kMediaMusic, bool isOverWrite = false) {
    error = kUntouched;
    return service->syncWriteFileToDevice(file, subFolder, diskIndex, mediaType, isOverWrite, callback,
                                          &context, &error);
  }
  /// The description of a new file of that name.
  Dictionary file(const std::string& name, const std::string& bytes) {
    return Dictionary{{key::kFilePath, sandbox.file("in/" + name, bytes)}};
  }
  Dictionary patternFile(const std::string& name, uint64_t size) {
    return Dictionary{{key::kFilePath, sandbox.patternFile("in/" + name, size)}};
  }

  std::shared_ptr<ListeningCallback> callback = std::make_shared<ListeningCallback>();
  TransferContext context;
  uint32_t error = kUntouched;
};

}  // namespace umsservice::testing
