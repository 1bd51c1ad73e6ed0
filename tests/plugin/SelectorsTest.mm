/// What the bundle's classes answer, with which C types, and what they leave unanswered.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

struct Method {
  const char* selector;
  const char* types;  ///< what it gives, then its arguments
};

// I, i and Q are numbers of 32 and 64 bits, C is BOOL and the unsigned byte, ^ a pointer to one.
#define RECORD "^{_serviceinfo=II@@II^v^v@@@@IIC}"

constexpr Method kServiceMethods[] = {
    // Queue and dispatch.
    {"umsFileServiceQueueThread:", "v@"},
    {"cancelFileAction:", "vI"},
    {"emptyQueue", "v"},
    {"emptyQueue:", "CI"},
    {"isCancelServiceId:", "CI"},
    {"removeCancelServiceId:", "CI"},
    {"exitServiceThread", "C"},
    {"doUmsFileService:", "C" RECORD},
    // Device and volumes.
    {"init", "@"},
    {"initWithLocationID:", "@@"},
    {"dealloc", "v"},
    {"setConfirmDelegate:", "v@"},
    {"setLocationID:", "v@"},
    {"locationID", "@"},
    {"setDeviceInformation:", "v@"},
    {"modelName", "@"},
    {"addDiskInformation:", "v@"},
    {"removeDiskInformation:", "v@"},
    {"diskInformation", "@"},
    {"diskInfoFromIndex:", "@I"},
    {"diskInfoFromDiskInfoList:index:", "@@I"},
    {"diskVolumeNameFromIndex:", "@I"},
    {"volumePath:", "@I"},
    {"volumePathWithOption:index:", "@C^I"},
    {"freeSpace:diskIndex:", "QII"},
    {"totalSpace:diskIndex:", "QII"},
    {"volumeFreeSpace:", "Q@"},
    {"disconnectDevice:", "v@"},
    {"getReleaseState", "C"},
    {"fileTransferStatus", "i"},
    {"setFileTransferStatus:", "vi"},
    {"defaultMediaContentsPath:diskType:mediaType:", "@@ii"},
    {"defaultUmsMediaPath:mediaType:", "@II"},
    {"getMediaDefaultPath:", "@i"},
    {"defaultMediaContentsPath:index:mediaType:", "@@Ii"},
    // Requests.
    {"syncContents:contents:mediaType:isStartInternal:", "CI@IC"},
    {"copyContentsMacToDevice:contents:mediaType:storageIndex:", "CI@II"},
    {"copyContentsDeviceToMac:contents:destinationPath:mediaType:playlistName:", "CI@@I@"},
    {"copyContentsDeviceToDevice:contents:srcLocationId:destLocationId:mediaType:destStorageIndex:",
     "CI@@@II"},
    {"deleteContents:contents:mediaType:diskIndex:", "CI@II"},
    {"reEnumerateAtFolder:", "C@"},
    // Reports.
    {"sendResultEvent:eventType:status:errornumber:diskSpace:storageIndex:", "v" RECORD "IIIQI"},
    {"sendCancelProgressEvent:locationId:mediaType:currentFile:maxFile:transferStatus:", "vI@IIII"},
    {"transferProgressInfo:maxTransferSize:currentTransferSize:", "C@II"},
    {"transferProgressInfoEx:maxTransferSize:currentTransferSize:", "C@QQ"},
    // Media.
    {"checkMediaType:", "i@"},
    {"checkContentWithExtentions:extLists:", "C@@"},
    {"convertAvailableFileName:", "@@"},
    {"convertAvailableString:", "@@"},
    {"umsCopyFile:srcPath:destPath:context:error:", "CI@@@^i"},
    {"umsMoveFile:srcPath:destPath:context:error:", "CI@@@^i"},
    {"umsDeleteFile:srcPath:error:", "CI@^i"},
    {"mediaFileSize:", "Q@"},
    {"totalMediaContentsSize:", "Q@"},
    {"sendSmiFile:srcVideoPath:destPath:mediaType:", "CI@@I"},
    {"deleteSmiFile:filePath:mediaType:", "CI@I"},
    {"doCopyMediaContents:", "C" RECORD},
    {"doCopyMediaContentsForAnyMediaType:", "C" RECORD},
    {"doSyncMediaContents:", "C" RECORD},
    {"syncUmsFile:atPath:index:mediaType:mediaData:context:", "iI@II@@"},
    {"doDeleteMediaContents:", "C" RECORD},
    {"doDeviceToDevcieContents:", "C" RECORD},
    // Podcasts.
    {"checkXmlData:channelName:", "@@@"},
    {"sendXmlData:xmlDocument:filePath:podcastName:", "CI@@@"},
    {"umsPodcastXmlData:", "@@"},
    {"podcastXmlLists:fileName:contents:", "CI@^@"},
    {"makeEpisodeFullPath:podcastChannelName:", "v@@"},
    {"makeXMLInfoFromFileData:data:", "@@@"},
    {"totalPodcastCount:", "I@"},
    {"totalPodcastFileSize:sendCount:", "Q@^I"},
    {"totalUmsPodcastEpisodeDataSize:", "Q@"},
    {"checkUmsPodcastEpisodeSize:episodeData:", "C@@"},
    {"doCopyPodcastContents:", "C" RECORD},
    {"doSyncPodcastContents:", "C" RECORD},
    {"syncUmsPodcastFile:index:mediaType:podcastInfo:xmlConverter:context:", "iIII@@@"},
    {"doDeletePodcastContents:", "C" RECORD},
    {"doDeviceToDevicePodcast:", "C" RECORD},
    // Files.
    {"fileScan:skipNoMedia:", "@@C"},
    {"fileScan:", "@@"},
    {"subpathsAtDisk:diskIndex:skipNoMedia:", "@IIC"},
    {"isHiddenFile:", "C@"},
    {"checkNoMedia:nomediaList:", "C@@"},
    {"removeFileListByNoMedia:nomediaList:", "@@@"},
    {"recursiveFolderLists:", "@@"},
    {"fileLists:fileName:enumChild:contents:", "CI@C^@"},
    {"folderLists:", "@@"},
    {"fileLists:", "@@"},
    {"getDeviceAllFolderLists", "@"},
    {"fileExistsAtPath:isDirectory:", "C@^C"},
    {"fileSizeAtDevice:", "Q@"},
    {"deletefileAtDevice:error:", "C@^I"},
    {"deleteFolder:", "C@"},
    {"createFolder:", "C@"},
    {"writeFileToDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:",
     "C@@IIC@@^I"},
    {"readFileFromDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:",
     "C@@IIC@@^I"},
    {"syncWriteFileToDevice:subFolderName:diskIndex:mediaType:isOverWrite:callbackObject:context:error:",
     "C@@IIC@@^I"},
    {"writeFileData:data:", "C@@"},
    {"readFileData:", "@@"},
    {"copyContentToPlay:diskIndex:mediaType:fileInformation:", "@III@"},
    {"isExistContentFromMac:diskIndex:mediaType:fileInformation:returnNode:", "CIII@^@"},
    // Listings.
    {"fileInformationList:mediaType:diskIndex:", "@III"},
    {"fileNameList:mediaType:diskIndex:", "@III"},
    {"fileNameListWithFolderStructure:mediaType:diskIndex:", "@III"},
    {"fileInformationListForAllMediaType:", "@I"},
    {"fileInformationList:extensionList:recursive:", "@@@C"},
    {"fileInformationList:extensionList:", "@@@"},
    {"mediaFileInfoFromDevice:destinationPath:", "@@@"},
    {"checkMediaContent:filePath:diskType:mediaType:", "C@@ii"},
};

constexpr const char* kUnanswered[] = {
    "readPlaylistFromDevice:destFolder:mediaType:",
    "playlistNameInformation:mediaType:",
    "syncPlaylistContents:mediaType:isDelete:",
    "deleteContentsAtPlaylist:contents:mediaType:playlistName:",
    "addContentsToPlaylist:contents:mediaType:playlistName:",
    "renamePlaylist:destPlaylistName:mediaType:",
    "deletePlaylist:mediaType:",
    "playlistInformationList:mediaType:playlistName:",
    "createPlaylist:mediaType:contents:",
    "releaseHiddenStorage",
    "friendlyName",
    "syncContents:contents:mediaType:diskIndex:destinationPath:",
    "copyContentsMacToDevice:contents:mediaType:storageIndex:playlistName:",
    "doUmsReadFile:data:",
};

constexpr Method kNotifierMethods[] = {
    {"init", "@"},
    {"initWithInformations:destLocationID:serviceID:mediaType:deviceName:storageIndex:maxTransferFileCount:"
     "maxTransferSize:",
     "@@@II@IIQ"},
    {"sendTransferEvent:currentPersent:", "vII"},
    {"sendResultEvent", "v"},
    {"sendResultNotification", "v"},
    {"incCurrentTransferFileCount", "v"},
    {"incFailTransferFileCount", "v"},
    {"addFailTransferFileCount:", "vI"},
    {"addCurrentTransferFileCount:", "vI"},
    {"addCurrentSendBytesEx:", "vQ"},
    {"addCurrentSendBytes:", "vI"},
    {"cancelFileTransfer", "v"},
    {"deleteFileTransfer", "v"},
    {"setPodcastXmlData:", "v@"},
    {"srcLocationID", "@"},
    {"setSrcLocationID:", "v@"},
    {"destLocationID", "@"},
    {"setDestLocationID:", "v@"},
    {"serviceID", "I"},
    {"setServiceID:", "vI"},
    {"storageIndex", "I"},
    {"setStorageIndex:", "vI"},
    {"mediaType", "I"},
    {"setMediaType:", "vI"},
    {"currentTransferFileCount", "I"},
    {"setCurrentTransferFileCount:", "vI"},
    {"maxTransferFileCount", "I"},
    {"setMaxTransferFileCount:", "vI"},
    {"failTransferFileCount", "I"},
    {"setFailTransferFileCount:", "vI"},
    {"filePath", "@"},
    {"setFilePath:", "v@"},
    {"deviceName", "@"},
    {"setDeviceName:", "v@"},
    {"currentTransferSize", "Q"},
    {"setCurrentTransferSize:", "vQ"},
    {"maxTransferSize", "Q"},
    {"setMaxTransferSize:", "vQ"},
    {"maxSendBytes", "Q"},
    {"setMaxSendBytes:", "vQ"},
    {"prevTransferFileSize", "Q"},
    {"setPrevTransferFileSize:", "vQ"},
    {"prevSendBytes", "Q"},
    {"setPrevSendBytes:", "vQ"},
    {"playlistName", "@"},
    {"setPlaylistName:", "v@"},
    {"channelName", "@"},
    {"setChannelName:", "v@"},
    {"mediaInfo", "@"},
    {"setMediaInfo:", "v@"},
    {"currentTransferStatus", "i"},
    {"setCurrentTransferStatus:", "vi"},
    {"transferResult", "I"},
    {"setTransferResult:", "vI"},
};

constexpr Method kConverterMethods[] = {
    {"init", "@"},
    {"makePodcastXMLFromPodcastDictionary:includeEpisode:", "@@C"},
    {"makePodcastDictionaryFromXML:", "@@"},
    {"addPodcastEpisode:inXML:", "v@@"},
    {"removePodcastEpisode:inXML:", "v@@"},
};

SEL selectorNamed(const char* name) {
  return NSSelectorFromString([NSString stringWithUTF8String:name]);
}

std::string typesOf(Class aClass, const char* selector) {
  NSMethodSignature* signature = [aClass instanceMethodSignatureForSelector:selectorNamed(selector)];
  if (!signature) return "(not answered)";
  std::string types = [signature methodReturnType];
  for (NSUInteger i = 2; i < [signature numberOfArguments]; ++i)
    types += [signature getArgumentTypeAtIndex:i];
  return types;
}

template <size_t count>
void expectMethods(NSString* className, const Method (&methods)[count]) {
  Class aClass = bundleClass(className);
  ASSERT_NE(aClass, Nil);
  for (const Method& method : methods) {
    EXPECT_TRUE([aClass instancesRespondToSelector:selectorNamed(method.selector)]) << method.selector;
    EXPECT_EQ(typesOf(aClass, method.selector), method.types) << method.selector;
  }
}

class Selectors : public HostTest {};

TEST_F(Selectors, BelongToThePrincipalClassOfTheBundle) {
  EXPECT_EQ(text(NSStringFromClass([loadedBundle() principalClass])), "UMSService");
  EXPECT_EQ([[loadedBundle() principalClass] superclass], [NSObject class]);
}

TEST_F(Selectors, OfTheServiceAreAllAnsweredWithTheirTypes) {
  expectMethods(@"UMSService", kServiceMethods);
}

TEST_F(Selectors, OfTheNotifierAreAllAnsweredWithTheirTypes) {
  expectMethods(@"OVUmsDeviceNotifier", kNotifierMethods);
}

TEST_F(Selectors, OfTheConverterAreAllAnsweredWithTheirTypes) {
  expectMethods(@"QDUIPodcastXMLConverter", kConverterMethods);
}

TEST_F(Selectors, ThatPlainVolumesCannotServeAreNotAnswered) {
  UMSService* service = makeService(@"location-1");
  for (const char* selector : kUnanswered) {
    EXPECT_FALSE([service respondsToSelector:selectorNamed(selector)]) << selector;
  }
  EXPECT_FALSE([bundleClass(@"OVUmsDeviceNotifier") instancesRespondToSelector:@selector(xmlInfo)]);
}

TEST_F(Selectors, ComeWithBothProtocols) {
  Class aClass = [loadedBundle() principalClass];
  EXPECT_TRUE([aClass conformsToProtocol:@protocol(OVFileService)]);
  EXPECT_TRUE([aClass conformsToProtocol:@protocol(UMSService)]);
}

}  // namespace
}  // namespace umsplugin::testing
