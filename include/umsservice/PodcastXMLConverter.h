/// The format of a podcast channel's index file, for hosts that make or read one themselves: documents as
/// their bytes, channels as dictionaries.
///
/// A channel is a dictionary of texts with its episodes, dictionaries too, under "children"; an episode is
/// known by its "Url". Const and safe from any thread. The service needs none from its host: it keeps the
/// index files of its device by itself.
#pragma once

#include <string>
#include <string_view>

#include "umsservice/Environment.h"
#include "umsservice/Export.h"

namespace umsservice {

class UMS_EXPORT PodcastXMLConverter {
 public:
  /// Takes the log seams from the environment.
  explicit PodcastXMLConverter(const Environment& environment);
  ~PodcastXMLConverter();
  PodcastXMLConverter(const PodcastXMLConverter&) = delete;
  PodcastXMLConverter& operator=(const PodcastXMLConverter&) = delete;

  /// A document of the channel's fields, and of its episodes when they are to be included; absent when it
  /// would be longer than what can be read back.
  MaybeString makePodcastXMLFromPodcastDictionary(const MaybeDictionary& podcast, bool includeEpisode) const;
  /// The channel that a document holds; absent, with a log line, when it is no index.
  MaybeDictionary makePodcastDictionaryFromXML(std::string_view document) const;
  /// The document with an episode more. Absent when one with its "Url" is there, which a log line says, and
  /// when the bytes are no document.
  MaybeString addPodcastEpisode(const Dictionary& episode, std::string_view document) const;
  /// Where the first episode with that "Url" stands among the elements below the root, counted from 0; absent
  /// when there is none.
  std::optional<size_t> positionOfPodcastEpisode(const Dictionary& episode, std::string_view document) const;

 private:
  struct UMS_HIDDEN Parts;
  const std::unique_ptr<const Parts> parts_;
};

}  // namespace umsservice
