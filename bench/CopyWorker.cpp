// The process that is timed against `cp`: one request of the service, from start to its result notification.
//
//   ums_bench_copy SOURCE DEVICE    SOURCE is a file, or a folder whose files keep their folders on the
//   device
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "SourceFiles.h"
#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace {

using namespace umsservice;

class NoLog final : public LogSink {
 public:
  void write(const std::string&) override {}
};

Array contentsOf(FileSystem& files, const std::string& source) {
  std::vector<Value> items;
  for (const bench::SourceFile& file : bench::sourceFiles(files, source))
    items.emplace_back(Dictionary{{key::kFilePath, file.path}, {key::kFileName, file.name}});
  return Array(std::move(items));
}

/// Waits for the result of the one request.
class End {
 public:
  explicit End(NotificationCenter& center) {
    center.addObserver(kUmsResultNotification, [this](const Notification& posted) {
      std::lock_guard lock(mutex_);
      status_ = posted.userInfo.get(key::kStatus).intValue();
      ended_ = true;
      arrived_.notify_all();
    });
  }
  int wait() {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return ended_; });
    return status_ == 0 ? 0 : 1;
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  bool ended_ = false;
  int status_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s SOURCE DEVICE\n", argv[0]);
    return 2;
  }
  Environment environment = Environment::forRunningSystem();
  environment.logSink = std::make_shared<NoLog>();
  environment.placementRules = devicePlacementRules();
  End end(*environment.notificationCenter);
  auto service = std::make_shared<UMSService>(environment, "bench");
  service->addDiskInformation(Dictionary{{key::kDiskType, 1}, {key::kVolumePath, argv[2]}});
  if (!service->copyContentsMacToDevice(1, contentsOf(*environment.fileSystem, argv[1]), kMediaMusic, 0))
    return 1;
  return end.wait();
}
