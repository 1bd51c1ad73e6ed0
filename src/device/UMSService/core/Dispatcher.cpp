#include "Dispatcher.h"

#include <cerrno>

#include "RequestGuard.h"
#include "StoppedRun.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kMethod = "-[UMSService doUmsFileService:]";
constexpr uint32_t kResultEvent = 1;

struct TraceLine {
  uint32_t command;
  int level;
  const char* message;
};

/// The long commands are traced at the verbose level; device to device has no line.
constexpr TraceLine kTraceLines[] = {
    {kCommandCreateFile, 6, "UMSService = %@, FS_COMMAND_UMS_CREAE_FILE"},
    {kCommandCreateFolder, 6, "UMSService = %@, FS_COMMAND_OV_CREATE_FOLDER"},
    {kCommandReadFile, 6, "UMSService = %@, FS_CMMAND_UMS_READ_FILE"},
    {kCommandWriteFile, 6, "UMSService = %@, FS_COMMAND_UMS_WRITE_FLE"},
    {kCommandDeleteFile, 7, "UMSService = %@, FS_COMMAND_OV_DELETE_FILE"},
    {kCommandRenameFile, 6, "UMSService = %@, FS_COMMAND_OV_RENAME_FILE"},
    {kCommandGetList, 6, "UMSService = %@, FS_COMMAND_OV_GET_LIST"},
    {kCommandDiskSpace, 6, "UMSService = %@, FS_COMMAND_OV_DISK_SPACE"},
    {kCommandFreeSpace, 6, "UMSService = %@, FS_COMMAND_OV_FREE_SPACE"},
    {kCommandCopyFile, 7, "UMSService = %@, FS_COMMAND_OV_COPY_FILE"},
    {kCommandCopyToDevice, 7, "UMSService = %@, FS_COMMAND_OV_COPY_TO_DEVICE_CONTENTS"},
    {kCommandSyncContents, 7, "UMSService = %@, FS_COMMAND_OV_SYNC_CONTENTS"},
};

/// These report through their operation's own notifications only.
bool hasResultNotification(uint32_t command) {
  constexpr uint32_t kSpare = 211;
  return command != kCommandDeleteFile && command != kCommandCopyFile && command != kSpare &&
         command != kCommandSyncContents;
}

/// These keep other uses of the service out, and tell of themselves in progress notifications.
bool isLong(uint32_t command) {
  return command == kCommandDeleteFile || command == kCommandCopyFile || command == kCommandCopyToDevice ||
         command == kCommandSyncContents || command == kCommandDeviceToDevice;
}

FileError missingPath() {
  return FileError{EINVAL, FileError::Action::Writing, std::string()};
}

/// Hosts read the size as a signed 32-bit number, so 2 GB and more arrive wrapped and sign-extended.
uint64_t asHostReadsSpace(uint64_t bytes) {
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(bytes)});
}

}  // namespace

bool Dispatcher::doUmsFileService(const _serviceinfo* serviceInfo) {
  if (!serviceInfo) return false;
  trace(serviceInfo->command);
  Outcome outcome = perform(*serviceInfo);
  report(*serviceInfo, outcome);
  return outcome.success;
}

void Dispatcher::serve(const _serviceinfo& serviceInfo) {
  trace(serviceInfo.command);
  Outcome outcome;
  StoppedRun::forget();
  if (runsToItsEnd(context_, [&] { outcome = perform(serviceInfo); })) {
    report(serviceInfo, outcome);
  } else {
    reportStopped(serviceInfo, StoppedRun::toldTheEndOf(serviceInfo));
  }
}

void Dispatcher::report(const _serviceinfo& serviceInfo, const Outcome& outcome) {
  if (!hasResultNotification(serviceInfo.command)) return;
  uint32_t code = !outcome.success && outcome.platformError ? outcome.platformError->code() : 0;
  reports_.sendResultEvent(serviceInfo, kResultEvent, outcome.errorNumber, code, outcome.diskSpace, 0);
}

/// Whoever queued the request waits for its end. Of a long one that is first a progress with an end in it;
/// where the exception came before the run that would have posted it, it is told as a cancelled one. For
/// deletes, copies to the computer and syncs this is the only end that a host knows, as they never have a
/// result. A result, for the others, says that the operation failed. Each is posted once: a handler that
/// throws again is let be.
void Dispatcher::reportStopped(const _serviceinfo& serviceInfo, bool runToldItsEnd) {
  // The run had no time to: a later request of the same number is not what was cancelled.
  context_.cancelList.removeEvery(serviceInfo.serviceID);
  if (isLong(serviceInfo.command) && !runToldItsEnd) {
    runsToItsEnd(context_, [&] {
      reports_.sendCancelProgressEvent(serviceInfo.serviceID, serviceInfo.srcLocationID,
                                       serviceInfo.mediaType, 0, 0, kTransferCancelled);
    });
  }
  runsToItsEnd(context_, [&] { report(serviceInfo, {.errorNumber = kErrorOperationFailed}); });
}

void Dispatcher::trace(uint32_t command) const {
  for (const TraceLine& line : kTraceLines) {
    if (line.command == command) context_.log.write(line.level, kMethod, line.message, context_.description);
  }
}

Dispatcher::Outcome Dispatcher::perform(const _serviceinfo& serviceInfo) {
  switch (serviceInfo.command) {
    case kCommandCreateFile:
      return createFile(serviceInfo);
    case kCommandCreateFolder:
      return createFolder(serviceInfo);
    case kCommandReadFile:
      return readFile();
    case kCommandRenameFile:
      return renameFile(serviceInfo);
    case kCommandDiskSpace:
      return diskSpace(serviceInfo, &VolumeSpace::total);
    case kCommandFreeSpace:
      return diskSpace(serviceInfo, &VolumeSpace::free);
    default:
      return isLong(serviceInfo.command) ? runLongOperation(serviceInfo) : Outcome{};
  }
}

Dispatcher::Outcome Dispatcher::createFile(const _serviceinfo& serviceInfo) {
  if (serviceInfo.filePath && context_.files().createFile(*serviceInfo.filePath)) return {.success = true};
  context_.log.write(3, kMethod, "CreateFile Fail!");
  return {.errorNumber = kErrorCreateFileFailed};  // the platform gives no error object for this one
}

Dispatcher::Outcome Dispatcher::createFolder(const _serviceinfo& serviceInfo) {
  FileStatus made =
      serviceInfo.filePath ? context_.files().createFolders(*serviceInfo.filePath) : missingPath();
  if (made) return {.success = true};
  context_.log.write(3, kMethod, "CreateFolder Fail. error = %@", made.error());
  return {.errorNumber = kErrorCreateFolderFailed, .platformError = made.error()};
}

Dispatcher::Outcome Dispatcher::readFile() const {
  // Reading for the host belongs to the direct transfers; as a queued command it has never been served.
  context_.log.write(3, kMethod, "Read file is failed.");
  return {.errorNumber = kErrorReadFailed};
}

Dispatcher::Outcome Dispatcher::renameFile(const _serviceinfo& serviceInfo) {
  bool named = serviceInfo.filePath && serviceInfo.destPath;
  FileStatus moved =
      named ? context_.files().move(*serviceInfo.filePath, *serviceInfo.destPath) : missingPath();
  if (moved) return {.success = true};
  context_.log.write(3, kMethod, "Rename file is Failed. error = %@", moved.error());
  return {.errorNumber = kErrorRenameFailed, .platformError = moved.error()};
}

Dispatcher::Outcome Dispatcher::diskSpace(const _serviceinfo& serviceInfo, uint64_t VolumeSpace::*amount) {
  Outcome outcome{.success = true};
  if (!serviceInfo.filePath) return outcome;
  auto space = context_.files().space(*serviceInfo.filePath);
  if (space) outcome.diskSpace = asHostReadsSpace((*space).*amount);
  return outcome;
}

Dispatcher::Outcome Dispatcher::runLongOperation(const _serviceinfo& serviceInfo) {
  auto section = context_.workerEnd.enter(context_.synchronizedSection());
  if (chosenOperation(serviceInfo)) return {.success = true};
  return {.errorNumber = kErrorOperationFailed};
}

bool Dispatcher::chosenOperation(const _serviceinfo& serviceInfo) {
  bool podcast = serviceInfo.mediaType == kMediaPodcast;
  switch (serviceInfo.command) {
    case kCommandDeleteFile:
      return podcast ? operations_.doDeletePodcastContents(serviceInfo)
                     : operations_.doDeleteMediaContents(serviceInfo);
    case kCommandCopyFile:
      return podcast ? operations_.doCopyPodcastContents(serviceInfo)
                     : operations_.doCopyMediaContents(serviceInfo);
    case kCommandCopyToDevice:
      return podcast ? operations_.doCopyPodcastContents(serviceInfo)
                     : operations_.doCopyMediaContentsForAnyMediaType(serviceInfo);
    case kCommandSyncContents:
      return podcast ? operations_.doSyncPodcastContents(serviceInfo)
                     : operations_.doSyncMediaContents(serviceInfo);
    default:
      return podcast ? operations_.doDeviceToDevicePodcast(serviceInfo)
                     : operations_.doDeviceToDevcieContents(serviceInfo);
  }
}

}  // namespace umsservice
