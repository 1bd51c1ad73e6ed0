/// The home folder of each media type on each volume: the device profile's answer, or fixed names.
///
/// Four lookups, as the host's protocol has them; they differ on purpose in what they take, in how they tell
/// the internal memory from a card, and in how the answer is joined. Safe from any thread.
#pragma once

#include "Identity.h"
#include "Log.h"
#include "VolumeRegistry.h"

namespace umsservice {

class DefaultFolders {
 public:
  DefaultFolders(const Environment& environment, const Log& log, const Identity& identity,
                 const VolumeRegistry& volumes)
      : profile_(environment.profileInfo), log_(log), identity_(identity), volumes_(volumes) {}

  /// The full folder. Internal means "diskType" 1. The profile's folder is joined with nothing between, the
  /// fixed name with a separator; an empty answer of the profile counts as none.
  MaybeString defaultMediaContentsPath(const MaybeString& volumePath, int32_t diskType,
                                       int32_t mediaType) const;

  /// A folder relative to the volume, as the profile gives it. Internal means index 0.
  MaybeString defaultUmsMediaPath(uint32_t diskIndex, uint32_t mediaType) const;

  /// A folder of the internal memory that ends with a slash; a fixed name begins with one too.
  MaybeString getMediaDefaultPath(int32_t mediaType) const;

  /// What the host itself wrote into a volume's dictionary; the profile is not asked.
  static MaybeString defaultMediaContentsPath(const MaybeArray& diskInfoList, uint32_t index,
                                              int32_t mediaType);

 private:
  MaybeString profileFolder(bool internal, int32_t mediaType) const;

  const std::shared_ptr<ProfileInfo> profile_;
  const Log& log_;
  const Identity& identity_;
  const VolumeRegistry& volumes_;
};

}  // namespace umsservice
