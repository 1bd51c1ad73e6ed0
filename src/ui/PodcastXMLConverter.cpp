#include "umsservice/PodcastXMLConverter.h"

#include "QDUIPodcastXMLConverter.h"

namespace umsservice {
namespace {

/// Where an episode of that "Url" stands among the elements below the root; nothing for an unknown one.
std::optional<size_t> positionIn(const XMLDocument& document, const MaybeString& url) {
  if (!url) return std::nullopt;
  size_t position = 0;
  for (auto child = document.root().firstChild(); child; child = child->next(), ++position) {
    if (QDUIPodcastXMLConverter::isPost(*child) && QDUIPodcastXMLConverter::identityOf(*child) == url)
      return position;
  }
  return std::nullopt;
}

}  // namespace

struct PodcastXMLConverter::Parts {
  explicit Parts(const Environment& environment) : log(environment) {}

  const Log log;
  const QDUIPodcastXMLConverter converter{log};
};

PodcastXMLConverter::PodcastXMLConverter(const Environment& environment)
    : parts_(std::make_unique<const Parts>(environment)) {}

PodcastXMLConverter::~PodcastXMLConverter() = default;

MaybeString PodcastXMLConverter::makePodcastXMLFromPodcastDictionary(const MaybeDictionary& podcast,
                                                                     bool includeEpisode) const {
  return parts_->converter.makePodcastXMLFromPodcastDictionary(podcast, includeEpisode).bytes();
}

MaybeDictionary PodcastXMLConverter::makePodcastDictionaryFromXML(std::string_view document) const {
  return parts_->converter.makePodcastDictionaryFromXML(document);
}

MaybeString PodcastXMLConverter::addPodcastEpisode(const Dictionary& episode,
                                                   std::string_view document) const {
  auto parsed = XMLDocument::parse(document);
  if (!parsed.document) return std::nullopt;
  MaybeString url = QDUIPodcastXMLConverter::identityOf(episode);
  if (positionIn(*parsed.document, url)) {
    parts_->converter.reportSameEpisode(*url);
    return std::nullopt;
  }
  parts_->converter.appendPodcastEpisode(episode, *parsed.document);
  return parsed.document->bytes();
}

std::optional<size_t> PodcastXMLConverter::positionOfPodcastEpisode(const Dictionary& episode,
                                                                    std::string_view document) const {
  auto parsed = XMLDocument::parse(document);
  if (!parsed.document) return std::nullopt;
  return positionIn(*parsed.document, QDUIPodcastXMLConverter::identityOf(episode));
}

}  // namespace umsservice
