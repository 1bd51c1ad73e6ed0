#include "umsservice/OVUmsDeviceNotifier.h"

#include <algorithm>
#include <utility>

#include "Log.h"
#include "Mutex.h"
#include "StringPaths.h"
#include "umsservice/ErrorNumbers.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr uint64_t kBytesBetweenProgress = 1'000'000;
constexpr uint32_t kWhole = 100;

/// What a notification carries, to be added in the order of the keys: two of them go out for every file that
/// is copied, and nothing is sorted or taken out again then.
class Entries {
 public:
  Entries() { entries_.reserve(11); }
  void add(const char* name, Value value) {
    if (!value.isNil()) entries_.emplace_back(name, std::move(value));
  }
  Dictionary dictionary() { return Dictionary(std::move(entries_)); }

 private:
  std::vector<std::pair<std::string, Value>> entries_;
};

}  // namespace

/// The section of the object that the host knows the notifier by, for the analysis of locks.
class CAPABILITY("mutex") ObjectSection {
 public:
  explicit ObjectSection(std::shared_ptr<SynchronizedObject> object)
      : object_(object ? std::move(object) : makeSynchronizedObject()) {}
  void lock() ACQUIRE() { object_->lock(); }
  void unlock() RELEASE() { object_->unlock(); }
  SynchronizedObject& object() const { return *object_; }

 private:
  const std::shared_ptr<SynchronizedObject> object_;
};

using SectionLock = ScopedLock<ObjectSection>;

/// The fields, and the steps that need the notifier's section held.
struct OVUmsDeviceNotifier::State {
  State(const Environment& environment, std::shared_ptr<SynchronizedObject> object)
      : center(environment.notificationCenter), log(environment), mutex(std::move(object)) {}

  void postProgress(uint32_t maxProgress, uint32_t percent) REQUIRES(mutex);
  void postResult() REQUIRES(mutex);
  void finish() REQUIRES(mutex);
  void addSentBytes(uint64_t sentBytes, bool fileIsComplete) REQUIRES(mutex);

  const std::shared_ptr<NotificationCenter> center;
  const Log log;

  mutable ObjectSection mutex;
  MaybeString _srcLocationID GUARDED_BY(mutex);
  MaybeString _destLocationID GUARDED_BY(mutex);
  uint32_t _serviceID GUARDED_BY(mutex) = 0;
  uint32_t _storageIndex GUARDED_BY(mutex) = 0;
  uint32_t _mediaType GUARDED_BY(mutex) = 0;
  uint32_t _currentTransferFileCount GUARDED_BY(mutex) = 1;
  uint32_t _maxTransferFileCount GUARDED_BY(mutex) = 0;
  uint32_t _failTransferFileCount GUARDED_BY(mutex) = 0;
  MaybeString _filePath GUARDED_BY(mutex);
  MaybeString _deviceName GUARDED_BY(mutex);
  uint64_t _currentTransferSize GUARDED_BY(mutex) = 0;
  uint64_t _maxTransferSize GUARDED_BY(mutex) = 0;
  uint64_t _maxSendBytes GUARDED_BY(mutex) = 0;
  uint64_t _prevTransferFileSize GUARDED_BY(mutex) = 0;
  uint64_t _prevSendBytes GUARDED_BY(mutex) = 0;
  MaybeString _playlistName GUARDED_BY(mutex);
  MaybeString _channelName GUARDED_BY(mutex);
  MaybeDictionary _xmlInfo GUARDED_BY(mutex);
  MaybeDictionary _mediaInfo GUARDED_BY(mutex);
  int32_t _currentTransferStatus GUARDED_BY(mutex) = kTransferInitial;
  uint32_t _transferResult GUARDED_BY(mutex) = kItemTransferred;
};

void OVUmsDeviceNotifier::State::postProgress(uint32_t maxProgress, uint32_t percent) {
  Entries entries;
  entries.add(key::kCurrent, _currentTransferFileCount);
  entries.add(key::kCurrentProgress, percent);
  entries.add(key::kFail, _failTransferFileCount);
  if (_filePath) entries.add(key::kFileName, lastPathComponent(*_filePath));
  entries.add(key::kLocationId, _srcLocationID);
  entries.add(key::kDeviceName, _deviceName);
  entries.add(key::kMax, _maxTransferFileCount);
  entries.add(key::kMaxProgress, maxProgress);
  entries.add(key::kMediaNotiType, _mediaType);
  entries.add(key::kServiceID, _serviceID);
  entries.add(key::kTransferStatus, static_cast<uint32_t>(_currentTransferStatus));
  center->post(kTransferProgressNotification, entries.dictionary());
}

void OVUmsDeviceNotifier::State::postResult() {
  const uint32_t result = _transferResult == kErrorNone ? uint32_t{kItemTransferred} : _transferResult;
  Entries entries;
  entries.add(key::kChannelName, _channelName);
  entries.add(key::kFilePath, _filePath);
  entries.add(key::kLocationId, _destLocationID);
  entries.add(key::kDeviceName, _deviceName);
  entries.add(key::kMediaNotiType, _mediaType);
  entries.add(key::kPlaylistName, _playlistName);
  if (_xmlInfo) entries.add(key::kPodcastXmlInfo, *_xmlInfo);
  entries.add(key::kResultStatus, result);
  entries.add(key::kServiceID, _serviceID);
  entries.add(key::kVolumeIndex, _storageIndex);
  Dictionary userInfo = entries.dictionary();
  if (_mediaInfo) {
    // The item's tags go along, and give way to what the result says itself.
    const Dictionary own = std::exchange(userInfo, _mediaInfo->mutableCopy());
    for (const std::string& name : own.keys()) userInfo.set(name, own.get(name));
  }
  center->post(kMediaResultNotification, userInfo);
}

void OVUmsDeviceNotifier::State::finish() {
  _currentTransferStatus = kTransferFinished;
  postProgress(kWhole, kWhole);
}

void OVUmsDeviceNotifier::State::addSentBytes(uint64_t sentBytes, bool fileIsComplete) {
  if (_prevSendBytes > sentBytes) _prevSendBytes = 0;  // a new file has begun
  _currentTransferSize += sentBytes - _prevSendBytes;
  bool worthPosting = fileIsComplete || _currentTransferSize - _prevTransferFileSize > kBytesBetweenProgress;
  if (_maxTransferSize != 0 && worthPosting) {
    postProgress(kWhole, static_cast<uint32_t>(_currentTransferSize * kWhole / _maxTransferSize));
    _prevTransferFileSize = _currentTransferSize;
  }
  _prevSendBytes = fileIsComplete ? 0 : sentBytes;
}

OVUmsDeviceNotifier::OVUmsDeviceNotifier(const Environment& environment,
                                         std::shared_ptr<SynchronizedObject> object)
    : state_(std::make_unique<State>(environment, std::move(object))) {
  constexpr auto kMethod = "-[OVUmsDeviceNotifier init]";
  state_->log.write(7, kMethod, "ENTER");
  state_->log.write(7, kMethod, "EXIT");
}

OVUmsDeviceNotifier::OVUmsDeviceNotifier(const Environment& environment, const MaybeString& srcLocationID,
                                         const MaybeString& destLocationID, uint32_t serviceID,
                                         uint32_t mediaType, const MaybeString& deviceName,
                                         uint32_t storageIndex, uint32_t maxTransferFileCount,
                                         uint64_t maxTransferSize, std::shared_ptr<SynchronizedObject> object)
    : state_(std::make_unique<State>(environment, std::move(object))) {
  constexpr auto kMethod =
      "-[OVUmsDeviceNotifier initWithInformations:destLocationID:serviceID:mediaType:deviceName:storageIndex:"
      "maxTransferFileCount:maxTransferSize:]";
  state_->log.write(7, kMethod, "ENTER");
  {
    SectionLock lock(state_->mutex);
    state_->_srcLocationID = srcLocationID;
    state_->_destLocationID = destLocationID;
    state_->_serviceID = serviceID;
    state_->_mediaType = mediaType;
    state_->_deviceName = deviceName;
    state_->_storageIndex = storageIndex;
    state_->_maxTransferFileCount = maxTransferFileCount;
    state_->_maxTransferSize = maxTransferSize;
  }
  state_->log.write(7, kMethod, "EXIT");
}

OVUmsDeviceNotifier::~OVUmsDeviceNotifier() = default;

std::shared_ptr<OVUmsDeviceNotifier> OVUmsDeviceNotifier::forRun(
    const Environment& environment, const MaybeString& srcLocationID, const MaybeString& destLocationID,
    uint32_t serviceID, uint32_t mediaType, const MaybeString& deviceName, uint32_t storageIndex,
    uint32_t maxTransferFileCount, uint64_t maxTransferSize) {
  if (const auto& factory = environment.notifierFactory) {
    return factory->make(srcLocationID, destLocationID, serviceID, mediaType, deviceName, storageIndex,
                         maxTransferFileCount, maxTransferSize);
  }
  return std::make_shared<OVUmsDeviceNotifier>(environment, srcLocationID, destLocationID, serviceID,
                                               mediaType, deviceName, storageIndex, maxTransferFileCount,
                                               maxTransferSize);
}

SynchronizedObject& OVUmsDeviceNotifier::synchronizedSection() const {
  return state_->mutex.object();
}

void OVUmsDeviceNotifier::sendTransferEvent(uint32_t maxProgress, uint32_t currentPersent) {
  SectionLock lock(state_->mutex);
  state_->postProgress(maxProgress, currentPersent);
}

void OVUmsDeviceNotifier::sendResultEvent() {
  SectionLock lock(state_->mutex);
  state_->postResult();
}

void OVUmsDeviceNotifier::sendResultNotification() {
  sendResultEvent();
}

void OVUmsDeviceNotifier::incCurrentTransferFileCount() {
  SectionLock lock(state_->mutex);
  state_->postResult();
  if (state_->_currentTransferFileCount == state_->_maxTransferFileCount) {
    state_->finish();
  } else if (state_->_currentTransferFileCount < state_->_maxTransferFileCount) {
    ++state_->_currentTransferFileCount;
  }
}

void OVUmsDeviceNotifier::incFailTransferFileCount() {
  SectionLock lock(state_->mutex);
  ++state_->_failTransferFileCount;
  if (state_->_currentTransferFileCount < state_->_maxTransferFileCount) ++state_->_currentTransferFileCount;
  // Hosts have always been told of the end when the count arrives here, one file early included.
  if (state_->_currentTransferFileCount == state_->_maxTransferFileCount) state_->finish();
}

void OVUmsDeviceNotifier::addFailTransferFileCount(uint32_t count) {
  SectionLock lock(state_->mutex);
  state_->_failTransferFileCount += count;
  state_->_currentTransferFileCount += count;
  // The count is 1-based, so "all files" stands one above the maximum.
  if (state_->_currentTransferFileCount - 1 == state_->_maxTransferFileCount) {
    --state_->_currentTransferFileCount;
    state_->finish();
  }
}

void OVUmsDeviceNotifier::addCurrentTransferFileCount(uint32_t count) {
  SectionLock lock(state_->mutex);
  uint64_t reached = uint64_t{state_->_currentTransferFileCount} + count;
  state_->_currentTransferFileCount =
      static_cast<uint32_t>(std::min<uint64_t>(reached, state_->_maxTransferFileCount));
  if (state_->_currentTransferFileCount == state_->_maxTransferFileCount) state_->finish();
}

void OVUmsDeviceNotifier::addCurrentSendBytesEx(uint64_t sentBytes) {
  SectionLock lock(state_->mutex);
  state_->addSentBytes(sentBytes, sentBytes == state_->_maxSendBytes);
}

void OVUmsDeviceNotifier::addCurrentSendBytes(uint32_t sentBytes) {
  addCurrentSendBytesEx(sentBytes);
}

void OVUmsDeviceNotifier::cancelFileTransfer() {
  constexpr auto kMethod = "-[OVUmsDeviceNotifier cancelFileTransfer]";
  state_->log.write(7, kMethod, "ENTER");
  {
    SectionLock lock(state_->mutex);
    state_->_currentTransferStatus = kTransferCancelled;
    state_->postProgress(kWhole, kWhole);
  }
  state_->log.write(7, kMethod, "EXIT");
}

void OVUmsDeviceNotifier::deleteFileTransfer() {
  SectionLock lock(state_->mutex);
  if (state_->_maxTransferFileCount == 0) return;
  uint64_t scaled = uint64_t{state_->_currentTransferFileCount} * kWhole;
  state_->postProgress(kWhole, static_cast<uint32_t>(scaled / state_->_maxTransferFileCount));
}

MaybeDictionary OVUmsDeviceNotifier::mediaInfo() const {
  SectionLock lock(state_->mutex);
  return state_->_mediaInfo ? MaybeDictionary(state_->_mediaInfo->mutableCopy()) : std::nullopt;
}

void OVUmsDeviceNotifier::setMediaInfo(const MaybeDictionary& value) {
  MaybeDictionary copy = value ? MaybeDictionary(value->mutableCopy()) : std::nullopt;
  SectionLock lock(state_->mutex);
  state_->_mediaInfo.swap(copy);
}

void OVUmsDeviceNotifier::setPodcastXmlData(const MaybeDictionary& value) {
  MaybeDictionary copy = value ? MaybeDictionary(value->mutableCopy()) : std::nullopt;
  SectionLock lock(state_->mutex);
  state_->_xmlInfo.swap(copy);
}

// A getter and a setter for each plain field.
#define UMS_NOTIFIER_PROPERTY(Type, Argument, getter, setter) \
  Type OVUmsDeviceNotifier::getter() const {                  \
    SectionLock lock(state_->mutex);                          \
    return state_->_##getter;                                 \
  }                                                           \
  void OVUmsDeviceNotifier::setter(Argument value) {          \
    SectionLock lock(state_->mutex);                          \
    state_->_##getter = value;                                \
  }

UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, srcLocationID, setSrcLocationID)
UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, destLocationID, setDestLocationID)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, serviceID, setServiceID)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, storageIndex, setStorageIndex)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, mediaType, setMediaType)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, currentTransferFileCount, setCurrentTransferFileCount)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, maxTransferFileCount, setMaxTransferFileCount)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, failTransferFileCount, setFailTransferFileCount)
UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, filePath, setFilePath)
UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, deviceName, setDeviceName)
UMS_NOTIFIER_PROPERTY(uint64_t, uint64_t, currentTransferSize, setCurrentTransferSize)
UMS_NOTIFIER_PROPERTY(uint64_t, uint64_t, maxTransferSize, setMaxTransferSize)
UMS_NOTIFIER_PROPERTY(uint64_t, uint64_t, maxSendBytes, setMaxSendBytes)
UMS_NOTIFIER_PROPERTY(uint64_t, uint64_t, prevTransferFileSize, setPrevTransferFileSize)
UMS_NOTIFIER_PROPERTY(uint64_t, uint64_t, prevSendBytes, setPrevSendBytes)
UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, playlistName, setPlaylistName)
UMS_NOTIFIER_PROPERTY(MaybeString, const MaybeString&, channelName, setChannelName)
UMS_NOTIFIER_PROPERTY(int32_t, int32_t, currentTransferStatus, setCurrentTransferStatus)
UMS_NOTIFIER_PROPERTY(uint32_t, uint32_t, transferResult, setTransferResult)

#undef UMS_NOTIFIER_PROPERTY

}  // namespace umsservice
