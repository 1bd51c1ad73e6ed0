#include "podcast/CleanLinks.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Paths.h"

namespace umsctl {
namespace {

constexpr auto kOtherPathNeeded = "its path has characters that the device's service does not take, and ";

}  // namespace

CleanLinks::~CleanLinks() {
  if (folder_.empty()) return;
  auto removed = files_->remove(folder_);
  if (!removed) errand_.events().complained(folder_, "links stay there: " + removed.error().words());
}

std::string CleanLinks::cleanName(const std::string& path) {
  return cleaner_.service().convertAvailableFileName(lastComponent(path)).value_or("");
}

std::string CleanLinks::knownPath(const std::string& path) const {
  auto found = links_.find(path);
  return found == links_.end() ? path : found->second;
}

/// By the file and not by the text: cleaning also drops doubled slashes, and a cleaned path may lead to
/// another file that is there by chance.
bool CleanLinks::survivesCleaning(const std::string& path) {
  const std::string cleaned = cleaner_.service().convertAvailableString(path).value_or("");
  if (cleaned == path) return true;
  auto meant = files_->attributes(path);
  auto found = files_->attributes(cleaned);
  return meant && found && meant->device == found->device && meant->inode == found->inode;
}

std::string CleanLinks::pathFor(const std::string& path, std::string& objection) {
  const std::string name = cleanName(path);
  if (name.empty() || name == "." || name == "..") {
    objection = "its name is no name for the device";
    return "";
  }
  if (survivesCleaning(path)) return path;
  if (folder_.empty() && !makeFolder(objection)) return "";
  // A folder for each: files of different folders may have the same name.
  const std::string ownFolder = inFolder(folder_, std::to_string(folders_++));
  const std::string link = inFolder(ownFolder, name);
  if (::mkdir(ownFolder.c_str(), 0700) != 0 || ::symlink(path.c_str(), link.c_str()) != 0) {
    objection = std::string(kOtherPathNeeded) + "it cannot be linked: " + std::strerror(errno);
    return "";
  }
  links_.emplace(link, path);
  return link;
}

bool CleanLinks::makeFolder(std::string& objection) {
  const char* said = std::getenv("TMPDIR");
  if (said && makeFolderIn(said)) return true;
  if (makeFolderIn("/tmp")) return true;
  objection = std::string(kOtherPathNeeded) + "there is no folder for temporary files to link it from";
  return false;
}

bool CleanLinks::makeFolderIn(const std::string& place) {
  if (!place.starts_with('/') || !survivesCleaning(place)) return false;
  std::string folder = inFolder(place, "umsctl.XXXXXX");
  if (!::mkdtemp(folder.data())) return false;
  folder_ = cleaner_.service().convertAvailableString(folder).value_or(folder);
  return true;
}

}  // namespace umsctl
