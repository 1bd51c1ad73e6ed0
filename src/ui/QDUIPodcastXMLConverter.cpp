#include "QDUIPodcastXMLConverter.h"

namespace umsservice {
namespace {

constexpr auto kReadMethod = "-[QDUIPodcastXMLConverter makePodcastDictionaryFromXML:]";
constexpr auto kChannel = "channel";
constexpr auto kPost = "Post";
constexpr auto kChildren = "children";
constexpr auto kUrl = "Url";

/// What an element holds for a value. Hosts give texts and numbers, and a null object where they have
/// nothing.
MaybeString textOf(const Value& value) {
  if (value.isNil() || value.kind() == Value::Kind::Null) return std::nullopt;
  return value.description();
}

void appendFields(const XMLElement& parent, const std::vector<std::string>& names,
                  const MaybeDictionary& fields) {
  for (const std::string& name : names)
    parent.append(name, fields ? textOf(fields->get(name)) : std::nullopt);
}

std::optional<XMLElement> postWith(const MaybeString& url, const XMLDocument& document) {
  if (!url) return std::nullopt;
  auto child = document.root().firstChild();
  while (child && !(child->isNamed(kPost) && QDUIPodcastXMLConverter::identityOf(*child) == url))
    child = child->next();
  return child;
}

}  // namespace

const std::vector<std::string>& QDUIPodcastXMLConverter::channelFieldNames() {
  static const std::vector<std::string> names = {
      "ChannelURL", "Title",         "SubTitle",       "Description", "Author",   "Summary", "Link",
      "Guid",       "LastBuildDate", "LastUpdateDate", "WebMaster",   "ImageURL", "Category"};
  return names;
}

const std::vector<std::string>& QDUIPodcastXMLConverter::postFieldNames() {
  static const std::vector<std::string> names = {
      "Title",      "SubTitle",    "Description",     "Author",      "Summary", "Link",
      "Guid",       "PublishDate", "Rating",          "Duration",    "Url",     "Length",
      "Type",       "FilePath",    "DetailMediaType", "DRMProperty", "Bitrate", "SamplingRate",
      "AudioCodec", "VideoCodec",  "DownloadDate"};
  return names;
}

XMLDocument QDUIPodcastXMLConverter::makePodcastXMLFromPodcastDictionary(const MaybeDictionary& podcast,
                                                                         bool includeEpisode) const {
  XMLDocument document(kChannel);
  appendFields(document.root(), channelFieldNames(), podcast);
  auto episodes = podcast && includeEpisode ? podcast->get(kChildren).array() : std::nullopt;
  if (!episodes) return document;
  for (const Value& element : episodes->snapshot()) {
    if (auto episode = element.dictionary()) appendPodcastEpisode(*episode, document);
  }
  return document;
}

MaybeDictionary QDUIPodcastXMLConverter::makePodcastDictionaryFromXML(std::string_view bytes) const {
  auto parsed = XMLDocument::parse(bytes);
  if (parsed.document) return makePodcastDictionaryFromXML(*parsed.document);
  log_.write(3, kReadMethod, "failed to load xml:%@", parsed.error);
  return std::nullopt;
}

MaybeDictionary QDUIPodcastXMLConverter::makePodcastDictionaryFromXML(const XMLDocument& document) const {
  if (!document.root().isNamed(kChannel)) {
    log_.write(3, kReadMethod, "Invalid podcast xml:%@", document.root().name());
    return std::nullopt;
  }
  Dictionary podcast;
  std::vector<Value> episodes;
  for (auto child = document.root().firstChild(); child; child = child->next()) {
    if (isPost(*child)) {
      episodes.emplace_back(episodeOf(*child));
    } else {
      podcast.set(child->name(), valueOf(*child));
    }
  }
  // Last, so that an element of that name in a damaged file does not cost the episodes.
  podcast.set(kChildren, Array(std::move(episodes)));
  return podcast;
}

bool QDUIPodcastXMLConverter::isIndex(std::string_view bytes) {
  auto parsed = XMLDocument::parse(bytes);
  return parsed.document && parsed.document->root().isNamed(kChannel);
}

bool QDUIPodcastXMLConverter::isPost(const XMLElement& element) {
  return element.isNamed(kPost);
}

/// An element without text is there, but has no value.
Value QDUIPodcastXMLConverter::valueOf(const XMLElement& element) {
  MaybeString text = element.text();
  return text ? Value(std::move(*text)) : Value(Null());
}

Dictionary QDUIPodcastXMLConverter::episodeOf(const XMLElement& post) {
  Dictionary episode;
  for (auto field = post.firstChild(); field; field = field->next())
    episode.set(field->name(), valueOf(*field));
  return episode;
}

void QDUIPodcastXMLConverter::addPodcastEpisode(const Dictionary& episode, XMLDocument& document) const {
  MaybeString url = identityOf(episode);
  if (postWith(url, document)) {
    reportSameEpisode(*url);
  } else {
    appendPodcastEpisode(episode, document);
  }
}

void QDUIPodcastXMLConverter::removePodcastEpisode(const Dictionary& episode, XMLDocument& document) const {
  if (auto post = postWith(identityOf(episode), document)) post->remove();
}

MaybeString QDUIPodcastXMLConverter::identityOf(const Dictionary& episode) {
  MaybeString url = textOf(episode.get(kUrl));
  return url ? MaybeString(XMLDocument::legalText(*url)) : std::nullopt;
}

MaybeString QDUIPodcastXMLConverter::identityOf(const XMLElement& post) {
  auto url = post.firstChild(kUrl);
  return url ? MaybeString(url->text().value_or("")) : std::nullopt;
}

XMLElement QDUIPodcastXMLConverter::appendPodcastEpisode(const Dictionary& episode,
                                                         XMLDocument& document) const {
  XMLElement post = document.root().append(kPost);
  appendFields(post, postFieldNames(), episode);
  return post;
}

void QDUIPodcastXMLConverter::reportSameEpisode(const std::string& url) const {
  log_.plain("same episode: %@", url);
}

}  // namespace umsservice
