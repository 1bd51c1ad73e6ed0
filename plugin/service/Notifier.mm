#include "service/Notifier.h"

#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"
#include "service/ObjectSection.h"

using umsplugin::hostEnvironment;
using umsplugin::ObjectSection;
using umsplugin::toDictionary;
using umsplugin::toHost;
using umsplugin::toText;

struct OVUmsDeviceNotifierParts {
  template <typename... Scope>
  explicit OVUmsDeviceNotifierParts(OVUmsDeviceNotifier* object, const Scope&... scope)
      : notifier(hostEnvironment(), scope..., std::make_shared<ObjectSection>(object)) {}

  umsservice::OVUmsDeviceNotifier notifier;
};

@interface OVUmsDeviceNotifier (Library)
- (umsservice::OVUmsDeviceNotifier*)libraryNotifier;
@end

namespace umsplugin {

umsservice::OVUmsDeviceNotifier* notifierIn(id object) {
  if (![object isKindOfClass:[OVUmsDeviceNotifier class]]) return nullptr;
  return [static_cast<OVUmsDeviceNotifier*>([[object retain] autorelease]) libraryNotifier];
}

OVUmsDeviceNotifier* objectOf(umsservice::TransferContext* context) {
  auto* notifier = dynamic_cast<umsservice::OVUmsDeviceNotifier*>(context);
  auto* section = notifier ? dynamic_cast<ObjectSection*>(&notifier->synchronizedSection()) : nullptr;
  return section ? static_cast<OVUmsDeviceNotifier*>(section->object()) : nil;
}

}  // namespace umsplugin

namespace {

/// Keeps an object to the end of a block: a handler inside a step may release the notifier.
class Kept {
 public:
  explicit Kept(id object) : object_([object retain]) {}
  ~Kept() { [object_ release]; }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;

 private:
  const id object_;
};

}  // namespace

@implementation OVUmsDeviceNotifier

- (id)init {
  if ((self = [super init])) {
    _parts = new OVUmsDeviceNotifierParts(self);
  }
  return self;
}

- (id)initWithInformations:(NSString*)srcLocationID
            destLocationID:(NSString*)destLocationID
                 serviceID:(unsigned int)serviceID
                 mediaType:(unsigned int)mediaType
                deviceName:(NSString*)deviceName
              storageIndex:(unsigned int)storageIndex
      maxTransferFileCount:(unsigned int)maxTransferFileCount
           maxTransferSize:(unsigned long long)maxTransferSize {
  if ((self = [super init])) {
    _parts = new OVUmsDeviceNotifierParts(self, toText(srcLocationID), toText(destLocationID), serviceID,
                                          mediaType, toText(deviceName), storageIndex, maxTransferFileCount,
                                          maxTransferSize);
  }
  return self;
}

- (void)dealloc {
  delete _parts;
  [super dealloc];
}

- (umsservice::OVUmsDeviceNotifier*)libraryNotifier {
  return &_parts->notifier;
}

- (void)sendTransferEvent:(unsigned int)maxProgress currentPersent:(unsigned int)currentPersent {
  const Kept kept(self);
  _parts->notifier.sendTransferEvent(maxProgress, currentPersent);
}

- (void)sendResultEvent {
  const Kept kept(self);
  _parts->notifier.sendResultEvent();
}

- (void)sendResultNotification {
  const Kept kept(self);
  _parts->notifier.sendResultNotification();
}

- (void)incCurrentTransferFileCount {
  const Kept kept(self);
  _parts->notifier.incCurrentTransferFileCount();
}

- (void)incFailTransferFileCount {
  const Kept kept(self);
  _parts->notifier.incFailTransferFileCount();
}

- (void)addFailTransferFileCount:(unsigned int)count {
  const Kept kept(self);
  _parts->notifier.addFailTransferFileCount(count);
}

- (void)addCurrentTransferFileCount:(unsigned int)count {
  const Kept kept(self);
  _parts->notifier.addCurrentTransferFileCount(count);
}

- (void)addCurrentSendBytesEx:(unsigned long long)sentBytes {
  const Kept kept(self);
  _parts->notifier.addCurrentSendBytesEx(sentBytes);
}

- (void)addCurrentSendBytes:(unsigned int)sentBytes {
  const Kept kept(self);
  _parts->notifier.addCurrentSendBytes(sentBytes);
}

- (void)cancelFileTransfer {
  const Kept kept(self);
  _parts->notifier.cancelFileTransfer();
}

- (void)deleteFileTransfer {
  const Kept kept(self);
  _parts->notifier.deleteFileTransfer();
}

- (void)setPodcastXmlData:(NSDictionary*)podcastXmlData {
  const Kept kept(self);
  _parts->notifier.setPodcastXmlData(toDictionary(podcastXmlData));
}

// A getter and a setter for each field; `toLibrary` and `fromLibrary` say how a value crosses.
#define UMS_PROPERTY(Type, getter, setter, toLibrary, fromLibrary) \
  -(Type)getter {                                                  \
    return fromLibrary(_parts->notifier.getter());                 \
  }                                                                \
  -(void)setter : (Type)value {                                    \
    _parts->notifier.setter(toLibrary(value));                     \
  }

using Text = NSString*;
using Dictionary = NSDictionary*;
using Number = unsigned int;
using Size = unsigned long long;

UMS_PROPERTY(Text, srcLocationID, setSrcLocationID, toText, toHost)
UMS_PROPERTY(Text, destLocationID, setDestLocationID, toText, toHost)
UMS_PROPERTY(Number, serviceID, setServiceID, , )
UMS_PROPERTY(Number, storageIndex, setStorageIndex, , )
UMS_PROPERTY(Number, mediaType, setMediaType, , )
UMS_PROPERTY(Number, currentTransferFileCount, setCurrentTransferFileCount, , )
UMS_PROPERTY(Number, maxTransferFileCount, setMaxTransferFileCount, , )
UMS_PROPERTY(Number, failTransferFileCount, setFailTransferFileCount, , )
UMS_PROPERTY(Text, filePath, setFilePath, toText, toHost)
UMS_PROPERTY(Text, deviceName, setDeviceName, toText, toHost)
UMS_PROPERTY(Size, currentTransferSize, setCurrentTransferSize, , )
UMS_PROPERTY(Size, maxTransferSize, setMaxTransferSize, , )
UMS_PROPERTY(Size, maxSendBytes, setMaxSendBytes, , )
UMS_PROPERTY(Size, prevTransferFileSize, setPrevTransferFileSize, , )
UMS_PROPERTY(Size, prevSendBytes, setPrevSendBytes, , )
UMS_PROPERTY(Text, playlistName, setPlaylistName, toText, toHost)
UMS_PROPERTY(Text, channelName, setChannelName, toText, toHost)
UMS_PROPERTY(Dictionary, mediaInfo, setMediaInfo, toDictionary, toHost)
UMS_PROPERTY(int, currentTransferStatus, setCurrentTransferStatus, , )
UMS_PROPERTY(Number, transferResult, setTransferResult, , )

#undef UMS_PROPERTY

@end
