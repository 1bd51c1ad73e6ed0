/// What holds for the bytes of every feed, whoever wrote them. The fuzz target looks for bytes that break it;
/// the tests go through the collected ones.
#pragma once

#include <string>

#include "podcast/Enclosures.h"
#include "podcast/Feed.h"
#include "umsservice/PodcastXMLConverter.h"

namespace umsservice::fuzzing {

/// Whether every name that a download of this address may have stays in its folder.
inline bool staysInFolder(const std::string& url) {
  for (const std::string& name : umsctl::downloadNames(url)) {
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) return false;
  }
  return true;
}

/// Nothing, or what does not hold. Reading never fails in another way than by saying why.
inline std::string brokenFeedProperty(std::string_view bytes) {
  struct Silence final : LogSink {
    void write(const std::string&) override {}
  };
  Environment environment;
  environment.logSink = std::make_shared<Silence>();
  environment.debugLevelSource = fixedDebugLevelSource(0);
  const PodcastXMLConverter converter(environment);

  umsctl::Feed feed = umsctl::readFeed(bytes);
  if (feed.podcast.has_value() != feed.error.empty()) return "there is a feed, or a reason why there is none";
  if (!feed.podcast) return "";
  const auto episodes = feed.podcast->get("children").array().value_or(Array()).snapshot();
  for (const Value& element : episodes) {
    MaybeString url = element.dictionary() ? element.dictionary()->string("Url") : std::nullopt;
    if (!url || url->empty()) return "every episode has a file";
    if (!staysInFolder(*url)) return "no address leads out of the folder of the downloads";
  }
  MaybeString index = converter.makePodcastXMLFromPodcastDictionary(feed.podcast, true);
  if (!index) return bytes.size() > size_t{1} << 20 ? "" : "a short feed gives an index";
  MaybeDictionary again = converter.makePodcastDictionaryFromXML(*index);
  if (!again || again->get("children").array()->count() != episodes.size())
    return "the index of a feed has all its episodes";
  return "";
}

}  // namespace umsservice::fuzzing
