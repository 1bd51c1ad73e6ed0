#include "SingleFile.h"

#include <algorithm>
#include <cerrno>
#include <functional>

#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kHandleMessage =
    "Open file Handle failed! source file handle = %@, destination file handle = %@";

/// What deleting a file gives back: players keep files in units of up to 64 KiB, so it can be far more than
/// the file's size.
uint64_t roomOf(const FileAttributes& existing) {
  constexpr uint64_t kBlock = 4096;
  return std::max(existing.allocated, (existing.size + kBlock - 1) / kBlock * kBlock);
}

}  // namespace

struct SingleFile::Pair {
  std::unique_ptr<FileHandle> source;
  std::unique_ptr<FileHandle> destination;
};

struct SingleFile::Manner {
  const char* method;
  const char* announcement;
  const char* spaceMessage;
  bool makesFolder;        ///< a move expects its destination folder
  bool hearsCancellation;  ///< a move stops for a shutdown only
  bool clearsErrorNumber;
  bool removesSource;  ///< once the device has the copy
};

const SingleFile::Manner SingleFile::kCopying = {
    "-[UMSService umsCopyFile:srcPath:destPath:context:error:]",
    "Copy File : %@  to  %@",
    "Not enough volume space. data Size = 0x%08x, volume Free Size = 0x%08x",
    true,
    true,
    true,
    false,
};

const SingleFile::Manner SingleFile::kMoving = {
    "-[UMSService umsMoveFile:srcPath:destPath:context:error:]",
    "Move File : %@  to  %@",
    "Not enough volume space. data Size = 0x%08x, volume Free Size = 0x%08xs",
    false,
    false,
    false,
    true,
};

FileOutcome SingleFile::copy(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* notifier) const {
  return transfer(kCopying, serviceID, srcPath, destPath, notifier);
}

FileOutcome SingleFile::move(const MaybeString& srcPath, const MaybeString& destPath,
                             OVUmsDeviceNotifier* notifier) const {
  return transfer(kMoving, 0, srcPath, destPath, notifier);
}

FileOutcome SingleFile::transfer(const Manner& manner, uint32_t serviceID, const MaybeString& srcPath,
                                 const MaybeString& destPath, OVUmsDeviceNotifier* notifier) const {
  if (!srcPath || !destPath || !notifier) {
    context_.log.write(3, manner.method,
                       "Input Parameters is invalid. srcPath = %@, destPath = %@, context = %p", srcPath,
                       destPath, static_cast<const void*>(notifier));
    return {};
  }
  constexpr int kTrace = 6;
  const bool isTraced = context_.log.isWritten(kTrace);
  if (isTraced) {
    context_.log.always(manner.method, manner.announcement, srcPath, destPath);
    // The tests leave lines then, which are not about a file that is there.
    if (files_.exists(*destPath)) return FileOutcome{.errorNumber = kErrorFileExists};
  }
  FileAttributes source;
  if (auto refused = refusal(manner, *srcPath, *destPath, source)) return *refused;
  Pair pair;
  if (auto refused = openBoth(manner, *srcPath, source.type, *destPath, pair)) return *refused;
  FileOutcome outcome = copyBytes(manner, serviceID, pair, source.size, *notifier);
  pair.source.reset();  // some devices give a file's room back only when nobody has it open
  if (manner.removesSource && outcome.result) outcome = removeSource(*srcPath, std::move(outcome));
  context_.log.write(6, manner.method, "EXIT");
  return outcome;
}

/// The tests before anything is created. A host is told of a file that is at the destination before all else,
/// but that is only looked for once something is amiss: making the file fails where there is one, and a look
/// at each of many small files takes time.
std::optional<FileOutcome> SingleFile::refusal(const Manner& manner, const std::string& srcPath,
                                               const std::string& destPath, FileAttributes& source) const {
  auto found = files_.attributes(srcPath);
  const uint64_t freeSize = found ? context_.spaces.volumeFreeSpaceForNewFile(destPath) : 0;
  const bool hasFolder = !manner.makesFolder || !stringByDeletingLastPathComponent(destPath).empty();
  if (found && found->size <= freeSize && hasFolder) {
    source = *found;
    return std::nullopt;
  }
  if (files_.exists(destPath)) return FileOutcome{.errorNumber = kErrorFileExists};
  if (!found) {
    context_.log.write(3, manner.method, "Get Attributes Error : [%@]", found.error());
    return FileOutcome{.errorNumber = kErrorAttributesUnreadable, .reason = found.error().words()};
  }
  if (found->size > freeSize) {
    context_.log.write(3, manner.method, manner.spaceMessage, found->size, freeSize);
    return FileOutcome{.errorNumber = kErrorVolumeFull};
  }
  return FileOutcome{.errorNumber = kErrorCreateFolderFailed};
}

std::optional<FileOutcome> SingleFile::openBoth(const Manner& manner, const std::string& srcPath,
                                                FileType seenType, const std::string& destPath,
                                                Pair& pair) const {
  // A failing device can hide a file for a moment; what it hid must not be emptied.
  auto destination = files_.createNewFile(destPath);
  if (!destination && files_.exists(destPath)) return FileOutcome{.errorNumber = kErrorFileExists};
  if (!destination && manner.makesFolder) {
    // Only now, for the same reason: most often the folder is there.
    std::string words;
    if (!folders_.createFolder(stringByDeletingLastPathComponent(destPath), &words))
      return FileOutcome{.errorNumber = kErrorCreateFolderFailed, .reason = words};
    if (destination.error().systemNumber == ENOENT) destination = files_.createNewFile(destPath);
  }
  if (!destination) {
    context_.log.write(3, manner.method, "createFileAtPath Fail!");
    return FileOutcome{.reason = destination.error().words()};
  }
  auto source = seenType == FileType::Regular ? files_.openSeen(srcPath) : files_.openForReading(srcPath);
  if (!source) {
    context_.log.write(3, manner.method, kHandleMessage, nullptr,
                       static_cast<const void*>(destination->get()));
    return FileOutcome{.errorNumber = kErrorOpenFailed, .reason = source.error().words()};
  }
  pair = {std::move(*source), std::move(*destination)};
  return std::nullopt;
}

FileOutcome SingleFile::copyBytes(const Manner& manner, uint32_t serviceID, Pair& pair, uint64_t size,
                                  OVUmsDeviceNotifier& notifier) const {
  using End = ChunkedCopyResult::End;
  bool cancelled = false;
  auto mayGoOn = [&] {
    if (context_.isReleased()) {
      context_.log.write(3, manner.method, "Object Releasing process stop!");
      return false;
    }
    cancelled = manner.hearsCancellation && context_.cancelList.isCancelServiceId(serviceID);
    if (cancelled) context_.log.write(5, manner.method, "Cancel File Copy");
    return !cancelled;
  };
  auto report = [&](uint64_t copied) {
    notifier.addCurrentSendBytesEx(copied);
    return true;
  };
  notifier.setMaxSendBytes(size);
  ChunkedCopyResult copied =
      copyInChunks(*pair.source, *pair.destination, size, std::ref(mayGoOn), std::ref(report));
  if (copied.end == End::Failed) return exception(manner, *copied.error, copied.copied);
  // What the system still held back is only certain once the file is closed.
  FileStatus kept =
      manner.removesSource && copied.end == End::Complete ? pair.destination->sync() : FileStatus(Done{});
  FileStatus closed = pair.destination->close();
  if (!kept) return exception(manner, kept.error(), copied.copied);
  if (!closed) return exception(manner, closed.error(), copied.copied);
  if (copied.end == End::Complete) {
    FileOutcome complete{.result = true, .bytes = copied.copied};
    if (manner.clearsErrorNumber) complete.errorNumber = kErrorNone;
    return complete;
  }
  if (!manner.clearsErrorNumber) return {.bytes = copied.copied};
  return {.result = true, .errorNumber = kErrorStopped, .bytes = copied.copied};
}

/// Reading and writing raise on the platform; hosts know the name.
FileOutcome SingleFile::exception(const Manner& manner, const FileError& error, uint64_t bytes) const {
  context_.log.write(3, manner.method, "Name : %@", "NSFileHandleOperationException");
  context_.log.write(3, manner.method, "Reason :%@", error.words());
  return {.errorNumber = kErrorCopyFailed, .bytes = bytes, .reason = error.words()};
}

FileOutcome SingleFile::removeSource(const std::string& srcPath, FileOutcome copied) const {
  auto source = files_.attributes(srcPath);
  // A source that has grown while it was copied has bytes that are nowhere else.
  bool isWhole = source && source->size == copied.bytes;
  FileStatus removed =
      isWhole ? files_.remove(srcPath) : FileStatus(FileError{EBUSY, FileError::Action::Writing, srcPath});
  if (removed) return copied;
  context_.log.write(3, kMoving.method, "removeIemAtPath Fail!");
  copied.result = false;
  copied.reason = removed.error().words();
  return copied;
}

FileOutcome SingleFile::remove(const MaybeString& path) const {
  FileStatus removed =
      path ? files_.remove(*path) : FileStatus(FileError{EINVAL, FileError::Action::Writing, {}});
  if (removed) return {.result = true, .errorNumber = kErrorNone};
  context_.log.write(3, "-[UMSService umsDeleteFile:srcPath:error:]", "Delete file is Failed. error = %@",
                     removed.error());
  return {.errorNumber = kErrorDeleteFailed, .reason = removed.error().words()};
}

FileOutcome SingleFile::removeInFavourOf(const std::string& srcPath, const std::string& destPath) const {
  auto source = files_.attributes(srcPath);
  if (!source) {
    context_.log.write(3, kCopying.method, "Get Attributes Error : [%@]", source.error());
    return {.errorNumber = kErrorAttributesUnreadable, .reason = source.error().words()};
  }
  auto existing = files_.attributes(destPath);
  if (!existing) return {.errorNumber = kErrorDeleteFailed, .reason = existing.error().words()};
  if (source->device == existing->device && source->inode == existing->inode) {
    return {.errorNumber = kErrorFileExists};
  }
  // Where deleting it would not make room enough, the existing file is better than none.
  const uint64_t freed = roomOf(*existing);
  const uint64_t freeSize = source->size > freed ? context_.spaces.volumeFreeSpace(destPath) : 0;
  if (source->size > freed && freeSize < source->size - freed) {
    context_.log.write(3, kCopying.method, kCopying.spaceMessage, source->size, freeSize);
    return {.errorNumber = kErrorVolumeFull};
  }
  auto opened = files_.openForReading(srcPath);
  if (!opened) {
    context_.log.write(3, kCopying.method, kHandleMessage, nullptr, nullptr);
    return {.errorNumber = kErrorOpenFailed, .reason = opened.error().words()};
  }
  return remove(destPath);
}

bool SingleFile::isReplaceable(const MaybeString& destPath) const {
  if (!destPath) return false;
  auto existing = files_.linkAttributes(*destPath);
  return existing && existing->type != FileType::Directory;
}

bool SingleFile::isSameFile(const MaybeString& srcPath, const MaybeString& destPath) const {
  if (!srcPath || !destPath) return false;
  auto source = files_.attributes(*srcPath);
  auto existing = files_.attributes(*destPath);
  return source && existing && source->device == existing->device && source->inode == existing->inode;
}

uint64_t SingleFile::mediaFileSize(const MaybeString& path) const {
  FileResult<FileAttributes> found =
      path ? files_.attributes(*path) : FileError{EINVAL, FileError::Action::Reading, {}};
  if (found) return found->size;
  context_.log.write(3, "-[UMSService mediaFileSize:]", "Get Attributes Error : [%@]", found.error());
  return 0;
}

uint64_t SingleFile::totalMediaContentsSize(const MaybeArray& contents) const {
  uint64_t total = 0;
  if (!contents) return total;
  const auto elements = contents->elements();
  for (const Value& element : *elements) {
    auto content = element.dictionary();
    if (!content) {
      context_.log.write(1, "-[UMSService totalMediaContentsSize:]",
                         "Contents data is nil. Next data search");
      continue;
    }
    Value fileSize = content->get(key::kFileSize);
    // Hosts hand the size over as a 32-bit number; larger ones arrive cut.
    if (!fileSize.isNil()) {
      total += fileSize.unsignedIntValue();
    } else if (MaybeString path = content->string(key::kFilePath)) {
      total += mediaFileSize(path);
    }
  }
  return total;
}

}  // namespace umsservice
