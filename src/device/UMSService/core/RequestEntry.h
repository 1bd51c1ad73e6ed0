/// The entry points that start the five long operations: check, resolve the target folder, fill a record,
/// queue it. A refusal is a plain false with at most one log line; nothing is notified.
/// Called on the host's threads, several at once.
#pragma once

#include "RequestQueue.h"

namespace umsservice {

class RequestEntry {
 public:
  RequestEntry(ServiceContext& context, RequestQueue& queue) : context_(context), queue_(queue) {}

  bool syncContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType, bool isStartInternal);
  bool copyContentsMacToDevice(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType,
                               uint32_t storageIndex);
  bool copyContentsDeviceToMac(uint32_t serviceID, const MaybeArray& contents,
                               const MaybeString& destinationPath, uint32_t mediaType,
                               const MaybeString& playlistName);
  bool copyContentsDeviceToDevice(uint32_t serviceID, const MaybeArray& contents,
                                  const MaybeString& srcLocationId, const MaybeString& destLocationId,
                                  uint32_t mediaType, uint32_t destStorageIndex);
  bool deleteContents(uint32_t serviceID, const MaybeArray& contents, uint32_t mediaType, uint32_t diskIndex);

 private:
  struct Volume {
    MaybeString path;
    int32_t diskType = 0;
  };

  bool isEmptyRequest(const MaybeArray& contents, const char* method) const;
  std::unique_ptr<_serviceinfo> newRecord(uint32_t serviceID, uint32_t command, const MaybeArray& contents,
                                          uint32_t mediaType, const char* method) const;
  bool volumeOf(const MaybeDictionary& diskInfo, const char* method, Volume& volume) const;
  bool podcastFolderOfFirstVolume(const char* method, MaybeString& folder) const;

  ServiceContext& context_;
  RequestQueue& queue_;
};

}  // namespace umsservice
