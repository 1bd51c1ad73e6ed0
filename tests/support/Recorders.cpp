#include "Recorders.h"

#include <algorithm>
#include <chrono>

#include "umsservice/Notifications.h"

namespace umsservice::testing {
namespace {

/// Long enough for a loaded machine under a sanitizer; a passing test never waits for it.
constexpr std::chrono::seconds kPatience{10};

/// "[file:method-(line)] message" as "method message".
std::string methodAndMessage(const std::string& line) {
  size_t method = line.find(':') + 1;
  size_t end = line.find("-(", method);
  size_t message = line.find(")] ", end);
  return line.substr(method, end - method) + " " + line.substr(message + 3);
}

std::string messageOf(const std::string& line) {
  return line.substr(line.find(")] ", line.find("-(")) + 3);
}

}  // namespace

NotificationRecorder::NotificationRecorder(std::shared_ptr<NotificationCenter> center)
    : center_(std::move(center)) {
  for (const char* name : {kTransferProgressNotification, kUmsResultNotification, kMediaResultNotification}) {
    observers_.push_back(
        center_->addObserver(name, [heard = heard_](const Notification& posted) { heard->record(posted); }));
  }
}

NotificationRecorder::~NotificationRecorder() {
  for (auto observer : observers_) center_->removeObserver(observer);
  std::unique_lock lock(heard_->mutex);
  heard_->isOver = true;
  heard_->arrived.wait(lock, [this] { return heard_->inside == 0; });
}

void NotificationRecorder::Heard::record(const Notification& notification) {
  std::function<void(const Notification&)> current;
  {
    std::lock_guard lock(mutex);
    if (isOver) return;
    notifications.push_back({notification.name, notification.userInfo.mutableCopy()});
    current = handler;
    ++inside;
  }
  arrived.notify_all();
  Leaving leaving{*this, current};
  if (current) current(notification);
}

NotificationRecorder::Heard::Leaving::~Leaving() {
  handler = nullptr;  // it may own what the test destroys next
  std::lock_guard lock(heard.mutex);
  --heard.inside;
  heard.arrived.notify_all();
}

void NotificationRecorder::onEach(std::function<void(const Notification&)> handler) {
  std::lock_guard lock(heard_->mutex);
  heard_->handler = std::move(handler);
}

std::vector<Notification> NotificationRecorder::all() const {
  std::lock_guard lock(heard_->mutex);
  return heard_->notifications;
}

std::vector<Notification> NotificationRecorder::named(const std::string& name) const {
  auto found = all();
  std::erase_if(found, [&](const Notification& notification) { return notification.name != name; });
  return found;
}

bool NotificationRecorder::waitFor(const std::string& name, size_t count) const {
  std::unique_lock lock(heard_->mutex);
  const auto& posted = heard_->notifications;
  return heard_->arrived.wait_for(lock, kPatience, [&] {
    return static_cast<size_t>(std::count_if(posted.begin(), posted.end(),
                                             [&](const auto& each) { return each.name == name; })) >= count;
  });
}

bool NotificationRecorder::waitUntil(const std::function<bool(const Notification&)>& condition) const {
  std::unique_lock lock(heard_->mutex);
  const auto& posted = heard_->notifications;
  return heard_->arrived.wait_for(lock, kPatience,
                                  [&] { return std::any_of(posted.begin(), posted.end(), condition); });
}

void NotificationRecorder::clear() {
  std::lock_guard lock(heard_->mutex);
  heard_->notifications.clear();
}

void LogRecorder::write(const std::string& line) {
  {
    std::lock_guard lock(mutex_);
    lines_.push_back(line);
  }
  arrived_.notify_all();
}

std::vector<std::string> LogRecorder::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

std::vector<std::string> LogRecorder::messages() const {
  std::vector<std::string> messages;
  for (const std::string& line : lines()) messages.push_back(methodAndMessage(line));
  return messages;
}

size_t LogRecorder::count(const std::string& message) const {
  auto written = lines();
  return static_cast<size_t>(std::count_if(written.begin(), written.end(),
                                           [&](const auto& line) { return messageOf(line) == message; }));
}

bool LogRecorder::has(const std::string& message) const {
  return count(message) > 0;
}

bool LogRecorder::waitFor(const std::string& message) const {
  std::unique_lock lock(mutex_);
  return arrived_.wait_for(lock, kPatience, [&] {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const auto& line) { return messageOf(line) == message; });
  });
}

void LogRecorder::clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

void ItemRecorder::itemCounted(const ItemOutcome& outcome) {
  {
    std::lock_guard lock(mutex_);
    outcomes_.push_back(outcome);
  }
  arrived_.notify_all();
}

std::vector<ItemOutcome> ItemRecorder::outcomes() const {
  std::lock_guard lock(mutex_);
  return outcomes_;
}

bool ItemRecorder::waitFor(size_t count) const {
  std::unique_lock lock(mutex_);
  return arrived_.wait_for(lock, kPatience, [&] { return outcomes_.size() >= count; });
}

bool ScriptedDelegate::confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) {
  {
    std::lock_guard lock(mutex_);
    asked_.push_back(path);
  }
  Answer given = onAsk ? onAsk(path) : answer;
  isOverwrite = given.isOverwrite;
  isNotAsk = given.isNotAsk;
  return given.returned;
}

std::shared_ptr<OVFileService> ScriptedDelegate::getFileServiceObject(const MaybeString& locationID) {
  return onService ? onService(locationID) : nullptr;
}

std::vector<std::string> ScriptedDelegate::asked() const {
  std::lock_guard lock(mutex_);
  return asked_;
}

}  // namespace umsservice::testing
