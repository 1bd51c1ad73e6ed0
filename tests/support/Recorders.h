/// Ears for tests: what a host would have been told, in the order in which it was told.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "umsservice/Environment.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsservice::testing {

/// Records every notification of a center, and may run a handler of the test for each. Its end waits for a
/// worker that is still telling it something, and hears no more: a test may end while a released service
/// does.
class NotificationRecorder {
 public:
  explicit NotificationRecorder(std::shared_ptr<NotificationCenter> center);
  ~NotificationRecorder();

  /// Runs on the posting thread, after the notification was recorded.
  void onEach(std::function<void(const Notification&)> handler);

  std::vector<Notification> all() const;
  std::vector<Notification> named(const std::string& name) const;
  size_t count(const std::string& name) const { return named(name).size(); }
  /// Waits until `count` notifications of a name have come; false after ten seconds.
  bool waitFor(const std::string& name, size_t count = 1) const;
  /// Waits until a notification fulfils a condition; false after ten seconds.
  bool waitUntil(const std::function<bool(const Notification&)>& condition) const;
  void clear();

 private:
  /// Shared with the center: a post that has begun may come to its handler after the observer was removed.
  struct Heard {
    /// Takes a thread out again, however the test's handler ends.
    struct Leaving {
      Heard& heard;
      std::function<void(const Notification&)>& handler;
      ~Leaving();
    };
    void record(const Notification& notification);

    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<Notification> notifications;
    std::function<void(const Notification&)> handler;
    int inside = 0;  ///< threads that are recording or in the test's handler
    bool isOver = false;
  };

  const std::shared_ptr<NotificationCenter> center_;
  const std::shared_ptr<Heard> heard_ = std::make_shared<Heard>();
  std::vector<NotificationCenter::ObserverId> observers_;
};

/// Keeps log lines. `messages` gives them as "method message", without file and line number.
class LogRecorder final : public LogSink {
 public:
  void write(const std::string& line) override;
  std::vector<std::string> lines() const;
  std::vector<std::string> messages() const;
  /// Whether a line with exactly that message was written, by whichever method.
  bool has(const std::string& message) const;
  size_t count(const std::string& message) const;
  bool waitFor(const std::string& message) const;
  void clear();

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable arrived_;
  std::vector<std::string> lines_;
};

/// A debug level that a test turns.
class DebugLevelKnob final : public DebugLevelSource {
 public:
  int32_t debugLevel() override { return level.load(); }
  std::atomic<int32_t> level{0};
};

/// Keeps the outcome of every item.
class ItemRecorder final : public ItemObserver {
 public:
  void itemCounted(const ItemOutcome& outcome) override;
  std::vector<ItemOutcome> outcomes() const;
  bool waitFor(size_t count) const;

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable arrived_;
  std::vector<ItemOutcome> outcomes_;
};

/// Answers overwrite questions as a test says, and keeps what it was asked.
class ScriptedDelegate final : public QDDeviceConfirmDelegate {
 public:
  struct Answer {
    bool returned = true;
    bool isOverwrite = false;
    bool isNotAsk = false;
  };

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override;
  std::shared_ptr<OVFileService> getFileServiceObject(const MaybeString& locationID) override;

  /// Given to every question, unless `onAsk` is set.
  Answer answer;
  std::function<Answer(const std::string& path)> onAsk;
  std::function<std::shared_ptr<OVFileService>(const MaybeString& locationID)> onService;
  std::vector<std::string> asked() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> asked_;
};

}  // namespace umsservice::testing
