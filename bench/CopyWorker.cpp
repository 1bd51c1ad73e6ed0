// The process that is timed against `cp`: one request of the service, from start to its result notification.
//
//   ums_bench_copy SOURCE DEVICE    SOURCE is a file, or a folder whose files keep their folders on the
//   device
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "umsservice/FileSystem.h"
#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace {

using namespace umsservice;

class NoLog final : public LogSink {
 public:
  void write(const std::string&) override {}
};

/// The files below a folder as a list of contents; each keeps its way from there as its name.
class Contents {
 public:
  Contents(FileSystem& files, std::string source) : files_(files), source_(std::move(source)) {}

  Array list() {
    if (files_.isFolder(source_)) {
      addFolder("");
    } else {
      add(source_, source_.substr(source_.rfind('/') + 1));
    }
    return Array(std::move(items_));
  }

 private:
  void addFolder(const std::string& way) {
    auto entries = files_.list(source_ + "/" + way);
    if (!entries) return;
    for (const DirectoryEntry& entry : *entries) {
      const std::string name = way + entry.name;
      if (entry.type == FileType::Directory) {
        addFolder(name + "/");
      } else {
        add(source_ + "/" + name, name);
      }
    }
  }

  void add(const std::string& path, const std::string& name) {
    items_.emplace_back(Dictionary{{key::kFilePath, path}, {key::kFileName, name}});
  }

  FileSystem& files_;
  const std::string source_;
  std::vector<Value> items_;
};

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
  if (!service->copyContentsMacToDevice(1, Contents(*environment.fileSystem, argv[1]).list(), kMediaMusic, 0))
    return 1;
  return end.wait();
}
