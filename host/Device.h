/// A device made of folders: the volumes that a person names on the command line, and the service for them.
///
/// Owns the service; releasing the device stops what runs and waits for the worker.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Errand.h"
#include "umsservice/UMSService.h"

namespace umsctl {

/// By what the requests of a command choose between a profile's folders: not all go by the kind of a volume.
enum class ProfileChoice {
  Kind,          ///< internal memory or card
  Number,        ///< number 0 is taken for internal memory, every other one for a card
  NumberAsKind,  ///< number 1 is taken for internal memory, as its kind is 1, and number 0 for a card
};

/// The volumes as they stand on the command line.
struct VolumeFolders {
  std::optional<std::string> internal;
  std::optional<std::string> card;
  std::optional<std::string> profile{};  ///< file with the default folders; see `DefaultFoldersFile`
  ProfileChoice profileChoice = ProfileChoice::Kind;

  /// So that each volume gets its own folders, whatever the requests go by.
  VolumeFolders profileBy(ProfileChoice choice) const {
    VolumeFolders copy = *this;
    copy.profileChoice = choice;
    return copy;
  }
  bool none() const { return !internal && !card; }
};

class Device {
 public:
  struct Volume {
    uint32_t index = 0;  ///< as the service numbers them: internal memory first
    std::string kind;    ///< "internal" or "card"
    std::string path;    ///< full path, no slash at its end
  };

  /// Throws `Refusal` for a volume whose folder is not there and for a profile that makes no sense. Without
  /// volumes it serves single folders. `files` are in place of the errand's.
  Device(const VolumeFolders& folders, const Errand& errand,
         std::shared_ptr<umsservice::ItemObserver> observer = nullptr,
         std::shared_ptr<umsservice::FileSystem> files = nullptr);

  umsservice::UMSService& service() { return *service_; }
  umsservice::FileSystem& files() { return *environment_.fileSystem; }
  umsservice::NotificationCenter& notificationCenter() { return *environment_.notificationCenter; }

  /// The tags of a file on it without its cover picture; nothing where they cannot be read.
  umsservice::MaybeDictionary tagsOf(const std::string& path);

  const std::vector<Volume>& volumes() const { return volumes_; }
  /// Throws `Refusal` when no volume has that index.
  const Volume& volume(uint32_t index) const;

 private:
  void addVolume(const std::string& folder, bool internal);

  umsservice::Environment environment_;
  std::unique_ptr<umsservice::UMSService> service_;
  std::vector<Volume> volumes_;
};

}  // namespace umsctl
