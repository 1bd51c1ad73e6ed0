/// What holds for the bytes of every index file, whoever wrote them. The fuzz target looks for bytes that
/// break it; the tests go through the collected ones.
#pragma once

#include <string>

#include "QDUIPodcastXMLConverter.h"

namespace umsservice::fuzzing {

/// Nothing, or what does not hold. Reading never fails in another way than by saying no.
inline std::string brokenProperty(std::string_view bytes) {
  struct Silence final : LogSink {
    void write(const std::string&) override {}
  };
  Environment environment;
  environment.logSink = std::make_shared<Silence>();
  environment.debugLevelSource = fixedDebugLevelSource(0);
  const Log log(environment);
  const QDUIPodcastXMLConverter converter(log);

  MaybeDictionary podcast = converter.makePodcastDictionaryFromXML(bytes);
  if (podcast.has_value() != QDUIPodcastXMLConverter::isIndex(bytes))
    return "an index is read, and nothing else";
  XMLDocument document = converter.makePodcastXMLFromPodcastDictionary(podcast, true);
  std::optional<std::string> written = document.bytes();
  if (!written)
    return written || bytes.size() > XMLDocument::kLongest / 8 ? "" : "a short index can be written";

  MaybeDictionary again = converter.makePodcastDictionaryFromXML(*written);
  if (!again) return "what is written can be read";
  if (converter.makePodcastXMLFromPodcastDictionary(again, true).bytes() != written)
    return "read and written once more, an index stays the same";

  const Dictionary episode{{"Url", "http://fuzz/new"}};
  converter.addPodcastEpisode(episode, document);
  converter.removePodcastEpisode(episode, document);
  if (bytes.find("http://fuzz/new") == std::string_view::npos && document.bytes() != written)
    return "an episode that comes and goes leaves no trace";
  return "";
}

}  // namespace umsservice::fuzzing
