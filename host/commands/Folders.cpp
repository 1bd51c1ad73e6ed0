#include "commands/Folders.h"

#include "Device.h"
#include "Output.h"
#include "Paths.h"

namespace umsctl {
namespace {

using umsservice::FileSystem;
using umsservice::FileType;

ExitStatus failed(const std::string& folder, const std::string& cause) {
  complain(folder.empty() ? "''" : folder, cause);
  return ExitStatus::SomeFailed;
}

/// Why a folder must stay, or nothing.
std::string objection(FileSystem& files, const std::string& path, bool recursive) {
  std::string name = lastComponent(path);
  if (!path.empty() && (name.empty() || name == "." || name == "..")) return "it must be given by its name";
  auto found = files.linkAttributes(path);
  if (!found) return found.error().words();
  if (found->type != FileType::Directory) return "it is not a folder";
  if (recursive) return "";
  auto entries = files.list(path);
  if (!entries) return entries.error().words();
  return entries->empty() ? "" : "it is not empty; --recursive removes it with everything in it";
}

}  // namespace

ExitStatus makeFolder(const std::string& folder) {
  Device device({});
  std::string path = absolutePath(folder);
  if (device.service().createFolder(path)) return ExitStatus::AllDone;
  // The service says that it could not, not why; asking once more does.
  auto made = device.files().createFolders(path);
  return made ? ExitStatus::AllDone : failed(folder, made.error().words());
}

ExitStatus removeFolder(const RemoveFolderOptions& options) {
  Device device({});
  std::string path = withoutTrailingSlashes(absolutePath(options.folder));
  std::string cause = objection(device.files(), path, options.recursive);
  if (!cause.empty()) return failed(options.folder, cause);
  if (device.service().deleteFolder(path)) return ExitStatus::AllDone;
  auto removed = device.files().remove(path);
  return removed ? ExitStatus::AllDone : failed(options.folder, removed.error().words());
}

}  // namespace umsctl
