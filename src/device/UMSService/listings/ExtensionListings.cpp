#include "CaseFolding.h"
#include "DeviceScan.h"
#include "MediaListings.h"
#include "MediaTypes.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kRecursiveMethod = "-[UMSService fileInformationList:extensionList:recursive:]";
constexpr auto kFlatMethod = "-[UMSService fileInformationList:extensionList:]";

/// The folder of a file relative to the listed folder, without a separator in front.
std::string folderName(const std::string& path, const std::string& listedFolder) {
  std::string folder = stringByDeletingLastPathComponent(path);
  // Deleting a component tidies separators; the listed folder has to be tidied alike to be found.
  const std::string listed = stringByDeletingLastPathComponent(joinedPath(listedFolder, "-"));
  size_t at = findIgnoringAsciiCase(folder, listed);
  if (at != std::string::npos) folder.erase(at, listed.size());
  if (folder.starts_with('/')) folder.erase(0, 1);
  return folder;
}

}  // namespace

bool MediaListings::isFile(const std::string& path, FileType listedType) const {
  if (listedType == FileType::Directory) return false;
  if (listedType == FileType::Regular || listedType == FileType::Other) return true;
  auto attributes = context_.files().attributes(path);
  return attributes && attributes->type != FileType::Directory;
}

/// The tests by name alone, with a line for each that turns a file away.
bool MediaListings::isListable(const std::string& folder, const ListedPath& entry,
                               const MaybeArray& extensions, const char* method) const {
  std::string extension = pathExtension(entry.path);
  if (extension.empty()) {
    context_.log.write(1, method, "File Extension is nil. Next path search");
    return false;
  }
  if (isHiddenFile(entry.path)) {
    context_.log.write(7, method, "%@ file in Hidden folder. Skip file", joinedPath(folder, entry.path));
    return false;
  }
  return checkContentWithExtentions(extension, extensions);
}

MaybeArray MediaListings::fileInformationList(const MaybeString& folder, const MaybeArray& extensionList,
                                              bool recursive) const {
  if (!extensionList) return std::nullopt;
  std::optional<std::vector<ListedPath>> entries;
  if (folder) entries = recursive ? folders_.subpathsAtPath(*folder) : folders_.entriesAtPath(*folder);
  if (!entries) {
    context_.log.write(1, kRecursiveMethod, "Get UMS File list failed");
    return std::nullopt;
  }
  Array files;
  for (const ListedPath& entry : *entries) {
    if (!isFile(joinedPath(*folder, entry.path), entry.type)) continue;
    if (!isListable(*folder, entry, extensionList, kRecursiveMethod)) continue;
    if (MaybeDictionary file = fileByExtension(*folder, entry, recursive)) files.append(*file);
  }
  return files;
}

/// Name, path and size: from the tags where there are any, else from the file itself.
MaybeDictionary MediaListings::fileByExtension(const std::string& folder, const ListedPath& entry,
                                               bool recursive) const {
  std::string path = joinedPath(folder, entry.path);
  Dictionary file;
  if (MaybeDictionary tags = tagsOf(path)) {
    for (const char* name : {key::kFileName, key::kFilePath, key::kFileSize}) file.set(name, tags->get(name));
  } else {
    auto attributes = context_.files().attributes(path);
    if (!attributes) return std::nullopt;
    file =
        Dictionary{{key::kFileName, entry.path}, {key::kFilePath, path}, {key::kFileSize, attributes->size}};
  }
  if (recursive) file.set("FolderName", folderName(path, folder));
  return file;
}

MaybeArray MediaListings::fileInformationList(const MaybeString& folder,
                                              const MaybeArray& extensionList) const {
  if (!extensionList) return std::nullopt;
  auto entries = folder ? folders_.entriesAtPath(*folder) : std::nullopt;
  if (!entries) {
    context_.log.write(1, kFlatMethod, "Get UMS File list failed");
    return std::nullopt;
  }
  Array files;
  for (const ListedPath& entry : *entries) {
    if (!isListable(*folder, entry, extensionList, kFlatMethod)) continue;
    if (MaybeDictionary tags = tagsOf(joinedPath(*folder, entry.path))) files.append(*tags);
  }
  return files;
}

}  // namespace umsservice
