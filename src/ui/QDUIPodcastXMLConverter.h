/// The format of a podcast channel's index file: between the dictionary that hosts know, the document, and
/// the bytes of the file.
///
/// A channel is a dictionary of texts with its episodes, dictionaries too, under "children". Knows neither
/// threads nor devices nor where an index lies; see the podcast room for that. Const, and as safe from any
/// thread as the documents and dictionaries that are given to it.
#pragma once

#include <vector>

#include "Log.h"
#include "XMLDocument.h"

namespace umsservice {

class QDUIPodcastXMLConverter {
 public:
  /// The elements of a channel and of an episode, in the order in which they are written.
  static const std::vector<std::string>& channelFieldNames();
  static const std::vector<std::string>& postFieldNames();

  explicit QDUIPodcastXMLConverter(const Log& log) : log_(log) {}

  /// A document of the channel's fields, and of its episodes when they are to be included. Every field is
  /// written; one without a value (nil, or a null object) is an empty element.
  XMLDocument makePodcastXMLFromPodcastDictionary(const MaybeDictionary& podcast, bool includeEpisode) const;
  /// The dictionary that the bytes of an index hold: every element under its own name, the later one where a
  /// name comes twice, a null object for an empty one. Nil, and a log line, when they are no index.
  MaybeDictionary makePodcastDictionaryFromXML(std::string_view bytes) const;
  /// The same from a document in memory.
  MaybeDictionary makePodcastDictionaryFromXML(const XMLDocument& document) const;

  /// Appends an episode, unless there is one with its "Url": then a line says so and nothing changes.
  void addPodcastEpisode(const Dictionary& episode, XMLDocument& document) const;
  /// Removes the first episode with that "Url", if there is one.
  void removePodcastEpisode(const Dictionary& episode, XMLDocument& document) const;

  // The parts of the above, for callers that keep an index of their own over a document.

  /// The "Url" by which an episode is known, as it stands in a document; nil for none. Nothing matches nil:
  /// episodes without a "Url" are all different.
  static MaybeString identityOf(const Dictionary& episode);
  static MaybeString identityOf(const XMLElement& post);
  /// Appends an episode whatever the document has.
  XMLElement appendPodcastEpisode(const Dictionary& episode, XMLDocument& document) const;
  /// Whether bytes are an index; says nothing in the log.
  static bool isIndex(std::string_view bytes);
  static bool isPost(const XMLElement& element);
  /// One episode, and one element, as they are read.
  static Dictionary episodeOf(const XMLElement& post);
  static Value valueOf(const XMLElement& element);
  void reportSameEpisode(const std::string& url) const;

 private:
  const Log& log_;
};

}  // namespace umsservice
