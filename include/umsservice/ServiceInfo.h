/// One request as it waits in the queue and runs on the worker thread, and the numbers of the commands.
#pragma once

#include <cstdint>

#include "umsservice/Value.h"

namespace umsservice {

/// Commands; the numbers belong to the host's protocol.
enum Command : uint32_t {
  kCommandCreateFile = 201,
  kCommandCreateFolder = 202,
  kCommandReadFile = 203,
  kCommandWriteFile = 204,
  kCommandDeleteFile = 205,
  kCommandRenameFile = 206,
  kCommandGetList = 207,
  kCommandDiskSpace = 208,
  kCommandFreeSpace = 209,
  kCommandCopyFile = 210,
  kCommandCopyToDevice = 213,
  kCommandSyncContents = 216,
  kCommandDeviceToDevice = 217,
};

/// Media type codes, as requests and listings use them.
enum MediaType : int32_t {
  kMediaUnknown = 0,
  kMediaMusic = 1,
  kMediaImage = 2,
  kMediaVideo = 3,
  kMediaPodcast = 4,
  kMediaVolumeItself = 6,  ///< only some folder lookups know it
};

/// A request. Fields that an entry point does not name stay zero or absent.
struct _serviceinfo {
  uint32_t serviceID = 0;       ///< the host's number; echoed in every notification about the request
  uint32_t command = 0;         ///< see `Command`
  MaybeString filePath;         ///< primary path of the single-path commands; source of a rename
  MaybeString destPath;         ///< target folder, or the new name of a rename
  uint32_t param1 = 0;          ///< spare
  uint32_t param2 = 0;          ///< spare
  void* context1 = nullptr;     ///< spare
  void* context2 = nullptr;     ///< spare
  MaybeArray contents;          ///< the items to act on; shared with the host, never empty in a queued record
  MaybeString playlistName;     ///< copies to the computer only
  MaybeString destLocationID;   ///< device to device only
  MaybeString srcLocationID;    ///< device to device only
  uint32_t storageIndex = 0;    ///< volume index: target, volume to delete from, or destination volume
  uint32_t mediaType = 0;       ///< see `MediaType`; podcasts select the podcast operations
  uint8_t isStartInternal = 0;  ///< sync only: begin with the internal volume
};

}  // namespace umsservice
