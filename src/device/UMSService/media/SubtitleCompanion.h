/// The ".smi" subtitle file that rides along with a video: copied after it, deleted with it.
///
/// Silent for every media type but video, so that operations call it without looking at the type. Not
/// counted and not reported; a failure fails only the companion. Runs on the worker thread.
#pragma once

#include "FolderOperations.h"
#include "ServiceContext.h"

namespace umsservice {

class SubtitleCompanion {
 public:
  explicit SubtitleCompanion(const ServiceContext& context) : context_(context), files_(context.files()) {}

  /// True when the companion of the video is in the destination folder afterwards. One of equal size that is
  /// already there is left alone; one of another size is replaced.
  bool sendSmiFile(const MaybeString& srcVideoPath, const MaybeString& destPath, uint32_t mediaType) const;
  /// True when a companion was removed.
  bool deleteSmiFile(const MaybeString& filePath, uint32_t mediaType) const;

 private:
  bool isAlreadyThere(const std::string& destSmiPath, uint64_t size) const;
  bool hasRoomAndFolder(const std::string& destSmiPath, uint64_t size) const;
  bool copyCompanion(const std::string& srcSmiPath, const std::string& destSmiPath,
                     const FileAttributes& attributes) const;
  FileStatus removeFile(const std::string& path) const;
  bool isDisconnected(const char* method) const;

  const ServiceContext& context_;
  FileSystem& files_;
};

}  // namespace umsservice
