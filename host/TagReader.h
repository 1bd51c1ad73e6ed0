/// The tags of media files, as the service hands them on with item results and listings.
///
/// Keys: "FileName", "FilePath", "FileSize" always. Where the file has them: "Title", "Artist", "Album",
/// "Genre" (text), "TrackNumber", "Year" (numbers), "AlbumArt" (data: the front cover as it stands in the
/// file); "Duration" (number of seconds) of music and films; "Width", "Height" (numbers of pixels, as the
/// picture is shown) of images and films; "DateTaken" (text, "2021-06-05 04:31:07" by the camera's clock) and
/// "Camera" (text) of images; "VideoCodec", "AudioCodec" (text) of films. A file that is not what its name
/// says has no tags at all. Safe from any thread. `TagProcess.h` tells where they are read.
#pragma once

#include "umsservice/FileSystem.h"
#include "umsservice/OVMediaInfoFactory.h"

namespace umsctl {

class TagReader final : public umsservice::OVMediaInfoFactory {
 public:
  explicit TagReader(std::shared_ptr<umsservice::FileSystem> files) : files_(std::move(files)) {}

  /// Files of kinds without readable tags (old sounds and pictures) have a reader too: a listing shows them
  /// by name.
  std::shared_ptr<umsservice::OVMediaInfoBuilder> getBuilder(const std::string& path) override;

 private:
  const std::shared_ptr<umsservice::FileSystem> files_;
};

}  // namespace umsctl
