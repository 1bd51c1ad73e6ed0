/// The index files on a volume: each channel has a folder of its own, and in it NAME.xml, named like the
/// folder, which lists the channel and its episodes. In the file an episode's "FilePath" is the bare name; in
/// every dictionary that leaves the service it is the full path.
///
/// One for each service; called on the worker and on the host's threads, safe from any. A file is replaced
/// whole or not at all. What a new index does not take over is kept beside it as NAME.xml.damaged, and
/// nothing is dropped from an index unless the channel's folder itself has answered.
#pragma once

#include "ChannelIndex.h"
#include "FolderOperations.h"
#include "Mutex.h"
#include "PodcastSource.h"

namespace umsservice {

class PodcastIndexFiles final : public PodcastSource {
 public:
  PodcastIndexFiles(const ServiceContext& context, const FolderOperations& folders)
      : context_(context), folders_(folders), files_(context.files()) {}

  /// The channel's dictionary as its index file has it (bare names), or nil.
  MaybeDictionary checkXmlData(const MaybeString& channelFolder, const MaybeString& channelName) const;
  /// Writes a document as the channel's index file; false, and the file stays as it is, when that fails or
  /// the service is released. A file that is no index is kept beside.
  bool sendXmlData(const XMLDocument* xmlDocument, const MaybeString& filePath,
                   const MaybeString& podcastName) const;
  /// The same with a document's bytes, which are written as they are; null is no document.
  bool sendXmlData(const std::shared_ptr<const Data>& xmlDocument, const MaybeString& filePath,
                   const MaybeString& podcastName) const;
  /// Files below a folder, at any depth, whose extension is "xml" in any letter case; paths relative to it.
  bool podcastXmlLists(const MaybeString& folder, MaybeArray& contents) const override;
  /// The channel of one index file, with full paths and without the episodes whose files are gone; they leave
  /// the index too. Nil for a file that is no index; the folder's own index is then written empty.
  MaybeDictionary umsPodcastXmlData(const MaybeString& path) const override;
  /// Makes every episode's path full, in place.
  static void makeEpisodeFullPath(const Dictionary& podcast, const MaybeString& channelFolder);
  /// The channel that the bytes of an index hold; every path gets the folder in front, whatever it is.
  MaybeDictionary makeXMLInfoFromFileData(const MaybeString& channelFolder,
                                          const std::shared_ptr<const Data>& data) const;

  /// The index of a channel that is about to change: what the device has, or else the host's channel, with
  /// its episodes or without.
  ChannelIndex open(const QDUIPodcastXMLConverter& converter, const std::string& channelFolder,
                    const std::string& channelName, const Dictionary& hostChannel,
                    bool withHostEpisodes) const;
  /// Whether a file of that name would lie where a channel's index lies, or one that was kept beside it.
  static bool isNameOfIndex(const std::string& fileName, const std::string& channelName);
  /// Writes it back, as `sendXmlData` does.
  bool write(const ChannelIndex& index, const std::string& channelFolder,
             const std::string& channelName) const;

 private:
  struct Reading;
  struct Mending;
  /// Puts the bytes of an index under its path. Runs while no other index of this service is written.
  using Put = std::function<bool(const std::string& path, const std::string& bytes)>;

  std::unique_ptr<QDUIPodcastXMLConverter> newConverter(const char* method) const;
  std::optional<Reading> read(const std::string& path, const char* method) const;
  /// A document on its way to a file: itself, for the log, and its bytes, where it has any.
  struct Outgoing {
    const void* document = nullptr;
    std::optional<std::string> bytes;
  };
  static Outgoing outgoing(const XMLDocument* xmlDocument);
  bool putIndex(const std::string& path, const std::string& bytes) const;
  bool send(const Outgoing& outgoing, const MaybeString& filePath, const MaybeString& podcastName,
            const Put& put) const;
  bool dropVanished(Mending& mending) const;
  bool isVanished(const std::string& folder, const Value& episode) const;
  bool putMended(const Mending& mending, const std::string& path, const std::string& bytes) const;
  bool replace(const std::string& path, const std::string& bytes) const;
  bool keepAndReplace(const std::string& path, const std::string& bytes) const;
  MaybeString keepBeside(const std::string& path) const;

  const ServiceContext& context_;
  const FolderOperations& folders_;
  FileSystem& files_;
  mutable Mutex writing_;  ///< an index is looked at and replaced in one step
};

}  // namespace umsservice
