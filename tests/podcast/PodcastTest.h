/// Channels and episodes as a host hands them over, and a look at the indexes that they leave behind.
#pragma once

#include "Story.h"

namespace umsservice::testing {

using Texts = Lines;

class PodcastTest : public DeviceTest {
 protected:
  const std::string podcasts = internal + "/Podcast";

  /// An episode whose file lies on the computer.
  Dictionary episode(const std::string& name, const std::string& bytes = "la la la") const {
    return Dictionary{{"Title", name},
                      {"Url", "http://host/" + name},
                      {"Length", bytes.size()},
                      {key::kFilePath, sandbox.file("in/" + name, bytes)}};
  }
  /// An episode whose file cannot be read.
  Dictionary missing(const std::string& name) const {
    return Dictionary{
        {"Url", "http://host/" + name}, {"Length", 1}, {key::kFilePath, sandbox.at("in/" + name)}};
  }
  static Dictionary channel(const Value& title, const std::vector<Value>& episodes) {
    return Dictionary{{"Title", title}, {"Link", "http://host"}, {"children", Array(episodes)}};
  }

  /// A request for the podcast folder of the internal memory.
  _serviceinfo request(const Array& contents, uint32_t serviceID = 7) const {
    _serviceinfo record;
    record.serviceID = serviceID;
    record.contents = contents;
    record.destPath = podcasts;
    record.mediaType = kMediaPodcast;
    return record;
  }
  bool copy(const Array& contents, uint32_t serviceID = 7) {
    return service->doCopyPodcastContents(request(contents, serviceID));
  }

  /// What a channel's index on the internal memory says; nil without one.
  MaybeDictionary indexOf(const std::string& name) {
    return service->checkXmlData(podcasts + "/" + name, name);
  }
  static Texts fieldOf(const MaybeDictionary& podcast, const char* field) {
    Texts texts;
    auto episodes = podcast ? podcast->get("children").array() : std::nullopt;
    if (!episodes) return {"(no episodes)"};
    for (const Value& element : episodes->snapshot())
      texts.push_back(element.dictionary()->string(field).value_or("(none)"));
    return texts;
  }
  /// Names of the episodes in an index, by their "Url".
  Texts listed(const std::string& name) {
    Texts names = fieldOf(indexOf(name), "Url");
    for (std::string& url : names) {
      if (url.starts_with("http://host/")) url.erase(0, 12);
    }
    return names;
  }

  std::vector<Notification> results() const { return notifications.named(kMediaResultNotification); }
  std::vector<Notification> progress() const { return notifications.named(kTransferProgressNotification); }
  static Dictionary podcastOf(const Notification& result) {
    return result.userInfo.get(key::kPodcastXmlInfo).dictionary().value_or(Dictionary());
  }
  uint32_t lastFailCount() const {
    auto all = numbers(progress(), key::kFail);
    return all.empty() ? 0 : all.back();
  }
  /// Each outcome as "KIND PATH NUMBER", with the sandbox as "$".
  Texts outcomes() const {
    constexpr const char* kKinds[] = {"done", "skipped", "failed", "not reached"};
    Texts lines;
    for (const ItemOutcome& outcome : items.outcomes()) {
      std::string path = outcome.path.value_or("(nil)");
      if (path.starts_with(sandbox.path())) path.replace(0, sandbox.path().size(), "$");
      char number[16];
      std::snprintf(number, sizeof number, "0x%08x", outcome.errorNumber);
      lines.push_back(std::to_string(outcome.index) + " " + kKinds[static_cast<int>(outcome.kind)] + " " +
                      path + " " + number);
    }
    return lines;
  }
  void forget() {
    notifications.clear();
    log.clear();
  }
  /// Runs something when the first notification of a name comes.
  void once(const std::string& name, std::function<void()> action) {
    auto done = std::make_shared<bool>(false);
    notifications.onEach([name, action, done](const Notification& posted) {
      if (posted.name == name && !std::exchange(*done, true)) action();
    });
  }
};

}  // namespace umsservice::testing
