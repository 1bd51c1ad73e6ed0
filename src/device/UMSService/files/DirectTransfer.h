/// One file at a time, on the caller's thread: to a device path, from a device path, into a media type's
/// default folder, or as a whole piece of data.
///
/// Progress and stopping go through a callback object after each 4096 bytes; a release of the service stops
/// a copy within one such unit. A stopped or failed copy leaves what was reported. An existing file is given
/// up only for another file that can be read, and never once the service is released. Takes no lock; safe
/// from any thread. The destination device's service writes through this room in device-to-device copies.
#pragma once

#include "FolderOperations.h"
#include "umsservice/OVFileService.h"

namespace umsservice {

class DirectTransfer {
 public:
  /// What every transfer is given besides its source and its destination.
  struct Call {
    bool isOverWrite = false;
    std::shared_ptr<TransferCallback> callbackObject;  ///< null: no progress, no stopping from outside
    TransferContext* context = nullptr;                ///< handed back to the callback
    uint32_t* error = nullptr;  ///< written only where a step has a number; may be null
  };

  DirectTransfer(const ServiceContext& context, const FolderOperations& folders)
      : context_(context), folders_(folders), files_(context.files()) {}

  bool writeFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& destinationPath,
                         const Call& call) const;
  bool readFileFromDevice(const MaybeDictionary& fileInformation, const MaybeString& destinationPath,
                          const Call& call) const;
  /// Into the default folder of the media type on a volume, with an optional sub-folder that must exist. An
  /// existing file is replaced whatever the flag says. True without a copy when the folder cannot be made:
  /// hosts rely on it.
  bool syncWriteFileToDevice(const MaybeDictionary& fileInformation, const MaybeString& subFolderName,
                             uint32_t diskIndex, uint32_t mediaType, const Call& call) const;

  /// Replaces a file's contents.
  bool writeFileData(const MaybeString& path, const std::shared_ptr<const Data>& data) const;
  /// The whole contents; null when they cannot be read or held.
  std::shared_ptr<const Data> readFileData(const MaybeString& path) const;

 private:
  /// What the three chunked copies do differently.
  struct Manner;
  static const Manner kWriting;
  static const Manner kReading;
  static const Manner kSyncWriting;
  /// The source as the dictionary names it.
  struct Source;

  bool transfer(const Manner& manner, const MaybeDictionary& fileInformation,
                const MaybeString& destinationPath, const Call& call) const;
  bool hasWriteSpace(const Dictionary& fileInformation, const std::string& destinationPath) const;
  uint32_t whyNotReplaced(const FileAttributes& existing, const std::string& sourcePath,
                          const FileResult<FileAttributes>& source, bool isOverWrite) const;
  bool makeFolderOf(const std::string& path) const;
  bool stopsAtOnce(const Manner& manner, uint64_t size, const Call& call) const;
  MaybeString syncDestination(const Source& source, const MaybeString& subFolderName, uint32_t diskIndex,
                              uint32_t mediaType, MaybeString& folder) const;
  bool hasSyncSpace(const std::string& destination, uint64_t size, const Call& call) const;
  bool replaceInFolder(const std::string& source, const std::string& destination,
                       const FileAttributes& attributes, const Call& call) const;
  bool reportWhole(uint64_t size, const Call& call) const;
  bool refuseUnopened(const FileHandle* destination, const Call& call) const;
  bool copyBytes(const Manner& manner, FileHandle& source, FileHandle& destination, uint64_t size,
                 const Call& call) const;
  void logException(const char* method, const FileError& error) const;

  const ServiceContext& context_;
  const FolderOperations& folders_;
  FileSystem& files_;
};

}  // namespace umsservice
