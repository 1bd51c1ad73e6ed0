/// The tags of media files, as the service hands them on with item results and listings.
///
/// Keys: "FileName", "FilePath", "FileSize" always; "Title", "Artist", "Album", "Genre" (text),
/// "TrackNumber", "Year", "Duration" (numbers; seconds) and "AlbumArt" (data: the front cover as it stands in
/// the file) where the file has them. Stateless; safe from any thread.
#pragma once

#include "umsservice/FileSystem.h"
#include "umsservice/OVMediaInfoFactory.h"

namespace umsctl {

class TagReader final : public umsservice::OVMediaInfoFactory {
 public:
  explicit TagReader(std::shared_ptr<umsservice::FileSystem> files) : files_(std::move(files)) {}

  /// Files of kinds without readable tags (images, old films) have a reader too: a listing shows them by
  /// name.
  std::shared_ptr<umsservice::OVMediaInfoBuilder> getBuilder(const std::string& path) override;

 private:
  const std::shared_ptr<umsservice::FileSystem> files_;
};

}  // namespace umsctl
