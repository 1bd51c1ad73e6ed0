/// The device's volumes, internal memory first, and every lookup by volume index.
///
/// Each volume is a dictionary ("diskType", "volumePath", and "diskIndex", which the registry assigns). Safe
/// from any thread: the list is replaced in one step, so a lookup never sees it half rebuilt.
#pragma once

#include "umsservice/Value.h"

namespace umsservice {

/// The "diskType" of internal memory; every other one is a card's.
inline constexpr int32_t kInternalDisk = 1;

class VolumeRegistry {
 public:
  /// Appends a volume and rebuilds the list: internal volumes first, then the others, each in the order in
  /// which it was held, numbered from 0; volumes without "diskType" are dropped.
  void addDiskInformation(const MaybeDictionary& diskInformation);
  /// Removes the first volume that is equal to the argument, "diskIndex" included; the others keep their
  /// index.
  void removeDiskInformation(const MaybeDictionary& diskInformation);

  /// The list itself: later changes show in it.
  Array diskInformation() const { return volumes_; }
  size_t count() const { return volumes_.count(); }
  MaybeDictionary diskInfoFromIndex(uint32_t index) const;
  MaybeString diskVolumeNameFromIndex(uint32_t index) const;
  /// The same lookup, with "diskIndex" read as a signed number.
  MaybeString volumePath(uint32_t index) const;
  /// The first volume of type 1 (internal) or 2, and its index; nil and 0 when there is none.
  MaybeString volumePathWithOption(bool internal, uint32_t& index) const;

  /// The first dictionary of a list whose "diskIndex" is present and equal to the index.
  static MaybeDictionary diskInfoFromDiskInfoList(const MaybeArray& diskInfoList, uint32_t index);

 private:
  Array volumes_;  ///< the reference never changes; its elements do
};

}  // namespace umsservice
