/// Paths that the service can open. It cleans the path of an episode before it opens the file: characters
/// that no player's file system takes, and blanks around a name, are gone, and with them the way to the file.
///
/// Such a file gets a link under a clean path, in a private folder that goes with this object; the service
/// only ever copies from there. Made before the device that copies and outlives it. Filled by the main
/// thread, afterwards only read.
#pragma once

#include <map>
#include <string>

#include "Device.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsctl {

class CleanLinks {
 public:
  explicit CleanLinks(const Errand& errand) : errand_(errand), cleaner_({}, errand) {}
  /// Removes the links; what they lead to stays.
  ~CleanLinks();
  CleanLinks(const CleanLinks&) = delete;
  CleanLinks& operator=(const CleanLinks&) = delete;

  /// Under which name a file arrives on a device; may be no name at all.
  std::string cleanName(const std::string& path);
  /// A path under which the service finds the file of a full path: this path itself, or a link. Empty where
  /// there is none, and then `objection` says why.
  std::string pathFor(const std::string& path, std::string& objection);
  /// The path that a person knows: of a link the one that it leads to.
  std::string knownPath(const std::string& path) const;

 private:
  bool survivesCleaning(const std::string& path);
  bool makeFolder(std::string& objection);
  bool makeFolderIn(const std::string& place);

  const Errand& errand_;
  Device cleaner_;  ///< asked how paths are cleaned, nothing else
  /// A dry run has links as well: without them it would not find the files.
  const std::shared_ptr<umsservice::FileSystem> files_ = umsservice::posixFileSystem();
  std::string folder_;                        ///< empty before the first link
  size_t folders_ = 0;                        ///< made in it
  std::map<std::string, std::string> links_;  ///< what each link leads to
};

/// Asks about existing files by the path that a person knows.
class LinkedQuestions final : public umsservice::QDDeviceConfirmDelegate {
 public:
  LinkedQuestions(std::shared_ptr<umsservice::QDDeviceConfirmDelegate> questions, const CleanLinks& links)
      : questions_(std::move(questions)), links_(links) {}

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override {
    return questions_->confirmOverwrite(links_.knownPath(path), isOverwrite, isNotAsk);
  }
  std::shared_ptr<umsservice::OVFileService> getFileServiceObject(
      const umsservice::MaybeString& locationID) override {
    return questions_->getFileServiceObject(locationID);
  }

 private:
  const std::shared_ptr<umsservice::QDDeviceConfirmDelegate> questions_;
  const CleanLinks& links_;
};

}  // namespace umsctl
