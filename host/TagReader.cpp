#include "TagReader.h"

#include <exception>

#include "ImageTags.h"
#include "MusicTags.h"
#include "Paths.h"
#include "VideoTags.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::Dictionary;
using umsservice::FileSystem;
using umsservice::FileType;
using umsservice::MaybeDictionary;
namespace key = umsservice::key;

/// False for a file that is not what its name says.
bool addTags(const std::string& path, Dictionary& entries) {
  bool isMusic = mayHaveMusicTags(path), isVideo = mayHaveVideoTags(path);
  if (mayHaveImageTags(path)) return addImageTags(path, entries);
  if (!isMusic && !isVideo) return true;
  // Some films have tags and a cover as songs have; these go first.
  bool hasTags = isMusic && addMusicTags(path, entries);
  return (isVideo && addVideoTags(path, entries)) || hasTags;
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
    try {
      if (!addTags(path, entries)) return std::nullopt;
    } catch (const std::exception&) {  // a file that is broken, or asks for more memory than there is
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
