#include "service/Notifier.h"

#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"

using umsplugin::hostEnvironment;
using umsplugin::toDictionary;
using umsplugin::toHost;
using umsplugin::toText;

struct OVUmsDeviceNotifierParts {
  /// Null once a borrowed one was given back. Owned or only referred to.
  std::shared_ptr<umsservice::OVUmsDeviceNotifier> notifier;
};

@interface OVUmsDeviceNotifier (Loan)
- (id)initBorrowing:(umsservice::OVUmsDeviceNotifier*)notifier;
- (umsservice::OVUmsDeviceNotifier*)libraryNotifier;
- (void)giveBack;
@end

namespace umsplugin {

umsservice::OVUmsDeviceNotifier* notifierIn(id object) {
  if (![object isKindOfClass:[OVUmsDeviceNotifier class]]) return nullptr;
  return [static_cast<OVUmsDeviceNotifier*>(object) libraryNotifier];
}

OVUmsDeviceNotifier* borrowedNotifier(umsservice::TransferContext* context) {
  auto* notifier = dynamic_cast<umsservice::OVUmsDeviceNotifier*>(context);
  return notifier ? [[OVUmsDeviceNotifier alloc] initBorrowing:notifier] : nil;
}

void giveBackNotifier(OVUmsDeviceNotifier* notifier) {
  [notifier giveBack];
  [notifier release];
}

}  // namespace umsplugin

@implementation OVUmsDeviceNotifier

- (id)init {
  if ((self = [super init])) {
    _parts = new OVUmsDeviceNotifierParts;
    _parts->notifier = std::make_shared<umsservice::OVUmsDeviceNotifier>(hostEnvironment());
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
    _parts = new OVUmsDeviceNotifierParts;
    _parts->notifier = std::make_shared<umsservice::OVUmsDeviceNotifier>(
        hostEnvironment(), toText(srcLocationID), toText(destLocationID), serviceID, mediaType,
        toText(deviceName), storageIndex, maxTransferFileCount, maxTransferSize);
  }
  return self;
}

- (id)initBorrowing:(umsservice::OVUmsDeviceNotifier*)notifier {
  if ((self = [super init])) {
    _parts = new OVUmsDeviceNotifierParts;
    // Shares nothing: the run that made the notifier owns it.
    _parts->notifier = std::shared_ptr<umsservice::OVUmsDeviceNotifier>(std::shared_ptr<void>(), notifier);
  }
  return self;
}

- (void)dealloc {
  delete _parts;
  [super dealloc];
}

- (umsservice::OVUmsDeviceNotifier*)libraryNotifier {
  return _parts->notifier.get();
}

- (void)giveBack {
  _parts->notifier = nullptr;
}

// Nothing happens to one that was given back. A handler inside a step may release this object, so each keeps
// the library's.

- (void)sendTransferEvent:(unsigned int)maxProgress currentPersent:(unsigned int)currentPersent {
  if (auto notifier = _parts->notifier) notifier->sendTransferEvent(maxProgress, currentPersent);
}

- (void)sendResultEvent {
  if (auto notifier = _parts->notifier) notifier->sendResultEvent();
}

- (void)sendResultNotification {
  if (auto notifier = _parts->notifier) notifier->sendResultNotification();
}

- (void)incCurrentTransferFileCount {
  if (auto notifier = _parts->notifier) notifier->incCurrentTransferFileCount();
}

- (void)incFailTransferFileCount {
  if (auto notifier = _parts->notifier) notifier->incFailTransferFileCount();
}

- (void)addFailTransferFileCount:(unsigned int)count {
  if (auto notifier = _parts->notifier) notifier->addFailTransferFileCount(count);
}

- (void)addCurrentTransferFileCount:(unsigned int)count {
  if (auto notifier = _parts->notifier) notifier->addCurrentTransferFileCount(count);
}

- (void)addCurrentSendBytesEx:(unsigned long long)sentBytes {
  if (auto notifier = _parts->notifier) notifier->addCurrentSendBytesEx(sentBytes);
}

- (void)addCurrentSendBytes:(unsigned int)sentBytes {
  if (auto notifier = _parts->notifier) notifier->addCurrentSendBytes(sentBytes);
}

- (void)cancelFileTransfer {
  if (auto notifier = _parts->notifier) notifier->cancelFileTransfer();
}

- (void)deleteFileTransfer {
  if (auto notifier = _parts->notifier) notifier->deleteFileTransfer();
}

- (void)setPodcastXmlData:(NSDictionary*)podcastXmlData {
  if (auto notifier = _parts->notifier) notifier->setPodcastXmlData(toDictionary(podcastXmlData));
}

// A getter and a setter for each field; `toLibrary` and `fromLibrary` say how a value crosses.
#define UMS_PROPERTY(Type, getter, setter, toLibrary, fromLibrary)              \
  -(Type)getter {                                                               \
    return _parts->notifier ? fromLibrary(_parts->notifier->getter()) : Type(); \
  }                                                                             \
  -(void)setter : (Type)value {                                                 \
    if (_parts->notifier) _parts->notifier->setter(toLibrary(value));           \
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
