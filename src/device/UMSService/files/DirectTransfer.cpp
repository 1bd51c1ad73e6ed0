#include "DirectTransfer.h"

#include <cerrno>

#include "ChunkedCopy.h"
#include "FileContents.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

void deliver(const DirectTransfer::Call& call, uint32_t errorNumber) {
  if (call.error) *call.error = errorNumber;
}

bool refuse(const DirectTransfer::Call& call, uint32_t errorNumber) {
  deliver(call, errorNumber);
  return false;
}

bool isSameFile(const FileAttributes& left, const FileAttributes& right) {
  return left.device == right.device && left.inode == right.inode;
}

constexpr auto kReleasing = "Object Releasing process stop!";

}  // namespace

struct DirectTransfer::Manner {
  const char* method;
  bool testsWriteSpace;
  bool clearsErrorNumber;
  bool reportsFullSizes;
};

const DirectTransfer::Manner DirectTransfer::kWriting = {
    "-[UMSService "
    "writeFileToDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]",
    true, true, false};
const DirectTransfer::Manner DirectTransfer::kReading = {
    "-[UMSService "
    "readFileFromDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]",
    false, true, false};
const DirectTransfer::Manner DirectTransfer::kSyncWriting = {
    "-[UMSService "
    "syncWriteFileToDevice:subFolderName:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]",
    false, false, true};

struct DirectTransfer::Source {
  explicit Source(const Dictionary& fileInformation)
      : path(fileInformation.string(key::kFilePath)), name(fileInformation.string(key::kFileName)) {
    if (!name && path) name = lastPathComponent(*path);
  }
  bool isComplete() const { return path && name; }

  MaybeString path;
  MaybeString name;
};

bool DirectTransfer::writeFileToDevice(const MaybeDictionary& fileInformation,
                                       const MaybeString& destinationPath, const Call& call) const {
  return transfer(kWriting, fileInformation, destinationPath, call);
}

bool DirectTransfer::readFileFromDevice(const MaybeDictionary& fileInformation,
                                        const MaybeString& destinationPath, const Call& call) const {
  return transfer(kReading, fileInformation, destinationPath, call);
}

bool DirectTransfer::transfer(const Manner& manner, const MaybeDictionary& fileInformation,
                              const MaybeString& destinationPath, const Call& call) const {
  if (!fileInformation || !destinationPath) return refuse(call, kErrorInvalidInput);
  const Source from(*fileInformation);
  if (!from.isComplete()) return refuse(call, kErrorInvalidInput);
  if (manner.testsWriteSpace && !hasWriteSpace(*fileInformation, *destinationPath)) {
    return refuse(call, kErrorWriteVolumeFull);
  }
  const auto attributes = files_.attributes(*from.path);
  if (auto existing = files_.attributes(*destinationPath)) {
    if (uint32_t number = whyNotReplaced(*existing, *from.path, attributes, call.isOverWrite))
      return refuse(call, number);
    if (stopsAtOnce(manner, attributes->size, call)) return false;
    if (!files_.remove(*destinationPath)) return refuse(call, kErrorAttributesUnreadable);
  } else if (!makeFolderOf(*destinationPath)) {
    return refuse(call, kErrorInvalidInput);
  }
  if (!attributes) return refuse(call, kErrorAttributesUnreadable);
  // A failing device can hide a file for a moment; what it hid must not be emptied.
  auto destination = files_.createNewFile(*destinationPath);
  if (!destination) return refuse(call, kErrorCopyFailed);
  auto source = files_.openForReading(*from.path);
  if (!source) return refuse(call, kErrorInvalidInput);
  return copyBytes(manner, **source, **destination, attributes->size, call);
}

bool DirectTransfer::hasWriteSpace(const Dictionary& fileInformation,
                                   const std::string& destinationPath) const {
  uint64_t size = fileInformation.get(key::kFileSize).unsignedLongLongValue();
  return size <= context_.spaces.volumeFreeSpace(destinationPath);
}

/// 0 when what stands at the destination may go, otherwise the number to refuse with. A folder is never
/// removed for a file, and nothing is removed for itself or for a source that cannot be read.
uint32_t DirectTransfer::whyNotReplaced(const FileAttributes& existing, const std::string& sourcePath,
                                        const FileResult<FileAttributes>& source, bool isOverWrite) const {
  if (!isOverWrite || existing.type == FileType::Directory) return kErrorOverwriteNotAllowed;
  if (!source) return kErrorAttributesUnreadable;
  if (isSameFile(existing, *source)) return kErrorOverwriteNotAllowed;
  return files_.openForReading(sourcePath) ? kErrorNone : kErrorInvalidInput;
}

bool DirectTransfer::makeFolderOf(const std::string& path) const {
  std::string folder = stringByDeletingLastPathComponent(path);
  return !folder.empty() && files_.createFolders(folder);
}

/// Nothing that exists is given up for a copy that is to stop before its first byte.
bool DirectTransfer::stopsAtOnce(const Manner& manner, uint64_t size, const Call& call) const {
  if (size == 0 || !context_.isReleased()) return false;
  if (manner.clearsErrorNumber) deliver(call, kErrorNone);
  context_.log.write(3, manner.method, kReleasing);
  return true;
}

bool DirectTransfer::syncWriteFileToDevice(const MaybeDictionary& fileInformation,
                                           const MaybeString& subFolderName, uint32_t diskIndex,
                                           uint32_t mediaType, const Call& call) const {
  if (!fileInformation) return refuse(call, kErrorInvalidInput);
  const Source from(*fileInformation);
  MaybeString folder;
  MaybeString to = syncDestination(from, subFolderName, diskIndex, mediaType, folder);
  if (!to) return refuse(call, kErrorInvalidInput);
  context_.log.write(6, kSyncWriting.method, "Copy File : %@  to  %@", from.path, to);
  auto attributes = files_.attributes(*from.path);
  if (!attributes) {
    context_.log.write(3, kSyncWriting.method, "Get Attributes Error : [%@]", attributes.error());
    return refuse(call, kErrorAttributesUnreadable);
  }
  if (!hasSyncSpace(*to, attributes->size, call)) return false;
  if (!folders_.createFolder(folder)) {
    context_.log.write(3, kSyncWriting.method, "createFolder Fail!");
    return true;  // hosts take a folder that cannot be made for a file that need not be sent
  }
  return replaceInFolder(*from.path, *to, *attributes, call);
}

/// The full path that a sync write goes to, and its default folder; nil when volume, path or name is missing.
MaybeString DirectTransfer::syncDestination(const Source& source, const MaybeString& subFolderName,
                                            uint32_t diskIndex, uint32_t mediaType,
                                            MaybeString& folder) const {
  auto volume = context_.volumes.diskInfoFromIndex(diskIndex);
  MaybeString volumePath = volume ? volume->string(key::kVolumePath) : std::nullopt;
  if (!volumePath) return std::nullopt;
  folder = context_.defaultFolders.defaultMediaContentsPath(
      volumePath, volume->get(key::kDiskType).intValue(), static_cast<int32_t>(mediaType));
  if (!source.isComplete()) return std::nullopt;
  if (!subFolderName) return stringWithFormat("%@/%@", {folder, source.name});
  return stringWithFormat("%@/%@/%@", {folder, subFolderName, source.name});
}

bool DirectTransfer::hasSyncSpace(const std::string& destination, uint64_t size, const Call& call) const {
  uint64_t freeSize = context_.spaces.volumeFreeSpace(destination);
  if (freeSize >= size) return true;
  context_.log.write(3, kSyncWriting.method,
                     "Not enough volume space. data Size = 0x%08x, volume Free Size = 0x%08xs", size,
                     freeSize);
  return refuse(call, kErrorVolumeFull);
}

bool DirectTransfer::replaceInFolder(const std::string& source, const std::string& destination,
                                     const FileAttributes& attributes, const Call& call) const {
  const uint64_t size = attributes.size;
  auto existing = files_.attributes(destination);
  // Emptying a file in order to fill it from itself would lose it; it already is where it should be.
  if (existing && isSameFile(*existing, attributes)) return reportWhole(size, call);
  if (existing && stopsAtOnce(kSyncWriting, size, call)) return false;
  auto from = files_.openForReading(source);
  if (existing && !from) return refuseUnopened(nullptr, call);
  auto to = files_.createFile(destination);
  if (!to) {
    context_.log.write(3, kSyncWriting.method, "createFileAtPath Fail!");
    return false;
  }
  if (!from) return refuseUnopened(to->get(), call);
  return copyBytes(kSyncWriting, **from, **to, size, call);
}

bool DirectTransfer::reportWhole(uint64_t size, const Call& call) const {
  if (size == 0 || !call.callbackObject) return true;
  return call.callbackObject->transferProgressInfoEx(call.context, size, size) || refuse(call, kErrorStopped);
}

bool DirectTransfer::refuseUnopened(const FileHandle* destination, const Call& call) const {
  context_.log.write(3, kSyncWriting.method,
                     "Open file Handle failed! source file handle = %@, destination file handle = %@",
                     nullptr, static_cast<const void*>(destination));
  return refuse(call, kErrorCopyFailed);
}

bool DirectTransfer::copyBytes(const Manner& manner, FileHandle& source, FileHandle& destination,
                               uint64_t size, const Call& call) const {
  const auto& callback = call.callbackObject;
  if (manner.clearsErrorNumber) deliver(call, kErrorNone);
  auto mayGoOn = [&] {
    if (!context_.isReleased()) return true;
    context_.log.write(3, manner.method, kReleasing);
    return false;
  };
  auto report = [&](uint64_t copied) {
    if (!callback) return true;
    bool goesOn = manner.reportsFullSizes
                      ? callback->transferProgressInfoEx(call.context, size, copied)
                      : callback->transferProgressInfo(call.context, static_cast<uint32_t>(size),
                                                       static_cast<uint32_t>(copied));
    if (!goesOn) deliver(call, kErrorStopped);
    return goesOn;
  };
  ChunkedCopyResult copied = copyInChunks(source, destination, size, mayGoOn, report);
  FileStatus closed = destination.close();
  if (copied.end == ChunkedCopyResult::End::Stopped) return false;
  if (copied.end == ChunkedCopyResult::End::Complete && closed) return true;
  logException(manner.method, copied.error ? *copied.error : closed.error());
  return refuse(call, kErrorCopyFailed);
}

void DirectTransfer::logException(const char* method, const FileError& error) const {
  context_.log.write(3, method, "Name : %@", "NSFileHandleOperationException");
  context_.log.write(3, method, "Reason :%@", error.words());
}

bool DirectTransfer::writeFileData(const MaybeString& path, const std::shared_ptr<const Data>& data) const {
  constexpr auto kMethod = "-[UMSService writeFileData:data:]";
  if (!path) return false;
  auto created = files_.createFile(*path);
  if (!created) {
    // A device node or a FIFO of that name is there, but cannot be opened for a file's contents.
    const int number = created.error().systemNumber;
    const bool unopenable = number == EOPNOTSUPP || number == ENXIO;
    if (unopenable)
      context_.log.write(3, kMethod, "Open file Handle failed! source file handle = %@", nullptr);
    else
      context_.log.write(3, kMethod, "createFileAtPath Fail!");
    return false;
  }
  WriteOutcome outcome = data ? (*created)->write(data->data(), data->size()) : WriteOutcome{};
  FileStatus closed = (*created)->close();
  if (!outcome.error && closed) return true;
  logException(kMethod, outcome.error ? *outcome.error : closed.error());
  return false;
}

std::shared_ptr<const Data> DirectTransfer::readFileData(const MaybeString& path) const {
  constexpr auto kMethod = "-[UMSService readFileData:]";
  if (!path) return nullptr;
  auto handle = files_.openForReading(*path);
  if (!handle) {
    context_.log.write(3, kMethod, "Open file Handle failed! source file handle = %@", nullptr);
    return nullptr;
  }
  auto contents = readWholeFile(files_, **handle, *path);
  if (contents) return std::make_shared<const Data>(std::move(*contents));
  logException(kMethod, contents.error());
  return nullptr;
}

}  // namespace umsservice
