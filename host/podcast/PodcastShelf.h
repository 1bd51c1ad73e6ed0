/// The channels on a volume, as `ls` shows them and `rm` and `send` find them.
///
/// Only index files that lie where the service writes them count: NAME/NAME.xml in the podcast folder.
/// Looking has the service mend the index: episodes whose files are gone leave it.
#pragma once

#include <string>
#include <vector>

#include "Device.h"
#include "WatchedFiles.h"

namespace umsctl {

struct ShelvedChannel {
  std::string name;                ///< of its folder
  std::string folder;              ///< full path
  std::string title;               ///< as the index says it; the folder's name where it says nothing
  umsservice::Dictionary podcast;  ///< episodes with full paths
  std::vector<umsservice::Dictionary> episodes;
};

class PodcastShelf {
 public:
  /// Reads every channel of a volume, sorted by title, and tells of what cannot be read. `files` are those of
  /// the device.
  PodcastShelf(const Errand& errand, WatchedFiles& files, Device& device, const Device::Volume& volume);

  /// Full path of the folder in which the channels of a volume lie.
  static std::string folderOf(Device& device, const Device::Volume& volume);

  const std::string& folder() const { return folder_; }
  const std::vector<ShelvedChannel>& channels() const { return channels_; }
  bool everythingWasRead() const { return damaged_.empty(); }

  /// The channel that a person means by its title or its folder. Throws `Refusal` for none and for several.
  const ShelvedChannel& channel(const std::string& words) const;

 private:
  void read(Device& device, const std::string& relativePath);

  std::string folder_;
  std::vector<ShelvedChannel> channels_;
  std::vector<std::string> damaged_;  ///< full paths of what is no index
};

/// What is said of the file that a damaged index has become.
inline constexpr auto kSetAside = "the damaged index of a podcast channel is kept here; the new one is empty";

/// Whether a person means this by what was typed; "./" in front is how a word with a special meaning is
/// typed.
bool isMeant(const std::string& typed, const std::string& name);

}  // namespace umsctl
