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
bool MediaListings::isListable(const std::string& folder, std::string_view subpath,
                               const MaybeArray& extensions, const char* method) const {
  std::string extension = pathExtension(subpath);
  if (extension.empty()) {
    context_.log.write(1, method, "File Extension is nil. Next path search");
    return false;
  }
  if (isHiddenFile(subpath)) {
    context_.log.write(7, method, "%@ file in Hidden folder. Skip file", joinedPath(folder, subpath));
    return false;
  }
  return checkContentWithExtentions(extension, extensions);
}

MaybeArray MediaListings::fileInformationList(const MaybeString& folder, const MaybeArray& extensionList,
                                              bool recursive) const {
  if (!extensionList) return std::nullopt;
  std::optional<PathList> paths;
  if (folder) paths = recursive ? folders_.subpathsAtPath(*folder) : folders_.entriesAtPath(*folder);
  if (!paths) {
    context_.log.write(1, kRecursiveMethod, "Get UMS File list failed");
    return std::nullopt;
  }
  Array files;
  for (size_t i = 0; i < paths->size(); ++i) {
    const std::string_view subpath = (*paths)[i];
    if (!isFile(joinedPath(*folder, subpath), paths->typeOf(i))) continue;
    if (!isListable(*folder, subpath, extensionList, kRecursiveMethod)) continue;
    if (MaybeDictionary file = fileByExtension(*folder, subpath, recursive)) files.append(*file);
  }
  return files;
}

/// Name, path and size: from the tags where there are any, else from the file itself.
MaybeDictionary MediaListings::fileByExtension(const std::string& folder, std::string_view subpath,
                                               bool recursive) const {
  std::string path = joinedPath(folder, subpath);
  Dictionary file;
  if (MaybeDictionary tags = tagsOf(path)) {
    for (const char* name : {key::kFileName, key::kFilePath, key::kFileSize}) file.set(name, tags->get(name));
  } else {
    auto attributes = context_.files().attributes(path);
    if (!attributes) return std::nullopt;
    file = Dictionary{{key::kFileName, subpath}, {key::kFilePath, path}, {key::kFileSize, attributes->size}};
  }
  if (recursive) file.set("FolderName", folderName(path, folder));
  return file;
}

MaybeArray MediaListings::fileInformationList(const MaybeString& folder,
                                              const MaybeArray& extensionList) const {
  if (!extensionList) return std::nullopt;
  auto paths = folder ? folders_.entriesAtPath(*folder) : std::nullopt;
  if (!paths) {
    context_.log.write(1, kFlatMethod, "Get UMS File list failed");
    return std::nullopt;
  }
  Array files;
  for (size_t i = 0; i < paths->size(); ++i) {
    if (!isListable(*folder, (*paths)[i], extensionList, kFlatMethod)) continue;
    if (MaybeDictionary tags = tagsOf(joinedPath(*folder, (*paths)[i]))) files.append(*tags);
  }
  return files;
}

}  // namespace umsservice
