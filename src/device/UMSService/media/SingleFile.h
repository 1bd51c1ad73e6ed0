/// Copy, move and delete of one file, and the sizes that a request is measured by.
///
/// Stateless but for what it borrows; runs on the worker thread. Existing files are never overwritten here;
/// asking is the caller's business. A copy that is stopped leaves exactly the bytes that were reported.
#pragma once

#include "ChunkedCopy.h"
#include "FolderOperations.h"
#include "ServiceContext.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsservice {

/// How a step on one file ended.
struct FileOutcome {
  bool result = false;
  std::optional<uint32_t> errorNumber;  ///< absent where the step leaves the caller's number as it is
  uint64_t bytes = 0;                   ///< moved or freed
  std::string reason;                   ///< the system's words for a failure
};

class SingleFile {
 public:
  SingleFile(const ServiceContext& context, const FolderOperations& folders)
      : context_(context), folders_(folders), files_(context.files()) {}

  /// True with number 0 for a complete copy; true with a stop code for one that was cancelled or shut down,
  /// the copied part stays; false otherwise. Makes the destination's folder. Reports each 4096 bytes.
  FileOutcome copy(uint32_t serviceID, const MaybeString& srcPath, const MaybeString& destPath,
                   OVUmsDeviceNotifier* notifier) const;
  /// A copy, then the removal of the source, once the device has the copy. Only a shutdown stops it.
  FileOutcome move(const MaybeString& srcPath, const MaybeString& destPath,
                   OVUmsDeviceNotifier* notifier) const;
  /// Removes an item, a folder with everything in it.
  FileOutcome remove(const MaybeString& path) const;
  /// Removes what stands where a source is to be copied to. Nothing is given up for a source that cannot be
  /// read, for one that would not fit even then, or for itself: then the number and the words are those that
  /// the copy would have ended with.
  FileOutcome removeInFavourOf(const std::string& srcPath, const std::string& destPath) const;

  /// Whether what stands at a destination may be deleted for a file: a folder, or what cannot be told from
  /// one, never is.
  bool isReplaceable(const MaybeString& destPath) const;
  /// Whether two paths lead to one and the same file: it is never deleted to be replaced by itself.
  bool isSameFile(const MaybeString& srcPath, const MaybeString& destPath) const;

  /// Size in bytes; 0 when it cannot be read.
  uint64_t mediaFileSize(const MaybeString& path) const;
  /// Bytes of a list of content dictionaries: "FileSize" cut to 32 bits where given, else the file's size.
  uint64_t totalMediaContentsSize(const MaybeArray& contents) const;

 private:
  struct Pair;
  /// What a copy and a move do differently, and the words for it.
  struct Manner;
  static const Manner kCopying;
  static const Manner kMoving;

  FileOutcome transfer(const Manner& manner, uint32_t serviceID, const MaybeString& srcPath,
                       const MaybeString& destPath, OVUmsDeviceNotifier* notifier) const;
  std::optional<FileOutcome> refusal(const Manner& manner, const std::string& srcPath,
                                     const std::string& destPath, FileAttributes& source) const;
  std::optional<FileOutcome> openBoth(const Manner& manner, const std::string& srcPath, FileType seenType,
                                      const std::string& destPath, Pair& pair) const;
  FileOutcome copyBytes(const Manner& manner, uint32_t serviceID, Pair& pair, uint64_t size,
                        OVUmsDeviceNotifier& notifier) const;
  FileOutcome exception(const Manner& manner, const FileError& error, uint64_t bytes) const;
  FileOutcome removeSource(const std::string& srcPath, FileOutcome copied) const;

  const ServiceContext& context_;
  const FolderOperations& folders_;
  FileSystem& files_;
};

}  // namespace umsservice
