#include "FileTags.h"

#include <exception>

#include "ImageTags.h"
#include "MusicTags.h"
#include "VideoTags.h"

namespace umsctl {
namespace {

bool addTags(const std::string& path, umsservice::Dictionary& entries) {
  bool isMusic = mayHaveMusicTags(path), isVideo = mayHaveVideoTags(path);
  if (mayHaveImageTags(path)) return addImageTags(path, entries);
  if (!isMusic && !isVideo) return true;
  // Some films have tags and a cover as songs have; these go first.
  bool hasTags = isMusic && addMusicTags(path, entries);
  return (isVideo && addVideoTags(path, entries)) || hasTags;
}

}  // namespace

umsservice::MaybeDictionary fileTags(const std::string& path) {
  umsservice::Dictionary entries;
  try {
    if (!addTags(path, entries)) return std::nullopt;
  } catch (const std::exception&) {  // a file that is broken, or asks for more memory than there is
    return std::nullopt;
  }
  return entries;
}

}  // namespace umsctl
