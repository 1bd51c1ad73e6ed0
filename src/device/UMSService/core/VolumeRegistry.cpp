#include "VolumeRegistry.h"

#include <algorithm>

#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr int32_t kCardDisk = 2;

void appendNumbered(std::vector<Value>& rebuilt, const std::vector<Value>& volumes, bool internal) {
  for (const Value& element : volumes) {
    auto volume = element.dictionary();
    if (!volume || !volume->contains(key::kDiskType)) continue;
    if ((volume->get(key::kDiskType).intValue() == kInternalDisk) != internal) continue;
    Dictionary numbered = volume->mutableCopy();
    numbered.set(key::kDiskIndex, static_cast<uint32_t>(rebuilt.size()));
    rebuilt.emplace_back(numbered);
  }
}

/// Whether two lists hold the same dictionaries, and nothing else has come in between.
bool holdsTheSame(const std::vector<Value>& left, const std::vector<Value>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const Value& a, const Value& b) {
    auto first = a.dictionary();
    auto second = b.dictionary();
    return first && second ? first->isSame(*second) : a.kind() == b.kind();
  });
}

template <typename Matches>
MaybeDictionary firstVolume(const Array& list, Matches matches) {
  for (const Value& element : list.snapshot()) {
    auto volume = element.dictionary();
    if (volume && matches(*volume)) return volume;
  }
  return std::nullopt;
}

}  // namespace

void VolumeRegistry::addDiskInformation(const MaybeDictionary& diskInformation) {
  if (!diskInformation) return;
  // Reading the dictionaries may run a host's code, so nothing is locked meanwhile; whoever changes the list
  // just then is heard, and it is rebuilt from what they made of it.
  for (bool done = false; !done;) {
    const std::vector<Value> before = volumes_.snapshot();
    std::vector<Value> volumes = before;
    volumes.emplace_back(*diskInformation);
    std::vector<Value> rebuilt;
    appendNumbered(rebuilt, volumes, true);
    appendNumbered(rebuilt, volumes, false);
    done = volumes_.edit([&](std::vector<Value>& present) {
      if (!holdsTheSame(present, before)) return false;
      present.swap(rebuilt);
      return true;
    });
  }
}

void VolumeRegistry::removeDiskInformation(const MaybeDictionary& diskInformation) {
  if (!diskInformation) return;
  for (bool done = false; !done;) {
    // Compared without a lock, as above; removed only where it still stands.
    auto volume = firstVolume(volumes_, [&](const Dictionary& candidate) {
      return candidate.isEqualToDictionary(*diskInformation);
    });
    if (!volume) return;
    done = volumes_.edit([&](std::vector<Value>& present) {
      auto found = std::find_if(present.begin(), present.end(), [&](const Value& element) {
        auto dictionary = element.dictionary();
        return dictionary && dictionary->isSame(*volume);
      });
      if (found == present.end()) return false;
      present.erase(found);
      return true;
    });
  }
}

MaybeDictionary VolumeRegistry::diskInfoFromIndex(uint32_t index) const {
  return diskInfoFromDiskInfoList(volumes_, index);
}

MaybeDictionary VolumeRegistry::diskInfoFromDiskInfoList(const MaybeArray& diskInfoList, uint32_t index) {
  if (!diskInfoList) return std::nullopt;
  return firstVolume(*diskInfoList, [index](const Dictionary& volume) {
    Value diskIndex = volume.get(key::kDiskIndex);
    return !diskIndex.isNil() && diskIndex.unsignedIntValue() == index;
  });
}

MaybeString VolumeRegistry::diskVolumeNameFromIndex(uint32_t index) const {
  auto volume = diskInfoFromIndex(index);
  return volume ? volume->string(key::kVolumePath) : std::nullopt;
}

MaybeString VolumeRegistry::volumePath(uint32_t index) const {
  auto volume = firstVolume(volumes_, [index](const Dictionary& candidate) {
    Value diskIndex = candidate.get(key::kDiskIndex);
    return !diskIndex.isNil() && diskIndex.intValue() == static_cast<int32_t>(index);
  });
  return volume ? volume->string(key::kVolumePath) : std::nullopt;
}

MaybeString VolumeRegistry::volumePathWithOption(bool internal, uint32_t& index) const {
  index = 0;
  auto volume = firstVolume(volumes_, [internal](const Dictionary& candidate) {
    return candidate.get(key::kDiskType).intValue() == (internal ? kInternalDisk : kCardDisk);
  });
  if (!volume) return std::nullopt;
  index = volume->get(key::kDiskIndex).unsignedIntValue();
  return volume->string(key::kVolumePath);
}

}  // namespace umsservice
