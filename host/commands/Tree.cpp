#include "commands/Tree.h"

#include <algorithm>

#include "Amounts.h"
#include "EscapedName.h"
#include "Paths.h"
#include "VolumeHeadline.h"

namespace umsctl {
namespace {

using umsservice::Array;
using umsservice::FileType;
using umsservice::MaybeArray;

std::vector<std::string> textsOf(const Array& array) {
  std::vector<std::string> texts;
  for (const auto& element : array.snapshot()) texts.push_back(element.string().value_or(""));
  return texts;
}

/// Shows one tree, and tells of folders that cannot be read.
class TreePrinter {
 public:
  TreePrinter(const Errand& errand, Device& device) : events_(errand.events()), device_(device) {}

  /// `folders` as the service lists them: the root first, full paths.
  void show(const std::string& root, const Array& folders) {
    std::vector<std::string> paths = textsOf(folders);
    std::sort(paths.begin(), paths.end(), comesBefore);
    for (const std::string& path : paths) showFolder(root, path);
  }

  bool everythingWasRead() const { return everythingWasRead_; }

 private:
  void showFolder(const std::string& root, const std::string& path) {
    std::string below = path.size() > root.size() ? path.substr(root.size()) : "";
    auto depth = static_cast<size_t>(std::count(below.begin(), below.end(), '/'));
    const bool isLinked = depth > 0 && isLink(path);
    const std::string text = line(depth, lastComponent(path)) + (isLinked ? "/  (a link)\n" : "/\n");
    events_.shown({depth > 0 ? text : "", "folder", {{"path", path}, {"link", isLinked}}});
    if (isLinked) return;
    MaybeArray names = device_.service().fileLists(path);
    if (!names) return tellUnreadable(path);
    std::vector<std::string> files = textsOf(*names);
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
      uint64_t size = device_.service().fileSizeAtDevice(path + "/" + file);
      events_.shown({line(depth + 1, file) + "  " + byteText(size) + "\n",
                     "file",
                     {{"path", inFolder(path, file)}, {"bytes", size}}});
    }
  }

  static std::string line(size_t depth, const std::string& name) {
    return std::string(depth * 2, ' ') + escaped(name);
  }

  bool isLink(const std::string& path) {
    auto found = device_.files().linkAttributes(path);
    return found && found->type == FileType::SymbolicLink;
  }

  void tellUnreadable(const std::string& path) {
    everythingWasRead_ = false;
    auto listed = device_.files().list(path);
    events_.complained(path, listed ? "it could not be read" : listed.error().words());
  }

  Events& events_;
  Device& device_;
  bool everythingWasRead_ = true;
};

void showVolumes(const Errand& errand, Device& device, TreePrinter& printer) {
  auto trees = device.service().getDeviceAllFolderLists();
  for (const Device::Volume& volume : device.volumes()) {
    errand.events().shown(volumeHeadline(volume));
    auto tree = trees ? trees->at(volume.index).dictionary() : std::nullopt;
    auto folders = tree ? tree->get("folderLists").array() : std::nullopt;
    if (folders) printer.show(volume.path, *folders);
  }
}

}  // namespace

ExitStatus tree(const TreeOptions& options, const Errand& errand) {
  Device device(options.volumes, errand);
  TreePrinter printer(errand, device);
  if (options.folder) {
    std::string root = withoutTrailingSlashes(absolutePath(*options.folder));
    errand.events().remarked(escaped(*options.folder) + "\n");
    printer.show(root, *device.service().recursiveFolderLists(root));
  } else {
    showVolumes(errand, device, printer);
  }
  return printer.everythingWasRead() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
