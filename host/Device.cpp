#include "Device.h"

#include "DefaultFoldersFile.h"
#include "EscapedName.h"
#include "Paths.h"
#include "Refusal.h"
#include "TagReader.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

constexpr int32_t kInternalDisk = 1;
constexpr int32_t kCardDisk = 2;

/// Log lines carry names from the device, which must not drive the terminal.
class EscapingLogSink final : public LogSink {
 public:
  explicit EscapingLogSink(std::shared_ptr<LogSink> sink) : sink_(std::move(sink)) {}
  void write(const std::string& line) override { sink_->write(escaped(line)); }

 private:
  const std::shared_ptr<LogSink> sink_;
};

/// Answers each question for the volume that is meant.
std::shared_ptr<ProfileInfo> profileOf(const VolumeFolders& folders, FileSystem& files) {
  if (!folders.profile) return nullptr;
  const char* first = folders.internal ? DefaultFoldersFile::kInternal : DefaultFoldersFile::kCard;
  const char* second = DefaultFoldersFile::kCard;
  switch (folders.profileChoice) {
    case ProfileChoice::Number:
      return std::make_shared<DefaultFoldersFile>(files, *folders.profile, first, second);
    case ProfileChoice::NumberAsKind:
      return std::make_shared<DefaultFoldersFile>(files, *folders.profile, second, first);
    default:
      return std::make_shared<DefaultFoldersFile>(files, *folders.profile);
  }
}

constexpr int32_t kEverything = 7;

Environment environmentOfPerson(const VolumeFolders& folders, const Errand& errand,
                                std::shared_ptr<ItemObserver> observer, std::shared_ptr<FileSystem> files) {
  Environment environment = Environment::forRunningSystem();
  environment.fileSystem = files ? std::move(files) : errand.files();
  if (errand.wishes().verbose) environment.debugLevelSource = fixedDebugLevelSource(kEverything);
  // A person's volumes are mounted anywhere.
  environment.placementRules = devicePlacementRules();
  environment.logSink = std::make_shared<EscapingLogSink>(environment.logSink);
  // Nobody looks at the tags of what is not copied.
  if (!errand.rehearsal()) environment.mediaInfoFactory = std::make_shared<TagReader>(environment.fileSystem);
  environment.itemObserver = std::move(observer);
  environment.profileInfo = profileOf(folders, *environment.fileSystem);
  return environment;
}

}  // namespace

Device::Device(const VolumeFolders& folders, const Errand& errand, std::shared_ptr<ItemObserver> observer,
               std::shared_ptr<FileSystem> files)
    : environment_(environmentOfPerson(folders, errand, std::move(observer), std::move(files))),
      service_(std::make_unique<UMSService>(environment_)) {
  if (folders.internal) addVolume(*folders.internal, true);
  if (folders.card) addVolume(*folders.card, false);
  // Any text that tells devices apart will do: the folder of the first volume is one.
  if (!volumes_.empty()) service_->setLocationID(volumes_.front().path);
}

void Device::addVolume(const std::string& folder, bool internal) {
  std::string path = withoutTrailingSlashes(absolutePath(folder));
  auto found = files().attributes(path);
  if (!found) throw Refusal(ExitStatus::NoSuchVolume, folder, "no such volume: " + found.error().words());
  if (found->type != FileType::Directory)
    throw Refusal(ExitStatus::NoSuchVolume, folder, "no such volume: it is not a folder");
  service_->addDiskInformation(
      Dictionary{{key::kDiskType, internal ? kInternalDisk : kCardDisk}, {key::kVolumePath, path}});
  volumes_.push_back({static_cast<uint32_t>(volumes_.size()), internal ? "internal" : "card", path});
}

MaybeDictionary Device::tagsOf(const std::string& path) {
  auto builder = environment_.mediaInfoFactory->getBuilder(path);
  MaybeDictionary tags = builder ? builder->build(path) : std::nullopt;
  if (tags) tags->remove("AlbumArt");
  return tags;
}

const Device::Volume& Device::volume(uint32_t index) const {
  if (index < volumes_.size()) return volumes_[index];
  std::string known = volumes_.size() == 1 ? "the only one is 0" : "there are 0 and 1";
  throw Refusal(ExitStatus::NoSuchVolume, "volume " + std::to_string(index), "no such volume: " + known);
}

}  // namespace umsctl
