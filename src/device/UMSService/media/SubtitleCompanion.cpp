#include "SubtitleCompanion.h"

#include <cerrno>

#include "ChunkedCopy.h"
#include "StringPaths.h"
#include "umsservice/ServiceInfo.h"

namespace umsservice {
namespace {

constexpr auto kSendMethod = "-[UMSService sendSmiFile:srcVideoPath:destPath:mediaType:]";
constexpr auto kDeleteMethod = "-[UMSService deleteSmiFile:filePath:mediaType:]";
constexpr auto kHandlesMessage =
    "Open file Handle failed! source file handle = %@, destination file handle = %@";

/// The companion of a video in a folder; nil when the video's path names no file.
MaybeString companionPath(const std::string& folder, const std::string& videoPath) {
  std::string name = stringByDeletingPathExtension(lastPathComponent(videoPath));
  if (name.empty() || name == "/") return std::nullopt;
  return folder + "/" + name + ".smi";
}

const void* pointerTo(const MaybeString& text) {
  return text ? text->data() : nullptr;
}

}  // namespace

bool SubtitleCompanion::isDisconnected(const char* method) const {
  if (!context_.isReleased()) return false;
  context_.log.write(5, method, "Device Disconnected - %@", context_.identity.currentLocationID());
  return true;
}

bool SubtitleCompanion::sendSmiFile(const MaybeString& srcVideoPath, const MaybeString& destPath,
                                    uint32_t mediaType) const {
  if (mediaType != kMediaVideo) return false;
  if (!srcVideoPath || !destPath) {
    context_.log.write(3, kSendMethod, "Input parameter is invalid. srcPath = %p, destPath = %p",
                       pointerTo(srcVideoPath), pointerTo(destPath));
    return false;
  }
  MaybeString srcSmiPath = companionPath(stringByDeletingLastPathComponent(*srcVideoPath), *srcVideoPath);
  MaybeString destSmiPath = companionPath(*destPath, *srcVideoPath);
  if (!srcSmiPath || !destSmiPath) {
    context_.log.write(3, kSendMethod, "SMI file path is invalid. srcSmiPath = %p,  destSmiPath = %p",
                       pointerTo(srcSmiPath), pointerTo(destSmiPath));
    return false;
  }
  auto source = files_.attributes(*srcSmiPath);
  if (!source) {
    context_.log.write(1, kSendMethod, "SMI file does not exist. srcSmiPath = %@", srcSmiPath);
    return false;
  }
  if (isAlreadyThere(*destSmiPath, source->size)) return true;
  return hasRoomAndFolder(*destSmiPath, source->size) && copyCompanion(*srcSmiPath, *destSmiPath, *source);
}

bool SubtitleCompanion::isAlreadyThere(const std::string& destSmiPath, uint64_t size) const {
  if (!files_.exists(destSmiPath)) return false;
  auto existing = files_.attributes(destSmiPath);
  if (!existing) {
    context_.log.write(3, kSendMethod, "Get Attributes Error : [%@]", existing.error());
    return false;
  }
  if (existing->size != size) return false;
  context_.log.write(6, kSendMethod, "Already exist smi file : %@", destSmiPath);
  return true;
}

bool SubtitleCompanion::hasRoomAndFolder(const std::string& destSmiPath, uint64_t size) const {
  uint64_t freeSize = context_.spaces.volumeFreeSpace(destSmiPath);
  if (freeSize < size) {
    context_.log.write(3, kSendMethod,
                       "Not enough volume space. data Size = 0x%08x, volume Free Size = 0x%08x", size,
                       freeSize);
    return false;
  }
  std::string folder = stringByDeletingLastPathComponent(destSmiPath);
  if (folder.empty()) {
    context_.log.write(3, kSendMethod, "Creating local temp folder is failed.");
    return false;
  }
  if (files_.isFolder(folder)) return true;
  FileStatus made = files_.createFolders(folder);
  if (made) return true;
  context_.log.write(3, kSendMethod, "Create download folder is filed. Error = %@", made.error());
  return false;
}

bool SubtitleCompanion::copyCompanion(const std::string& srcSmiPath, const std::string& destSmiPath,
                                      const FileAttributes& attributes) const {
  // Opened first: a companion that cannot be read must not cost the one that is already there.
  auto source = files_.openForReading(srcSmiPath);
  if (!source) {
    context_.log.write(3, kSendMethod, kHandlesMessage, nullptr, nullptr);
    return false;
  }
  // A failing device can hide a file for a moment: a companion must not be emptied to be copied onto itself.
  auto existing = files_.attributes(destSmiPath);
  if (existing && existing->device == attributes.device && existing->inode == attributes.inode) return true;
  // Nothing that exists, or may exist, is given up for a copy that is to stop before its first byte.
  const bool isNew = !existing && existing.error().systemNumber == ENOENT;
  if (!isNew && isDisconnected(kSendMethod)) return false;
  auto destination = files_.createFile(destSmiPath);
  if (!destination) {
    context_.log.write(3, kSendMethod, "createFileAtPath Fail!");
    return false;
  }
  const void* destinationHandle = destination->get();
  const void* sourceHandle = source->get();
  if (isDisconnected(kSendMethod)) return false;
  // Companions are small: nobody is asked and nothing is reported in between.
  auto copied = copyInChunks(
      **source, **destination, attributes.size, [] { return true; }, [](uint64_t) { return true; });
  FileStatus closed = (*destination)->close();
  if (copied.end == ChunkedCopyResult::End::Complete && closed) return true;
  const FileError& error = copied.error ? *copied.error : closed.error();
  context_.log.write(3, kSendMethod, kHandlesMessage, sourceHandle, destinationHandle);
  context_.log.write(3, kSendMethod, "Name : %@", "NSFileHandleOperationException");
  context_.log.write(3, kSendMethod, "Reason :%@", error.words());
  return false;
}

/// A folder that happens to have the companion's name is not one, and stays.
FileStatus SubtitleCompanion::removeFile(const std::string& path) const {
  auto found = files_.linkAttributes(path);
  if (found && found->type == FileType::Directory) return FileError{EISDIR, FileError::Action::Writing, path};
  return files_.remove(path);
}

bool SubtitleCompanion::deleteSmiFile(const MaybeString& filePath, uint32_t mediaType) const {
  if (mediaType != kMediaVideo) return false;
  if (!filePath) {
    context_.log.write(3, kDeleteMethod, "Input parameter is invalid. filePath = %p", pointerTo(filePath));
    return false;
  }
  MaybeString smiPath = companionPath(stringByDeletingLastPathComponent(*filePath), *filePath);
  if (!smiPath) {
    context_.log.write(3, kDeleteMethod, "SMI file path is invalid. destSmiPath = %p", pointerTo(smiPath));
    return false;
  }
  if (isDisconnected(kDeleteMethod)) return false;
  FileStatus removed = removeFile(*smiPath);
  if (removed) return true;
  context_.log.write(3, kDeleteMethod, "Delete file is Failed. error = %@", removed.error());
  return false;
}

}  // namespace umsservice
