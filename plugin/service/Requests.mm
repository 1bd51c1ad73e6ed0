#include "service/Requests.h"

#include "bridge/Text.h"
#include "bridge/Values.h"

namespace umsplugin {

umsservice::_serviceinfo toServiceInfo(const ::_serviceinfo& serviceInfo) {
  umsservice::_serviceinfo record;
  record.serviceID = serviceInfo.serviceID;
  record.command = serviceInfo.command;
  record.filePath = toText(serviceInfo.filePath);
  record.destPath = toText(serviceInfo.destPath);
  record.param1 = serviceInfo.param1;
  record.param2 = serviceInfo.param2;
  record.context1 = serviceInfo.context1;
  record.context2 = serviceInfo.context2;
  record.contents = toArray(serviceInfo.contents);
  record.playlistName = toText(serviceInfo.playlistName);
  record.destLocationID = toText(serviceInfo.destLocationID);
  record.srcLocationID = toText(serviceInfo.srcLocationID);
  record.storageIndex = serviceInfo.storageIndex;
  record.mediaType = serviceInfo.mediaType;
  record.isStartInternal = serviceInfo.isStartInternal;
  return record;
}

}  // namespace umsplugin
