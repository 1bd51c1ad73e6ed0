#include "MusicTags.h"

#include <audioproperties.h>
#include <fileref.h>
#include <tag.h>
#include <tfilestream.h>

#include <set>

#include "AlbumArt.h"
#include "Paths.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;

void setText(Dictionary& entries, const char* name, const TagLib::String& text) {
  if (!text.isEmpty()) entries.set(name, text.to8Bit(true));
}

void setNumber(Dictionary& entries, const char* name, unsigned number) {
  if (number > 0) entries.set(name, uint32_t{number});
}

}  // namespace

bool mayHaveMusicTags(const std::string& path) {
  // The library makes a new list for everyone who asks.
  static const auto extensions = [] {
    std::set<std::string> names;
    for (const TagLib::String& name : TagLib::FileRef::defaultFileExtensions())
      names.insert(name.to8Bit(true));
    return names;
  }();
  return extensions.contains(extensionOf(path));
}

bool addMusicTags(const std::string& path, Dictionary& entries) {
  TagLib::FileStream stream(path.c_str(), true);
  if (!stream.isOpen()) return false;
  TagLib::FileRef file(&stream);
  if (file.isNull() || !file.file()->isValid()) return false;
  size_t bare = entries.count();
  if (const TagLib::Tag* tag = file.tag()) {
    setText(entries, "Title", tag->title());
    setText(entries, "Artist", tag->artist());
    setText(entries, "Album", tag->album());
    setText(entries, "Genre", tag->genre());
    setNumber(entries, "TrackNumber", tag->track());
    setNumber(entries, "Year", tag->year());
  }
  const TagLib::AudioProperties* sound = file.audioProperties();
  int milliseconds = sound ? sound->lengthInMilliseconds() : 0;
  if (milliseconds > 0) entries.set("Duration", static_cast<uint32_t>(milliseconds + 500) / 1000);
  auto art = albumArtOf(*file.file());
  if (art) entries.set("AlbumArt", std::move(*art));
  return entries.count() > bare;
}

}  // namespace umsctl
