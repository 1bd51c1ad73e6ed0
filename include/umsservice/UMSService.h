/// The service of one device that is attached as USB mass storage.
///
/// A host makes one for each device, hands it the device's volumes with `addDiskInformation`, queues requests
/// and hears of them through notifications (`Notifications.h`). Each service has one worker thread; requests
/// of one device run one after another, requests of different devices in parallel.
///
/// Threading: every method may be called from any thread, and from inside a notification handler. Entry
/// points that queue a request return at once; everything else works on the calling thread.
/// Lifetime: releasing a service stops what is running within 4096 copied bytes and waits for its worker. The
/// last reference may go away inside a handler. When that handler belongs to a running request, of this
/// service or of another one, nobody waits and the worker ends by itself.
/// Method names and argument order are those of the host's selectors; "nil" is an absent value. Paths are
/// full paths; volume indexes are 0-based and come from "diskIndex"; error numbers stand in
/// `ErrorNumbers.h`, media types and commands in `ServiceInfo.h`.
#pragma once

#include <memory>
#include <thread>

#include "umsservice/Environment.h"
#include "umsservice/Export.h"
#include "umsservice/OVFileService.h"
#include "umsservice/OVUmsDeviceNotifier.h"
#include "umsservice/QDDeviceConfirmDelegate.h"
#include "umsservice/ServiceInfo.h"
#include "umsservice/SynchronizedObject.h"

namespace umsservice {

class UMS_EXPORT UMSService final : public OVFileService, public TransferCallback {
 public:
  // ---------------------------------------------------------------- core: life and identity

  /// Starts the worker. Throws `std::system_error` when the system has no thread to give.
  /// `object` is what the host knows the service by; null for one that has the library's object only.
  explicit UMSService(const Environment& environment, std::shared_ptr<SynchronizedObject> object = nullptr);
  /// The same for a device whose location is known; nil is like none.
  UMSService(const Environment& environment, const MaybeString& locationID,
             std::shared_ptr<SynchronizedObject> object = nullptr);
  ~UMSService() override;
  UMSService(const UMSService&) = delete;
  UMSService& operator=(const UMSService&) = delete;

  /// Stores the delegate without keeping it alive. Nil is ignored: the old one stays.
  void setConfirmDelegate(const std::shared_ptr<QDDeviceConfirmDelegate>& delegate);
  void setLocationID(const MaybeString& locationID);
  MaybeString locationID();
  /// Takes the model name from the key "MN"; without it nothing changes.
  void setDeviceInformation(const MaybeDictionary& deviceInformation);
  MaybeString modelName() override;

  /// Marks the device as gone when the location is this service's (in any letter case), then waits while a
  /// transfer is marked, one second at a time.
  void disconnectDevice(const MaybeString& locationID);
  /// Asks the worker to finish; every entry point refuses from now on. Always true.
  bool exitServiceThread();
  /// 0 while the service runs, 1 once it is released or its device gone.
  uint8_t getReleaseState();
  /// 2 while the host marks a transfer; release and disconnect wait for it.
  int32_t fileTransferStatus();
  void setFileTransferStatus(int32_t status);
  /// Held while a long operation runs. A host that holds it keeps long operations from starting. Letting go
  /// of the service inside it does not wait for a worker that stands before it: the worker then ends by
  /// itself when the section is given back.
  SynchronizedObject& synchronizedSection();

  // ---------------------------------------------------------------- core: volumes and folders

  /// Adds a volume: "diskType" (1 internal, other external) and "volumePath". The list is renumbered,
  /// internal volumes first; volumes without "diskType" are dropped. Nil is ignored.
  void addDiskInformation(const MaybeDictionary& diskInformation);
  /// Removes the first volume equal to the argument, "diskIndex" included; no renumbering.
  void removeDiskInformation(const MaybeDictionary& diskInformation);
  /// The list of volumes itself: it shows later changes.
  MaybeArray diskInformation() override;
  /// The volume with that "diskIndex", or nil.
  MaybeDictionary diskInfoFromIndex(uint32_t index);
  /// The same lookup in a list of another device.
  MaybeDictionary diskInfoFromDiskInfoList(const MaybeArray& diskInfoList, uint32_t index);
  /// The "volumePath" of an index, or nil.
  MaybeString diskVolumeNameFromIndex(uint32_t index);
  MaybeString volumePath(uint32_t index);
  /// The path of the first internal (type 1) or card (type 2) volume, and its index; nil and 0 for none.
  MaybeString volumePathWithOption(bool internal, uint32_t* index);
  /// Bytes; 0 for an unknown index or an unreadable file system. The service ID is not used.
  uint64_t freeSpace(uint32_t serviceID, uint32_t diskIndex);
  uint64_t totalSpace(uint32_t serviceID, uint32_t diskIndex);
  /// Free bytes of the volume that holds a path, by the environment's placement rules.
  uint64_t volumeFreeSpace(const MaybeString& path);

  /// The full default folder of a media type on a volume.
  MaybeString defaultMediaContentsPath(const MaybeString& volumePath, int32_t diskType, int32_t mediaType);
  /// The default folder relative to the volume, as the profile or the fixed names give it.
  MaybeString defaultUmsMediaPath(uint32_t diskIndex, uint32_t mediaType);
  /// The default folder of the internal memory, relative, with a slash at the end.
  MaybeString getMediaDefaultPath(int32_t mediaType);
  /// The folder that the host wrote into a volume's dictionary ("DefaultMusicPath" and its siblings).
  MaybeString defaultMediaContentsPath(const MaybeArray& diskInfoList, uint32_t index, int32_t mediaType);

  // ---------------------------------------------------------------- core: requests

  // Each returns true when the request was queued. A refusal notifies nobody. `contents` is shared with the
  // host until the request has run; its elements are dictionaries with "FilePath" and "FileName", and
  // "FileSize" where it is known.

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
  /// Does nothing; always true.
  bool reEnumerateAtFolder(const MaybeString& folder);

  /// Cancels a request, queued or running.
  void cancelFileAction(uint32_t serviceID);
  /// Removes the queued requests of every cancelled ID.
  void emptyQueue();
  /// Removes the queued requests of one ID; true when there was one.
  bool emptyQueue(uint32_t serviceID);
  bool isCancelServiceId(uint32_t serviceID);
  bool removeCancelServiceId(uint32_t serviceID);
  /// Runs one request on the calling thread, as the worker does; true when its command succeeded. The
  /// request stays the caller's.
  bool doUmsFileService(const _serviceinfo* serviceInfo);
  /// The worker's body: runs queued requests on the calling thread until the service is released. Each
  /// service has started one such thread of its own.
  void umsFileServiceQueueThread();

  // ---------------------------------------------------------------- report

  void sendResultEvent(const _serviceinfo& serviceInfo, uint32_t eventType, uint32_t status,
                       uint32_t errornumber, uint64_t diskSpace, uint32_t storageIndex);
  void sendCancelProgressEvent(uint32_t serviceID, const MaybeString& locationId, uint32_t mediaType,
                               uint32_t currentFile, uint32_t maxFile, uint32_t transferStatus);
  /// Progress callbacks for direct transfers; the context is an `OVUmsDeviceNotifier`. False stops the copy.
  bool transferProgressInfo(TransferContext* context, uint32_t maxTransferSize,
                            uint32_t currentTransferSize) override;
  bool transferProgressInfoEx(TransferContext* context, uint64_t maxTransferSize,
                              uint64_t currentTransferSize) override;

  // ---------------------------------------------------------------- media

  /// The media type of a path by its extension; 0 for an unknown one, and for every path after release.
  int32_t checkMediaType(const MaybeString& path);
  /// Whether an extension is in a list, in any letter case; a first element "*" accepts all.
  bool checkContentWithExtentions(const MaybeString& extension, const MaybeArray& extLists);
  /// A name, or a path, that the file systems of players accept.
  MaybeString convertAvailableFileName(const MaybeString& name);
  MaybeString convertAvailableString(const MaybeString& path);

  /// Copies one file, reporting to the notifier after each 4096 bytes. True with error 0 for a complete copy;
  /// true with 0x10000008 for one that was stopped (the part stays); false otherwise. An existing destination
  /// is never replaced. `error` is written only where the step has a number of its own; it may be null.
  bool umsCopyFile(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                   OVUmsDeviceNotifier* context, int32_t* error);
  /// Copies one file into an existing folder, then removes the source.
  bool umsMoveFile(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                   OVUmsDeviceNotifier* context, int32_t* error);
  /// Removes an item, a folder with everything in it.
  bool umsDeleteFile(uint32_t serviceID, const MaybeString& srcPath, int32_t* error);
  /// Bytes; 0 when the file cannot be looked at.
  uint64_t mediaFileSize(const MaybeString& path);
  uint64_t totalMediaContentsSize(const MaybeArray& contents);
  /// Carries a video's ".smi" companion along; does nothing for other media types.
  bool sendSmiFile(uint32_t serviceID, const MaybeString& srcVideoPath, const MaybeString& destPath,
                   uint32_t mediaType);
  bool deleteSmiFile(uint32_t serviceID, const MaybeString& filePath, uint32_t mediaType);
  /// The long operations; each runs the whole request on the calling thread.
  bool doCopyMediaContents(const _serviceinfo& serviceInfo);
  bool doCopyMediaContentsForAnyMediaType(const _serviceinfo& serviceInfo);
  bool doSyncMediaContents(const _serviceinfo& serviceInfo);
  bool doDeleteMediaContents(const _serviceinfo& serviceInfo);
  bool doDeviceToDevcieContents(const _serviceinfo& serviceInfo);
  /// Tries one file of a sync on every volume but the given one; 0 when it was placed, otherwise the error
  /// number as it stands. The content dictionary is not read.
  int32_t syncUmsFile(uint32_t serviceID, const MaybeString& atPath, uint32_t index, uint32_t mediaType,
                      const MaybeDictionary& mediaData, OVUmsDeviceNotifier* context);

  // ---------------------------------------------------------------- files

  /// Lists a folder, deeply (relative paths of every depth) or not, without what lies under ".nomedia"
  /// folders. The first argument is not used. False when the folder cannot be listed.
  bool fileLists(uint32_t unused, const MaybeString& fileName, bool enumChild, MaybeArray* contents);
  /// Names of the direct sub-folders, or files, that are not hidden; nil when the folder cannot be listed.
  MaybeArray folderLists(const MaybeString& folder);
  MaybeArray fileLists(const MaybeString& folder);
  /// For every volume a dictionary "diskIndex", "volumePath", "folderLists"; nil when there is none.
  MaybeArray getDeviceAllFolderLists();
  /// The folder and every folder below it that is not hidden, depth first.
  MaybeArray recursiveFolderLists(const MaybeString& folder);
  /// Whether a path stays in a listing, given the markers found; see `removeFileListByNoMedia`.
  bool checkNoMedia(const MaybeString& path, const MaybeArray& nomediaList);
  /// The paths that do not begin with the folder of one of the ".nomedia" markers.
  MaybeArray removeFileListByNoMedia(const MaybeArray& paths, const MaybeArray& nomediaList);
  bool fileExistsAtPath(const MaybeString& path, bool* isDirectory);
  /// Bytes; 0 when the item cannot be looked at.
  uint64_t fileSizeAtDevice(const MaybeString& path);
  /// Removes an item, a folder with everything in it; `error` becomes 0 or 0x20000003 and may be null.
  bool deletefileAtDevice(const MaybeString& path, uint32_t* error);
  bool deleteFolder(const MaybeString& path);
  /// Makes a folder and all folders above it.
  bool createFolder(const MaybeString& path) override;

  /// Every file of a volume with "FilePath", "FileName" and "FileSize"; nil for an unknown volume, while the
  /// service shuts down, and when there is no file. With the flag, hidden entries and the files of folders
  /// with a ".nomedia" marker are left out. The first argument is not used.
  MaybeArray subpathsAtDisk(uint32_t unused, uint32_t diskIndex, bool skipNoMedia);
  /// The same scan of any folder; without the flag's argument it is set.
  MaybeArray fileScan(const MaybeString& folder, bool skipNoMedia);
  MaybeArray fileScan(const MaybeString& folder);
  /// Whether any component of a path begins with ".".
  bool isHiddenFile(const MaybeString& path);

  // Direct transfers copy one file on the calling thread. `fileInformation` names the source ("FilePath") and
  // its name ("FileName", else the last component of the path). The callback, which may be null, hears the
  // bytes copied after each 4096 of them and may stop the copy. `error` is written only where a step has a
  // number and may be null. What was copied of a stopped or failed transfer stays.

  /// To a full path on the device; "FileSize" is held against the free space. An existing file is replaced
  /// only with the flag.
  bool writeFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& destinationPath,
                         uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                         const std::shared_ptr<TransferCallback>& callbackObject, TransferContext* context,
                         uint32_t* error);
  /// From the device to a full path on the computer.
  bool readFileFromDevice(const MaybeDictionary& fileInformation, const MaybeString& destinationPath,
                          uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                          const std::shared_ptr<TransferCallback>& callbackObject, TransferContext* context,
                          uint32_t* error);
  /// Into the default folder of a media type on a volume, or an existing sub-folder of it. An existing file
  /// is replaced whatever the flag says. True without a copy when the folder cannot be made.
  bool syncWriteFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& subFolderName,
                             uint32_t diskIndex, uint32_t mediaType, bool isOverWrite,
                             const std::shared_ptr<TransferCallback>& callbackObject,
                             TransferContext* context, uint32_t* error) override;
  /// Replaces a file's contents with those bytes.
  bool writeFileData(const MaybeString& path, const std::shared_ptr<const Data>& data);
  /// The whole contents of a file; null when they cannot be read.
  std::shared_ptr<const Data> readFileData(const MaybeString& path);

  /// The path to play a described file by; nil without one. The numbers are not used.
  MaybeString copyContentToPlay(uint32_t serviceID, uint32_t diskIndex, uint32_t mediaType,
                                const MaybeDictionary& fileInformation);
  /// Whether a description carries a path. The numbers are not used, and `returnNode` is never written.
  bool isExistContentFromMac(uint32_t serviceID, uint32_t diskIndex, uint32_t mediaType,
                             const MaybeDictionary& fileInformation, Value* returnNode);

  // ---------------------------------------------------------------- listings

  // The first argument of these four is not used. Nil for an unknown volume or type, and for a volume that
  // cannot be listed; otherwise an array, which may be empty.

  /// Dictionaries with tags of one media type on one volume, without "AlbumArt", with "diskIndex".
  MaybeArray fileInformationList(uint32_t unused, uint32_t mediaType, uint32_t diskIndex);
  /// "diskIndex", "FilePath" and "FileName" of music, images or videos; no file is opened.
  MaybeArray fileNameList(uint32_t unused, uint32_t mediaType, uint32_t diskIndex);
  /// The same with "FileSize" and the path below the volume as "FileName", behind "External/" but on volume
  /// 0.
  MaybeArray fileNameListWithFolderStructure(uint32_t unused, uint32_t mediaType, uint32_t diskIndex);
  /// Four groups ("DiskIndex", "ContentMediaType", "ContentMediaTag") for each volume.
  MaybeArray fileInformationListForAllMediaType(uint32_t unused);
  /// Files of given extensions (["*"] for all) in any folder; with "FolderName" when recursive.
  MaybeArray fileInformationList(const MaybeString& folder, const MaybeArray& extensionList, bool recursive);
  /// The tag dictionaries of such files directly in a folder.
  MaybeArray fileInformationList(const MaybeString& folder, const MaybeArray& extensionList);
  /// The description of a file that was just placed at a path: the given one with that path when it has a
  /// "Title", else the file's own tags.
  MaybeDictionary mediaFileInfoFromDevice(const MaybeDictionary& fileInformation, const MaybeString& path);
  /// Whether a path contains the default folder of a media type, in any letter case.
  bool checkMediaContent(const MaybeString& volumePath, const MaybeString& filePath, int32_t diskType,
                         int32_t mediaType);

  // ---------------------------------------------------------------- podcast

  // A channel is a dictionary of texts with its episodes, dictionaries too, under "children". Each lies in a
  // folder of its own with an index file NAME.xml, which lists it.

  /// The channel of one index file, with full paths and without the episodes whose files are gone; they leave
  /// the index too. Nil for a file that is no index.
  MaybeDictionary umsPodcastXmlData(const MaybeString& path);
  /// Paths, relative to a podcast folder, of the index files below it. The first argument is not used.
  bool podcastXmlLists(uint32_t unused, const MaybeString& fileName, MaybeArray* contents);
  /// A channel as its index file has it, with paths relative to the channel's folder; nil without one.
  MaybeDictionary checkXmlData(const MaybeString& channelFolder, const MaybeString& channelName);
  /// Writes the bytes of a document as the index of a channel, whole or not at all; null is no document. The
  /// first argument is not used.
  bool sendXmlData(uint32_t unused, const std::shared_ptr<const Data>& xmlDocument,
                   const MaybeString& filePath, const MaybeString& podcastName);
  /// Makes the path of every episode full, in place; paths that begin with the folder stay.
  void makeEpisodeFullPath(const MaybeDictionary& podcast, const MaybeString& podcastChannelName);
  /// The channel that the bytes of an index hold, with the folder in front of every path; nil for no index.
  MaybeDictionary makeXMLInfoFromFileData(const MaybeString& channelFolder,
                                          const std::shared_ptr<const Data>& data);
  /// Episodes, and bytes, of a list of channels. `sendCount` becomes the number of episodes and may be null.
  uint32_t totalPodcastCount(const MaybeArray& podcasts);
  uint64_t totalPodcastFileSize(const MaybeArray& podcasts, uint32_t* sendCount);
  /// Bytes of a list of episodes, and whether they fit on the volume that holds a path.
  uint64_t totalUmsPodcastEpisodeDataSize(const MaybeArray& episodes);
  bool checkUmsPodcastEpisodeSize(const MaybeString& volumePath, const MaybeArray& episodeData);
  /// The long operations; each runs the whole request on the calling thread.
  bool doCopyPodcastContents(const _serviceinfo& serviceInfo);
  bool doSyncPodcastContents(const _serviceinfo& serviceInfo);
  /// Tries one channel of a sync on the volumes behind the given one; 0 when all went well and when nothing
  /// was tried, otherwise the last error number.
  int32_t syncUmsPodcastFile(uint32_t serviceID, uint32_t index, uint32_t mediaType,
                             const MaybeDictionary& podcastInfo, OVUmsDeviceNotifier* context);
  bool doDeletePodcastContents(const _serviceinfo& serviceInfo);
  bool doDeviceToDevicePodcast(const _serviceinfo& serviceInfo);

 private:
  struct UMS_HIDDEN Rooms;

  UMS_HIDDEN void startWorker();
  UMS_HIDDEN static void serveQueue(const std::shared_ptr<Rooms>& rooms);
  /// The rooms, kept for the length of a call: a handler inside it may let go of the service.
  std::shared_ptr<Rooms> rooms() const { return rooms_; }

  const std::shared_ptr<Rooms>
      rooms_;  ///< shared with the worker, which may outlive this object for a moment
  std::thread worker_;
};

}  // namespace umsservice
