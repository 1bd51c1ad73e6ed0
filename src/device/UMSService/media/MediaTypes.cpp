#include "MediaTypes.h"

#include <algorithm>

#include "CaseFolding.h"
#include "StringPaths.h"

namespace umsservice {

const std::vector<std::string>& extensionsOf(int32_t mediaType) {
  static const std::vector<std::string> none;
  static const std::vector<std::string> music = {"mp3",  "m4a", "wav", "amr", "aac", "ogg",
                                                 "flac", "mid", "imy", "3ga", "wma"};
  static const std::vector<std::string> image = {"bmp", "gif", "jpg", "jpeg", "png", "wbmp"};
  static const std::vector<std::string> video = {"asf", "avi",  "flv", "k3g",  "mkv", "mp4", "m4v", "mov",
                                                 "mpg", "mpeg", "rm",  "rmvb", "skm", "svi", "wmv", "3gp"};
  static const std::vector<std::string> podcast = {"xml"};
  switch (mediaType) {
    case kMediaMusic:
      return music;
    case kMediaImage:
      return image;
    case kMediaVideo:
      return video;
    case kMediaPodcast:
      return podcast;
    default:
      return none;
  }
}

bool checkContentWithExtentions(std::string_view extension, const std::vector<std::string>& extLists) {
  if (!extLists.empty() && extLists.front() == "*") return true;
  return std::any_of(extLists.begin(), extLists.end(),
                     [&](const std::string& listed) { return equalIgnoringCase(listed, extension); });
}

bool checkContentWithExtentions(const MaybeString& extension, const MaybeArray& extLists) {
  if (!extension || !extLists) return false;
  auto listed = extLists->snapshot();
  if (!listed.empty() && listed.front().string() == "*") return true;
  return std::any_of(listed.begin(), listed.end(), [&](const Value& element) {
    const std::string* text = element.stringIfAny();
    return text && equalIgnoringCase(*text, *extension);
  });
}

int32_t mediaTypeOf(const std::string& path) {
  std::string extension = pathExtension(path);
  for (int32_t mediaType : {kMediaMusic, kMediaImage, kMediaVideo, kMediaPodcast}) {
    if (checkContentWithExtentions(extension, extensionsOf(mediaType))) return mediaType;
  }
  return kMediaUnknown;
}

}  // namespace umsservice
