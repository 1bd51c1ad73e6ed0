#include "commands/Tree.h"

#include <algorithm>
#include <functional>
#include <map>

#include "Amounts.h"
#include "Colour.h"
#include "EscapedName.h"
#include "Paths.h"
#include "Terminal.h"
#include "VolumeHeadline.h"
#include "WatchedFiles.h"

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

/// What stands before a name: the lines from the folders above, and the branch to the name itself.
struct Branches {
  const char* through;  ///< a folder above has more below it
  const char* past;     ///< a folder above has shown everything
  const char* to;
  const char* toLast;
};

constexpr Branches kDrawn{"\u2502   ", "    ", "\u251c\u2500\u2500 ", "\u2514\u2500\u2500 "};
constexpr Branches kTyped{"|   ", "    ", "|-- ", "`-- "};

/// Shows trees, and tells of folders that cannot be read.
class TreePrinter {
 public:
  TreePrinter(const Errand& errand, Device& device)
      : events_(errand.events()), device_(device), branches_(showsUtf8() ? kDrawn : kTyped) {}

  /// `folders` as the service lists them: the root first, full paths.
  void show(const std::string& root, const Array& folders) {
    below_.clear();
    for (const std::string& path : textsOf(folders)) {
      if (path != root) below_[path.substr(0, path.rfind('/'))].push_back(lastComponent(path));
    }
    events_.shown({"", "folder", {{"path", root}, {"link", false}}});
    showFolder(root, "");
  }

  void showTotal() const {
    events_.remarked(countText(folders_, "folder") + ", " + countText(files_, "file") + ", " +
                     byteText(bytes_) + "\n");
  }

  bool everythingWasRead() const { return everythingWasRead_; }

 private:
  struct Entry {
    std::string name;
    bool isFolder;
    bool operator<(const Entry& other) const { return name < other.name; }
  };

  /// Files and folders together, by name.
  std::vector<Entry> entriesOf(const std::string& path) {
    std::vector<Entry> entries;
    MaybeArray names = device_.service().fileLists(path);
    if (!names) tellUnreadable(path);
    for (const std::string& name : names ? textsOf(*names) : std::vector<std::string>())
      entries.push_back({name, false});
    for (const std::string& name : below_[path]) entries.push_back({name, true});
    std::stable_sort(entries.begin(), entries.end());
    return entries;
  }

  void showFolder(const std::string& path, const std::string& before) {
    const std::vector<Entry> entries = entriesOf(path);
    for (const Entry& entry : entries) {
      const bool isLast = &entry == &entries.back();
      const std::string below = inFolder(path, entry.name);
      const std::string line = before + (isLast ? branches_.toLast : branches_.to);
      if (!entry.isFolder) {
        showFile(line, below);
      } else if (showsContents(line, below)) {
        showFolder(below, before + (isLast ? branches_.past : branches_.through));
      }
    }
  }

  void showFile(const std::string& line, const std::string& path) {
    const uint64_t size = device_.service().fileSizeAtDevice(path);
    events_.shown({line + escaped(lastComponent(path)) + "  " + byteText(size) + "\n",
                   "file",
                   {{"path", path}, {"bytes", size}}});
    ++files_;
    bytes_ += size;
  }

  /// The line of a folder; true where its contents are to follow.
  bool showsContents(const std::string& line, const std::string& path) {
    const std::string name = escaped(lastComponent(path)) + "/";
    const bool link = isLink(path);
    const std::string shown = outputHasColour() ? painted(Paint::Strong, name) : name;
    events_.shown(
        {line + shown + (link ? "  (a link)" : "") + "\n", "folder", {{"path", path}, {"link", link}}});
    ++folders_;
    return !link;
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
  const Branches& branches_;
  std::map<std::string, std::vector<std::string>> below_;  ///< names of the folders in a folder
  size_t folders_ = 0;
  size_t files_ = 0;
  uint64_t bytes_ = 0;
  bool everythingWasRead_ = true;
};

/// What a walk of the service finds, while the person is told that it goes on.
MaybeArray walked(WatchedFiles& files, const std::function<MaybeArray()>& walk) {
  WatchedFiles::Phase phase(files, "Looking at folders");
  return walk();
}

void showVolumes(const Errand& errand, WatchedFiles& files, Device& device, TreePrinter& printer) {
  auto trees = walked(files, [&] { return device.service().getDeviceAllFolderLists(); });
  for (const Device::Volume& volume : device.volumes()) {
    errand.events().shown(volumeHeadline(volume));
    auto tree = trees ? trees->at(volume.index).dictionary() : std::nullopt;
    auto folders = tree ? tree->get("folderLists").array() : std::nullopt;
    if (folders) printer.show(volume.path, *folders);
  }
}

}  // namespace

ExitStatus tree(const TreeOptions& options, const Errand& errand) {
  auto files = std::make_shared<WatchedFiles>(errand);
  Device device(options.volumes, errand, nullptr, files);
  TreePrinter printer(errand, device);
  if (options.folder) {
    std::string root = withoutTrailingSlashes(absolutePath(*options.folder));
    errand.events().remarked(escaped(*options.folder) + "\n");
    auto folders = walked(*files, [&] { return device.service().recursiveFolderLists(root); });
    printer.show(root, *folders);
  } else {
    showVolumes(errand, *files, device, printer);
  }
  printer.showTotal();
  return printer.everythingWasRead() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
}

}  // namespace umsctl
