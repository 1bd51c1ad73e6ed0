#include "TagReader.h"

#include <audioproperties.h>
#include <fileref.h>
#include <tag.h>
#include <tfilestream.h>

#include <algorithm>
#include <exception>
#include <set>

#include "AlbumArt.h"
#include "Paths.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;
using umsservice::FileSystem;
using umsservice::FileType;
using umsservice::MaybeDictionary;
namespace key = umsservice::key;

/// The extensions that the tag library knows; it makes a new list of them for everyone who asks.
const std::set<std::string>& readableExtensions() {
  static const auto extensions = [] {
    std::set<std::string> names;
    for (const TagLib::String& name : TagLib::FileRef::defaultFileExtensions())
      names.insert(name.to8Bit(true));
    return names;
  }();
  return extensions;
}

bool hasReadableTags(const std::string& path) {
  std::string name = lastComponent(path);
  size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  std::string extension = name.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return readableExtensions().contains(extension);
}

void setText(Dictionary& entries, const char* name, const TagLib::String& text) {
  if (!text.isEmpty()) entries.set(name, text.to8Bit(true));
}

void setNumber(Dictionary& entries, const char* name, unsigned number) {
  if (number > 0) entries.set(name, uint32_t{number});
}

/// False when there is neither a tag nor a playing time: then it is no media file, whatever its name says.
bool addTags(const std::string& path, Dictionary& entries) {
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

class TagBuilder final : public umsservice::OVMediaInfoBuilder {
 public:
  explicit TagBuilder(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  MaybeDictionary build(const std::string& path) override {
    // Looked at first: opening anything but a regular file might wait for ever.
    auto found = files_->attributes(path);
    if (!found || found->type != FileType::Regular) return std::nullopt;
    Dictionary entries{
        {key::kFileName, lastComponent(path)}, {key::kFilePath, path}, {key::kFileSize, found->size}};
    if (!hasReadableTags(path)) return entries;
    try {
      if (!addTags(path, entries)) return std::nullopt;
    } catch (const std::exception&) {  // a file that asks for more memory than there is
      return std::nullopt;
    }
    return entries;
  }

 private:
  const std::shared_ptr<FileSystem> files_;
};

}  // namespace

std::shared_ptr<umsservice::OVMediaInfoBuilder> TagReader::getBuilder(const std::string&) {
  return std::make_shared<TagBuilder>(files_);
}

}  // namespace umsctl
