/// A device made of two folders, with a service for it and ears on everything that it says.
#pragma once

#include <gtest/gtest.h>

#include <mutex>

#include "Recorders.h"
#include "Sandbox.h"
#include "WrappedFileSystem.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace umsservice::testing {

/// Profile answers as a test sets them; absent by default. Keeps the locations it was asked with.
class ScriptedProfile final : public ProfileInfo {
 public:
  MaybeString musicInternal, musicExternal, imageInternal, imageExternal;
  MaybeString movieInternal, movieExternal, podcastInternal, podcastExternal;

  MaybeString lastLocation() const {
    std::lock_guard lock(mutex_);
    return lastLocation_;
  }

  MaybeString contentsMusicDefaultFolderInternal(const MaybeString& at) override {
    return answer(at, musicInternal);
  }
  MaybeString contentsMusicDefaultFolderExternal(const MaybeString& at) override {
    return answer(at, musicExternal);
  }
  MaybeString contentsImageDefaultFolderInternal(const MaybeString& at) override {
    return answer(at, imageInternal);
  }
  MaybeString contentsImageDefaultFolderExternal(const MaybeString& at) override {
    return answer(at, imageExternal);
  }
  MaybeString contentsMovieDefaultFolderInternal(const MaybeString& at) override {
    return answer(at, movieInternal);
  }
  MaybeString contentsMovieDefaultFolderExternal(const MaybeString& at) override {
    return answer(at, movieExternal);
  }
  MaybeString contentsPodcastDefaultFolderInternal(const MaybeString& at) override {
    return answer(at, podcastInternal);
  }
  MaybeString contentsPodcastDefaultFolderExternal(const MaybeString& at) override {
    return answer(at, podcastExternal);
  }

 private:
  MaybeString answer(const MaybeString& location, const MaybeString& folder) {
    std::lock_guard lock(mutex_);
    lastLocation_ = location;
    return folder;
  }

  mutable std::mutex mutex_;
  MaybeString lastLocation_;
};

/// Surroundings for a service under test: real files (with faults on demand), a center of its own, recorded
/// log lines (level 7 unless turned), device placement rules unless changed.
struct TestSurroundings {
  TestSurroundings();

  Sandbox sandbox;
  std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
  std::shared_ptr<LogRecorder> log = std::make_shared<LogRecorder>();
  std::shared_ptr<DebugLevelKnob> level = std::make_shared<DebugLevelKnob>();
  std::shared_ptr<ItemRecorder> items = std::make_shared<ItemRecorder>();
  std::shared_ptr<ScriptedProfile> profile = std::make_shared<ScriptedProfile>();
  std::shared_ptr<ScriptedDelegate> delegate = std::make_shared<ScriptedDelegate>();
  Environment environment;
  NotificationRecorder notifications{environment.notificationCenter};

  /// A service for these surroundings at "location-1" with model "Pocket One"; no delegate, no volumes.
  std::shared_ptr<UMSService> makeService() const;
};

/// The fixture most tests use: a service with internal memory (index 0) and a card (index 1).
class DeviceTest : public ::testing::Test {
 protected:
  DeviceTest();
  ~DeviceTest() override;

  TestSurroundings surroundings;
  Sandbox& sandbox = surroundings.sandbox;
  NotificationRecorder& notifications = surroundings.notifications;
  LogRecorder& log = *surroundings.log;
  FaultyFileSystem& files = *surroundings.files;
  ItemRecorder& items = *surroundings.items;
  ScriptedDelegate& delegate = *surroundings.delegate;
  std::string internal = sandbox.folder("internal");
  std::string card = sandbox.folder("card");
  std::shared_ptr<UMSService> service = surroundings.makeService();

  /// Makes the scripted delegate the service's.
  void useDelegate() { service->setConfirmDelegate(surroundings.delegate); }
};

/// A volume's dictionary as a host passes it.
Dictionary disk(int32_t diskType, const std::string& volumePath);
/// A content dictionary.
Dictionary content(const std::string& filePath, const std::string& fileName);
/// The file names of progress notifications, or another text field, in order.
std::vector<std::string> texts(const std::vector<Notification>& notifications, const char* name);
/// A number field of notifications, in order.
std::vector<uint32_t> numbers(const std::vector<Notification>& notifications, const char* name);

}  // namespace umsservice::testing
