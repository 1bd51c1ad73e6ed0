#include "PodcastIndexFiles.h"

#include <algorithm>
#include <cerrno>
#include <new>

#include "CaseFolding.h"
#include "FileContents.h"
#include "StringPaths.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kCheckMethod = "-[UMSService checkXmlData:channelName:]";
constexpr auto kSendMethod = "-[UMSService sendXmlData:xmlDocument:filePath:podcastName:]";
constexpr auto kMendMethod = "-[UMSService umsPodcastXmlData:]";

std::string indexPath(const std::string& channelFolder, const std::string& channelName) {
  return channelFolder + "/" + channelName + ".xml";
}

std::string_view textOf(const Data& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

const void* pointerTo(const MaybeString& text) {
  return text ? text->data() : nullptr;
}

bool isMissing(const FileError& error) {
  return error.systemNumber == ENOENT || error.systemNumber == ENOTDIR;
}

/// A name that cannot be on any volume.
bool isImpossible(const FileError& error) {
  return error.systemNumber == ENAMETOOLONG || error.systemNumber == EINVAL;
}

std::vector<Value> episodesOf(const Dictionary& podcast) {
  auto episodes = podcast.get(kChildren).array();
  return episodes ? episodes->snapshot() : std::vector<Value>();
}

void putInFront(const std::string& folder, Dictionary episode) {
  MaybeString filePath = episode.string(key::kFilePath);
  if (filePath) episode.set(key::kFilePath, joinedPath(folder, *filePath));
}

/// The name of the index that belongs to a folder; nil for a path that names none.
MaybeString channelNameOf(const std::string& folder) {
  std::string name = lastPathComponent(folder);
  bool isName = !name.empty() && name != "/" && name != "." && name != "..";
  return isName ? MaybeString(name) : std::nullopt;
}

/// Whether a path leads out of the folder that it is joined to; an index comes from a device.
bool leadsOut(const std::string& path) {
  auto components = pathComponents(path);
  return std::find(components.begin(), components.end(), "..") != components.end();
}

}  // namespace

/// The bytes of an index file; none for one that is too long.
struct PodcastIndexFiles::Reading {
  std::optional<Data> bytes;
};

/// One index file on its way through `umsPodcastXmlData`.
struct PodcastIndexFiles::Mending {
  std::string path;
  std::string folder;
  FileResult<FileAttributes> folderBefore;
  Reading reading;
  MaybeDictionary podcast;

  /// Whether a file has the bytes that were read.
  bool wasRead(const FileResult<Data>& contents) const {
    return contents && reading.bytes && *contents == *reading.bytes;
  }
};

std::unique_ptr<QDUIPodcastXMLConverter> PodcastIndexFiles::newConverter(const char* method) const {
  std::unique_ptr<QDUIPodcastXMLConverter> converter(new (std::nothrow)
                                                         QDUIPodcastXMLConverter(context_.log));
  if (!converter) context_.log.write(1, method, "podcast XML Converter is failed.");
  return converter;
}

/// Nothing when the file cannot be opened or read.
std::optional<PodcastIndexFiles::Reading> PodcastIndexFiles::read(const std::string& path,
                                                                  const char* method) const {
  auto bytes = readContents(files_, path, XMLDocument::kLongest);
  if (bytes) return Reading{std::move(*bytes)};
  if (bytes.error().systemNumber == EFBIG) {
    context_.log.write(3, method, "failed to load xml:%@", bytes.error());
    return Reading{};
  }
  context_.log.write(3, method, "Open File Handle is failed. File Path = %@", path);
  return std::nullopt;
}

MaybeDictionary PodcastIndexFiles::checkXmlData(const MaybeString& channelFolder,
                                                const MaybeString& channelName) const {
  if (!channelFolder || !channelName) {
    context_.log.write(3, kCheckMethod, "Input parameter is invalid. podcastName = %@, channelName = %@",
                       channelFolder, channelName);
    return std::nullopt;
  }
  auto converter = newConverter(kCheckMethod);
  if (!converter) return std::nullopt;
  auto reading = read(indexPath(*channelFolder, *channelName), kCheckMethod);
  if (!reading || !reading->bytes) return std::nullopt;
  return converter->makePodcastDictionaryFromXML(textOf(*reading->bytes));
}

ChannelIndex PodcastIndexFiles::open(const QDUIPodcastXMLConverter& converter,
                                     const std::string& channelFolder, const std::string& channelName,
                                     const Dictionary& hostChannel, bool withHostEpisodes) const {
  MaybeDictionary existing = checkXmlData(channelFolder, channelName);
  return existing ? ChannelIndex(converter, existing, true, channelFolder, ChannelIndex::Origin::DeviceFile)
                  : ChannelIndex(converter, hostChannel, withHostEpisodes, channelFolder,
                                 ChannelIndex::Origin::HostDictionary);
}

bool PodcastIndexFiles::sendXmlData(const XMLDocument* xmlDocument, const MaybeString& filePath,
                                    const MaybeString& podcastName) const {
  return send(outgoing(xmlDocument), filePath, podcastName,
              [&](const std::string& path, const std::string& bytes) { return putIndex(path, bytes); });
}

bool PodcastIndexFiles::sendXmlData(const std::shared_ptr<const Data>& xmlDocument,
                                    const MaybeString& filePath, const MaybeString& podcastName) const {
  Outgoing given{xmlDocument.get(), std::nullopt};
  if (xmlDocument) given.bytes = std::string(textOf(*xmlDocument));
  return send(given, filePath, podcastName,
              [&](const std::string& path, const std::string& bytes) { return putIndex(path, bytes); });
}

PodcastIndexFiles::Outgoing PodcastIndexFiles::outgoing(const XMLDocument* xmlDocument) {
  return {xmlDocument, xmlDocument ? xmlDocument->bytes() : std::nullopt};
}

/// Any file that is no index stays beside the new one.
bool PodcastIndexFiles::putIndex(const std::string& path, const std::string& bytes) const {
  auto existing = readContents(files_, path, XMLDocument::kLongest);
  bool isIndex = existing && QDUIPodcastXMLConverter::isIndex(textOf(*existing));
  return isIndex ? replace(path, bytes) : keepAndReplace(path, bytes);
}

bool PodcastIndexFiles::isNameOfIndex(const std::string& fileName, const std::string& channelName) {
  const std::string index = channelName + ".xml";
  // Players' file systems know neither letter cases nor blanks and dots at the end.
  std::string_view name = fileName;
  name = name.substr(0, name.find_last_not_of(" .") + 1);
  if (equalIgnoringCase(name, index)) return true;
  // Each of these may be the one: a channel's own name may have the words in it.
  for (size_t start = 0; start < name.size(); ++start) {
    const size_t kept = findIgnoringAsciiCase(name.substr(start), ".xml.damaged");
    if (kept == std::string_view::npos) return false;
    start += kept;
    if (equalIgnoringCase(name.substr(0, start + 4), index)) return true;
  }
  return false;
}

bool PodcastIndexFiles::write(const ChannelIndex& index, const std::string& channelFolder,
                              const std::string& channelName) const {
  bool takesOver = index.origin() == ChannelIndex::Origin::DeviceFile;
  return send(outgoing(&index.document()), channelFolder, channelName,
              [&](const std::string& path, const std::string& bytes) {
                return takesOver ? replace(path, bytes) : keepAndReplace(path, bytes);
              });
}

bool PodcastIndexFiles::send(const Outgoing& outgoing, const MaybeString& filePath,
                             const MaybeString& podcastName, const Put& put) const {
  context_.log.write(7, kSendMethod, "ENTER");
  if (!outgoing.document || !filePath || !podcastName) {
    context_.log.write(3, kSendMethod, "Input parameter is invalid. xmlData = %p, filePath = %p",
                       outgoing.document, pointerTo(filePath));
    return false;
  }
  if (context_.isReleased()) {
    context_.log.write(5, kSendMethod, "Device Disconnected - %@", context_.identity.currentLocationID());
    return false;
  }
  bool written = false;
  if (outgoing.bytes) {
    MutexLock lock(writing_);
    written = put(indexPath(*filePath, *podcastName), *outgoing.bytes);
  }
  if (!written) context_.log.write(1, kSendMethod, "XML File Create is failed. XML File Path = %@", filePath);
  context_.log.write(7, kSendMethod, "EXIT");
  return written;
}

bool PodcastIndexFiles::replace(const std::string& path, const std::string& bytes) const {
  return static_cast<bool>(replaceContents(files_, path, bytes));
}

/// For an index that knows nothing of the file that it takes the place of.
bool PodcastIndexFiles::keepAndReplace(const std::string& path, const std::string& bytes) const {
  auto existing = files_.linkAttributes(path);
  if (!existing && !isMissing(existing.error())) return false;
  if (!existing || existing->type != FileType::Regular) return replace(path, bytes);
  MaybeString kept = keepBeside(path);
  if (!kept) return false;
  if (replace(path, bytes)) return true;
  (void)files_.move(*kept, path);
  return false;
}

/// Moves a file to the first free name beside it; nil when it stays where it is.
MaybeString PodcastIndexFiles::keepBeside(const std::string& path) const {
  constexpr int kMostKept = 100;
  for (int i = 1; i <= kMostKept; ++i) {
    std::string kept = path + ".damaged" + (i == 1 ? "" : "." + std::to_string(i));
    FileStatus moved = files_.move(path, kept);
    if (moved) return kept;
    if (moved.error().systemNumber != EEXIST) break;
  }
  return std::nullopt;
}

bool PodcastIndexFiles::podcastXmlLists(const MaybeString& folder, MaybeArray& contents) const {
  if (!folder) {
    context_.log.write(3, "-[UMSService podcastXmlLists:fileName:contents:]",
                       "Input parameters is invalid. FolderNameString = %@", folder);
    return false;
  }
  std::vector<Value> indexes;
  const PathList listed = folders_.subpathsAtPath(*folder).value_or(PathList());
  for (size_t i = 0; i < listed.size(); ++i) {
    if (listed.typeOf(i) == FileType::Directory || !equalIgnoringCase(pathExtensionIn(listed[i]), "xml"))
      continue;
    indexes.emplace_back(listed[i]);
  }
  contents = Array(std::move(indexes));
  return true;
}

MaybeDictionary PodcastIndexFiles::umsPodcastXmlData(const MaybeString& path) const {
  if (!path) {
    context_.log.write(3, kMendMethod, "File Path is invalid.");
    return std::nullopt;
  }
  auto converter = newConverter(kMendMethod);
  if (!converter) return std::nullopt;
  std::string folder = stringByDeletingLastPathComponent(*path);
  Mending mending{*path, folder, files_.attributes(folder), {}, {}};
  auto reading = read(*path, kMendMethod);
  if (!reading) return std::nullopt;
  mending.reading = std::move(*reading);
  if (mending.reading.bytes)
    mending.podcast = converter->makePodcastDictionaryFromXML(textOf(*mending.reading.bytes));
  auto written = [&] { return converter->makePodcastXMLFromPodcastDictionary(mending.podcast, true); };
  XMLDocument document = written();
  if (!document.bytes()) {
    context_.log.write(3, kMendMethod, "Podcast Convert XML Data to Documents is fail.");
    return mending.podcast;
  }
  const size_t episodes = mending.podcast ? episodesOf(*mending.podcast).size() : 0;
  bool folderAnswers = !mending.podcast || dropVanished(mending);
  if (mending.podcast && episodesOf(*mending.podcast).size() < episodes) document = written();
  if (mending.podcast) {
    for (const Value& episode : episodesOf(*mending.podcast)) putInFront(folder, *episode.dictionary());
  }
  if (folderAnswers) {
    send(outgoing(&document), folder, channelNameOf(folder),
         [&](const std::string& target, const std::string& bytes) {
           return putMended(mending, target, bytes);
         });
  }
  return mending.podcast;
}

/// Takes the episodes out of the dictionary whose files are gone. False, and all stay, when it may be the
/// device that is gone: an unplugged volume leaves an empty folder behind, which has no channel's folder in
/// it.
bool PodcastIndexFiles::dropVanished(Mending& mending) const {
  std::vector<Value> there;
  std::vector<Value> episodes = episodesOf(*mending.podcast);
  for (const Value& episode : episodes) {
    if (!isVanished(mending.folder, episode)) there.push_back(episode);
  }
  auto folderNow = files_.attributes(mending.folder);
  const auto& folderBefore = mending.folderBefore;
  if (!folderNow || !folderBefore || folderNow->device != folderBefore->device ||
      folderNow->inode != folderBefore->inode)
    return false;
  mending.podcast->set(kChildren, Array(std::move(there)));
  return true;
}

/// Whether there is certainly no file where an index says that there is one.
bool PodcastIndexFiles::isVanished(const std::string& folder, const Value& episode) const {
  MaybeString filePath = episode.dictionary()->string(key::kFilePath);
  if (!filePath || leadsOut(*filePath)) return true;
  auto found = files_.attributes(joinedPath(folder, *filePath));
  if (found) return found->type == FileType::Directory;
  return isMissing(found.error()) || isImpossible(found.error());
}

/// Replaces the folder's own index by a mended one. Another thread, or another device's service, may have
/// written it since it was read: then that one stays.
bool PodcastIndexFiles::putMended(const Mending& mending, const std::string& path,
                                  const std::string& bytes) const {
  auto present = readContents(files_, path, XMLDocument::kLongest);
  if (present && textOf(*present) == bytes) return true;
  bool isOwnIndex = lastPathComponent(mending.path) == lastPathComponent(path);
  bool wasRead = mending.wasRead(present);
  if (mending.podcast && wasRead) return replace(path, bytes);
  if (isOwnIndex && mending.reading.bytes && !wasRead) return true;
  // A stray file that is no index says nothing about the channel whose index lies beside it.
  if (!mending.podcast && !isOwnIndex && present && QDUIPodcastXMLConverter::isIndex(textOf(*present)))
    return true;
  return keepAndReplace(path, bytes);
}

void PodcastIndexFiles::makeEpisodeFullPath(const Dictionary& podcast, const MaybeString& channelFolder) {
  if (!channelFolder) return;
  for (const Value& element : episodesOf(podcast)) {
    auto episode = element.dictionary();
    MaybeString filePath = episode ? episode->string(key::kFilePath) : std::nullopt;
    if (filePath) episode->set(key::kFilePath, fullEpisodePath(*channelFolder, *filePath));
  }
}

MaybeDictionary PodcastIndexFiles::makeXMLInfoFromFileData(const MaybeString& channelFolder,
                                                           const std::shared_ptr<const Data>& data) const {
  auto converter = newConverter("-[UMSService makeXMLInfoFromFileData:data:]");
  if (!converter) return std::nullopt;
  MaybeDictionary podcast = converter->makePodcastDictionaryFromXML(data ? textOf(*data) : "");
  if (!podcast || !channelFolder) return podcast;
  for (const Value& episode : episodesOf(*podcast)) putInFront(*channelFolder, *episode.dictionary());
  return podcast;
}

}  // namespace umsservice
