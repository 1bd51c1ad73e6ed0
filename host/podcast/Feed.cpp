#include "podcast/Feed.h"

#include <algorithm>
#include <map>

#include "podcast/BoundedXml.h"

namespace umsctl {
namespace {

using namespace umsservice;

enum class Space { Rss, ITunes, Atom, Media, Content, Podcast, Other };

std::string inLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

/// By address, in any letter case as feeds write it; by the usual prefix where a feed forgot to declare it.
Space spaceOf(const std::string& address) {
  static const std::map<std::string, Space> spaces{
      {"http://www.itunes.com/dtds/podcast-1.0.dtd", Space::ITunes},
      {"itunes", Space::ITunes},
      {"http://www.w3.org/2005/atom", Space::Atom},
      {"atom", Space::Atom},
      {"http://search.yahoo.com/mrss/", Space::Media},
      {"media", Space::Media},
      {"http://purl.org/rss/1.0/modules/content/", Space::Content},
      {"content", Space::Content},
      {"https://podcastindex.org/namespace/1.0", Space::Podcast},
      {"podcast", Space::Podcast}};
  auto found = spaces.find(inLowerCase(address));
  return found == spaces.end() ? Space::Other : found->second;
}

/// One place in a feed where a field may stand: the text of an element, or one of its attributes. Of several
/// places for one field the earlier one in the table wins.
struct Source {
  Space space;
  const char* element;
  const char* attribute;  ///< null for the text
  const char* field;
};

constexpr Source kChannelSources[] = {
    {Space::Atom, "link", "href", "ChannelURL"},
    {Space::ITunes, "new-feed-url", nullptr, "ChannelURL"},
    {Space::Rss, "title", nullptr, "Title"},
    {Space::ITunes, "title", nullptr, "Title"},
    {Space::ITunes, "subtitle", nullptr, "SubTitle"},
    {Space::Rss, "description", nullptr, "Description"},
    {Space::ITunes, "author", nullptr, "Author"},
    {Space::Rss, "managingEditor", nullptr, "Author"},
    {Space::ITunes, "summary", nullptr, "Summary"},
    {Space::Rss, "link", nullptr, "Link"},
    {Space::Podcast, "guid", nullptr, "Guid"},
    {Space::Rss, "guid", nullptr, "Guid"},
    {Space::Rss, "lastBuildDate", nullptr, "LastBuildDate"},
    {Space::Rss, "pubDate", nullptr, "LastUpdateDate"},
    {Space::Rss, "webMaster", nullptr, "WebMaster"},
    {Space::ITunes, "image", "href", "ImageURL"},
    {Space::Rss, "category", nullptr, "Category"},
    {Space::ITunes, "category", "text", "Category"},
};

/// Inside the channel's "image".
constexpr Source kImageSources[] = {{Space::Rss, "url", nullptr, "ImageURL"}};

constexpr Source kItemSources[] = {
    {Space::Rss, "title", nullptr, "Title"},
    {Space::ITunes, "title", nullptr, "Title"},
    {Space::ITunes, "subtitle", nullptr, "SubTitle"},
    {Space::Rss, "description", nullptr, "Description"},
    {Space::Content, "encoded", nullptr, "Description"},
    {Space::ITunes, "author", nullptr, "Author"},
    {Space::Rss, "author", nullptr, "Author"},
    {Space::ITunes, "summary", nullptr, "Summary"},
    {Space::Rss, "link", nullptr, "Link"},
    {Space::Rss, "guid", nullptr, "Guid"},
    {Space::Rss, "pubDate", nullptr, "PublishDate"},
    {Space::ITunes, "explicit", nullptr, "Rating"},
    {Space::Media, "rating", nullptr, "Rating"},
    {Space::ITunes, "duration", nullptr, "Duration"},
    {Space::Media, "content", "duration", "Duration"},
    {Space::Rss, "enclosure", "url", "Url"},
    {Space::Rss, "enclosure", "length", "Length"},
    {Space::Rss, "enclosure", "type", "Type"},
    {Space::Media, "content", "medium", "DetailMediaType"},
    {Space::Media, "content", "bitrate", "Bitrate"},
    {Space::Media, "content", "samplingrate", "SamplingRate"},
};

std::string trimmed(const std::string& text) {
  constexpr auto kBlanks = " \t\r\n";
  size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

const std::string* attributeOf(const std::vector<XmlAttribute>& attributes, const char* name) {
  for (const XmlAttribute& attribute : attributes) {
    if (attribute.name == name) return &attribute.value;
  }
  return nullptr;
}

/// The fields of a channel or of one item, each with the source that it comes from.
class Fields {
 public:
  void offer(const Source& source, const std::string& text) {
    std::string value = trimmed(text);
    if (value.empty()) return;
    auto [held, isNew] = fields_.try_emplace(source.field, &source, value);
    // Both point into one table; of equal places the first in the feed stays.
    if (!isNew && &source < held->second.first) held->second = {&source, value};
  }
  bool has(const std::string& field) const { return fields_.contains(field); }
  Dictionary dictionary() const {
    Dictionary dictionary;
    for (const auto& [field, held] : fields_) dictionary.set(field, held.second);
    return dictionary;
  }

 private:
  std::map<std::string, std::pair<const Source*, std::string>> fields_;
};

/// Walks through "rss", "channel" and "item".
class FeedListener final : public XmlListener {
 public:
  void startElement(const XmlName& name, const std::vector<XmlAttribute>& attributes) override;
  void characters(std::string_view text) override {
    if (field_) text_.append(text);
  }
  void endElement() override;

  /// Nothing for a document that is none of RSS.
  MaybeDictionary podcast() const;
  const std::string& rootName() const { return rootName_; }

 private:
  enum class Scope { Outside, Channel, Image, Item };

  /// Some feeds give the elements of RSS a namespace: that of the root is theirs.
  Space spaceOf(const XmlName& name) const {
    return name.space == rootSpace_ ? Space::Rss : umsctl::spaceOf(name.space);
  }
  bool isPlain(const XmlName& name, const char* local) const {
    return spaceOf(name) == Space::Rss && name.local == local;
  }
  template <size_t Count>
  void take(const Source (&sources)[Count], Fields& fields, const XmlName& name,
            const std::vector<XmlAttribute>& attributes);
  void startInChannel(const XmlName& name, const std::vector<XmlAttribute>& attributes);
  void endItem();

  size_t depth_ = 0;
  Scope scope_ = Scope::Outside;
  std::string rootName_;
  std::string rootSpace_;
  bool isRss_ = false;
  bool hasChannel_ = false;
  Fields channel_;
  Fields image_;
  Fields item_;
  std::vector<Value> episodes_;
  const Source* field_ = nullptr;  ///< whose text is being read
  Fields* owner_ = nullptr;
  size_t fieldDepth_ = 0;
  std::string text_;
};

void FeedListener::startElement(const XmlName& name, const std::vector<XmlAttribute>& attributes) {
  ++depth_;
  if (field_) return;  // markup inside a text
  if (depth_ == 1) {
    rootName_ = name.local;
    rootSpace_ = name.space;
    isRss_ = name.local == "rss";
  } else if (depth_ == 2 && isRss_ && isPlain(name, "channel") && !hasChannel_) {
    hasChannel_ = true;
    scope_ = Scope::Channel;
  } else if (depth_ == 3 && scope_ == Scope::Channel) {
    startInChannel(name, attributes);
  } else if (depth_ == 4 && scope_ == Scope::Image) {
    take(kImageSources, image_, name, attributes);
  } else if (depth_ == 4 && scope_ == Scope::Item) {
    take(kItemSources, item_, name, attributes);
  }
}

void FeedListener::startInChannel(const XmlName& name, const std::vector<XmlAttribute>& attributes) {
  if (isPlain(name, "item")) {
    scope_ = Scope::Item;
    item_ = Fields();
  } else if (isPlain(name, "image")) {
    scope_ = Scope::Image;
  } else {
    take(kChannelSources, channel_, name, attributes);
  }
}

template <size_t Count>
void FeedListener::take(const Source (&sources)[Count], Fields& fields, const XmlName& name,
                        const std::vector<XmlAttribute>& attributes) {
  const Space space = spaceOf(name);
  // A further enclosure is another file.
  const bool isFurther = isPlain(name, "enclosure") && fields.has("Url");
  const std::string* relation = attributeOf(attributes, "rel");
  const bool isElsewhere = space == Space::Atom && name.local == "link" && (!relation || *relation != "self");
  if (isFurther || isElsewhere) return;
  for (const Source& source : sources) {
    if (source.space != space || name.local != source.element) continue;
    if (!source.attribute) {
      field_ = &source;
      owner_ = &fields;
      fieldDepth_ = depth_;
      text_.clear();
    } else if (const std::string* value = attributeOf(attributes, source.attribute)) {
      fields.offer(source, *value);
    }
  }
}

void FeedListener::endElement() {
  if (field_ && depth_ == fieldDepth_) {
    owner_->offer(*field_, text_);
    field_ = nullptr;
  }
  if (depth_ == 3 && scope_ == Scope::Item) endItem();
  if (depth_ == 3 && scope_ != Scope::Outside) scope_ = Scope::Channel;
  if (depth_ == 2) scope_ = Scope::Outside;
  --depth_;
}

void FeedListener::endItem() {
  if (item_.has("Url")) episodes_.emplace_back(item_.dictionary());
}

MaybeDictionary FeedListener::podcast() const {
  if (!hasChannel_) return std::nullopt;
  Dictionary podcast = channel_.dictionary();
  Dictionary image = image_.dictionary();
  if (!channel_.has("ImageURL") && image_.has("ImageURL")) podcast.set("ImageURL", image.get("ImageURL"));
  podcast.set("children", Array(episodes_));
  return podcast;
}

}  // namespace

Feed readFeed(std::string_view bytes) {
  FeedListener listener;
  std::string error = readXml(bytes, listener);
  if (!error.empty()) return {std::nullopt, "it is no feed: " + error};
  MaybeDictionary podcast = listener.podcast();
  if (podcast) return {podcast, ""};
  if (listener.rootName() == "rss") return {std::nullopt, "it is no feed: it has no channel"};
  return {std::nullopt, "it is no RSS feed: its root element is " + listener.rootName()};
}

}  // namespace umsctl
