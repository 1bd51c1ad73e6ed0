#include "ShownTags.h"

#include "Amounts.h"
#include "EscapedName.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;

std::string text(const Dictionary& tags, const char* name) {
  return escaped(tags.string(name).value_or(""));
}

std::string number(const Dictionary& tags, const char* name) {
  return tags.contains(name) ? std::to_string(tags.get(name).unsignedIntValue()) : "";
}

std::string pixels(const Dictionary& tags) {
  if (!tags.contains("Width") || !tags.contains("Height")) return "";
  return number(tags, "Width") + "x" + number(tags, "Height");
}

std::string codecs(const Dictionary& tags) {
  std::string picture = text(tags, "VideoCodec"), sound = text(tags, "AudioCodec");
  return picture + (picture.empty() || sound.empty() ? "" : ", ") + sound;
}

}  // namespace

std::string shownTag(const umsservice::MaybeDictionary& tags, ShownTag tag) {
  if (!tags) return "";
  switch (tag) {
    case ShownTag::Title:
      return text(*tags, "Title");
    case ShownTag::Artist:
      return text(*tags, "Artist");
    case ShownTag::Album:
      return text(*tags, "Album");
    case ShownTag::Genre:
      return text(*tags, "Genre");
    case ShownTag::TrackNumber:
      return number(*tags, "TrackNumber");
    case ShownTag::Year:
      return number(*tags, "Year");
    case ShownTag::Duration:
      return tags->contains("Duration") ? durationText(tags->get("Duration").unsignedIntValue()) : "";
    case ShownTag::Pixels:
      return pixels(*tags);
    case ShownTag::DateTaken:
      return text(*tags, "DateTaken");
    case ShownTag::Camera:
      return text(*tags, "Camera");
    default:
      return codecs(*tags);
  }
}

}  // namespace umsctl
