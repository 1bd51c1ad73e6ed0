/// The core room by itself: a context with ears on it, reports that are kept instead of posted, and long
/// operations that do what a test says.
#pragma once

#include "Dispatcher.h"
#include "Eventually.h"
#include "LogExpectations.h"
#include "RequestEntry.h"
#include "RequestQueue.h"
#include "TestDevice.h"
#include "TypedEntries.h"

namespace umsservice::testing {

/// Keeps what the host would be told of requests, as one line each.
class KeptReports final : public RequestReports {
 public:
  void sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                       uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex) override {
    keep(stringWithFormat("result %u: event %u status 0x%08x error %u space ",
                          {serviceInfo.serviceID, eventType, status, errornumber}) +
         std::to_string(static_cast<int64_t>(diskSpace)) + " volume " + std::to_string(storageIndex));
  }
  void sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId, uint32_t mediaType,
                               uint32_t currentFile, uint32_t maxFile, uint32_t transferStatus) override {
    keep(stringWithFormat("cancel %u: at %@ type %u file %u of %u status %u",
                          {serviceID, locationId, mediaType, currentFile, maxFile, transferStatus}));
    if (onCancel) onCancel(serviceID);
  }

  Lines lines() const {
    std::lock_guard lock(mutex_);
    return lines_;
  }

  /// Runs inside the announcement of a cancelled request.
  std::function<void(uint32_t serviceID)> onCancel;

 private:
  void keep(const std::string& line) {
    std::lock_guard lock(mutex_);
    lines_.push_back(line);
  }

  mutable std::mutex mutex_;
  Lines lines_;
};

/// Keeps the names of the operations that ran, and answers as the test says.
class ScriptedOperations final : public LongOperations {
 public:
  bool doDeleteMediaContents(const _serviceinfo&) override { return ran("doDeleteMediaContents"); }
  bool doDeletePodcastContents(const _serviceinfo&) override { return ran("doDeletePodcastContents"); }
  bool doCopyMediaContents(const _serviceinfo&) override { return ran("doCopyMediaContents"); }
  bool doCopyMediaContentsForAnyMediaType(const _serviceinfo&) override {
    return ran("doCopyMediaContentsForAnyMediaType");
  }
  bool doCopyPodcastContents(const _serviceinfo&) override { return ran("doCopyPodcastContents"); }
  bool doSyncMediaContents(const _serviceinfo&) override { return ran("doSyncMediaContents"); }
  bool doSyncPodcastContents(const _serviceinfo&) override { return ran("doSyncPodcastContents"); }
  bool doDeviceToDevcieContents(const _serviceinfo&) override { return ran("doDeviceToDevcieContents"); }
  bool doDeviceToDevicePodcast(const _serviceinfo&) override { return ran("doDeviceToDevicePodcast"); }

  std::function<bool()> answer = [] { return true; };
  Lines names;

 private:
  bool ran(const char* name) {
    names.emplace_back(name);
    return answer();
  }
};

/// An object of a host's; a test sees whether its section is free.
class HostsObject final : public SynchronizedObject {
 public:
  void lock() override {
    mutex_.lock();
    ++depth_;
  }
  void unlock() override {
    --depth_;
    mutex_.unlock();
  }
  std::string description() const override { return "<service>"; }
  bool isFree() const { return depth_ == 0; }

 private:
  std::recursive_mutex mutex_;
  std::atomic<int> depth_{0};
};

inline std::unique_ptr<_serviceinfo> request(uint32_t serviceID, uint32_t mediaType = kMediaMusic) {
  auto record = std::make_unique<_serviceinfo>();
  record->serviceID = serviceID;
  record->command = kCommandCopyToDevice;
  record->mediaType = mediaType;
  record->contents = Array{content("/in/a.mp3", "a.mp3")};
  return record;
}

class CoreTest : public ::testing::Test {
 protected:
  TestSurroundings surroundings;
  Sandbox& sandbox = surroundings.sandbox;
  LogRecorder& log = *surroundings.log;
  const std::shared_ptr<HostsObject> object = std::make_shared<HostsObject>();
  ServiceContext context{surroundings.environment, "not the host's words", "location-1", object};
  KeptReports reports;
  ScriptedOperations operations;
  umsservice::Dispatcher dispatcher{context, reports, operations};
  umsservice::RequestQueue queue{context, reports};
  umsservice::RequestEntry entry{context, queue};

  /// Runs the worker's body on this thread until `count` requests have run, then ends it.
  std::vector<_serviceinfo> runQueued(size_t count, const std::function<void(_serviceinfo&)>& during = {}) {
    std::vector<_serviceinfo> ran;
    if (count == 0) queue.exitServiceThread();
    queue.umsFileServiceQueueThread([&](_serviceinfo& serviceInfo) {
      ran.push_back(serviceInfo);
      if (ran.size() == count) queue.exitServiceThread();
      if (during) during(serviceInfo);
    });
    return ran;
  }

  static std::vector<uint32_t> idsOf(const std::vector<_serviceinfo>& requests) {
    std::vector<uint32_t> ids;
    for (const _serviceinfo& serviceInfo : requests) ids.push_back(serviceInfo.serviceID);
    return ids;
  }
};

using Ids = std::vector<uint32_t>;

}  // namespace umsservice::testing
