#include "CoreRoom.h"
#include "ScarceMemory.h"

namespace umsservice::testing {
namespace {

constexpr auto kToDevice = "-[UMSService copyContentsMacToDevice:contents:mediaType:storageIndex:]";
constexpr auto kToPeer =
    "-[UMSService "
    "copyContentsDeviceToDevice:contents:srcLocationId:destLocationId:mediaType:destStorageIndex:]";
constexpr auto kDelete = "-[UMSService deleteContents:contents:mediaType:diskIndex:]";

/// Another device's service, as far as a device-to-device request asks for it.
class PeerService final : public OVFileService {
 public:
  MaybeArray diskInformation() override { return volumes; }
  MaybeString modelName() override { return "Peer"; }
  bool createFolder(const MaybeString&) override { return false; }
  bool syncWriteFileToDevice(const MaybeDictionary&, const MaybeString&, uint32_t, uint32_t, bool,
                             const std::shared_ptr<TransferCallback>&, TransferContext*, uint32_t*) override {
    return false;
  }
  MaybeArray volumes;
};

class RequestEntry : public CoreTest {
 protected:
  const Array contents{content("/in/a.mp3", "a.mp3")};
  std::shared_ptr<PeerService> peer = std::make_shared<PeerService>();
  MaybeString askedFor;

  void addVolumes() {
    context.volumes.addDiskInformation(disk(1, "/phone"));
    context.volumes.addDiskInformation(disk(2, "/card"));
  }
  /// Makes the peer the service of "location-2", with one volume.
  void addPeer() {
    peer->volumes = Array{
        Dictionary{{key::kDiskType, 2}, {key::kVolumePath, "/peer"}, {key::kDiskIndex, 1u}},
        Dictionary{{key::kDiskType, 2}, {key::kDiskIndex, 2u}},
    };
    surroundings.delegate->onService = [this](const MaybeString& locationID) {
      askedFor = locationID;
      return locationID == "location-2" ? peer : nullptr;
    };
    context.identity.setConfirmDelegate(surroundings.delegate);
  }
  bool copyToPeer(uint32_t index, uint32_t mediaType = kMediaMusic,
                  const MaybeString& destination = "location-2") {
    return entry.copyContentsDeviceToDevice(7, contents, "location-1", destination, mediaType, index);
  }

  /// Every entry point with a list of contents; each would be accepted with contents.
  std::vector<std::pair<std::string, std::function<bool(const MaybeArray&)>>> everyEntryPoint() {
    return {
        {"-[UMSService syncContents:contents:mediaType:isStartInternal:]",
         [this](const MaybeArray& list) { return entry.syncContents(7, list, 1, true); }},
        {kToDevice, [this](const MaybeArray& list) { return entry.copyContentsMacToDevice(7, list, 1, 0); }},
        {"-[UMSService copyContentsDeviceToMac:contents:destinationPath:mediaType:playlistName:]",
         [this](const MaybeArray& list) { return entry.copyContentsDeviceToMac(7, list, "/out", 1, {}); }},
        {kToPeer,
         [this](const MaybeArray& list) {
           return entry.copyContentsDeviceToDevice(7, list, "location-1", "location-2", 1, 1);
         }},
        {kDelete, [this](const MaybeArray& list) { return entry.deleteContents(7, list, 1, 0); }},
    };
  }

  void expectNothingQueued() { EXPECT_EQ(idsOf(runQueued(0)), Ids()); }

  /// The fields of the one queued request, those that are zero or absent left out.
  Lines queued() {
    _serviceinfo record = runQueued(1).at(0);
    Dictionary fields{{"serviceID", record.serviceID},        {"command", record.command},
                      {"filePath", record.filePath},          {"destPath", record.destPath},
                      {"playlistName", record.playlistName},  {"destLocationID", record.destLocationID},
                      {"srcLocationID", record.srcLocationID}};
    const std::pair<const char*, uint32_t> kNumbers[] = {
        {"param1", record.param1},
        {"param2", record.param2},
        {"context1", record.context1 != nullptr},
        {"context2", record.context2 != nullptr},
        {"storageIndex", record.storageIndex},
        {"mediaType", record.mediaType},
        {"isStartInternal", record.isStartInternal},
    };
    for (const auto& [name, number] : kNumbers) {
      if (number != 0) fields.set(name, number);
    }
    EXPECT_TRUE(record.contents && record.contents->isSame(contents)) << "the host's own list";
    return typed(fields);
  }
};

TEST_F(RequestEntry, RefusesARequestWithoutContents) {
  addVolumes();
  addPeer();
  for (const auto& [method, call] : everyEntryPoint()) {
    for (const MaybeArray& empty : {MaybeArray(), MaybeArray(Array())})
      expectLine(surroundings, 7, method, "Contents Count is 0",
                 [&, &refusing = call] { EXPECT_FALSE(refusing(empty)); });
  }
  EXPECT_FALSE(askedFor.has_value());
  expectNothingQueued();
}

TEST_F(RequestEntry, RefusesARequestForWhichThereIsNoMemory) {
  REQUIRE_SCARCE_MEMORY();
  addVolumes();
  addPeer();
  for (const auto& [method, call] : everyEntryPoint()) {
    expectLine(surroundings, 3, method, "Memory alloc for File Service is FAILED.", [&, &refusing = call] {
      ScarceMemory scarce;
      EXPECT_FALSE(refusing(contents));
    });
  }
  expectNothingQueued();
}

TEST_F(RequestEntry, RefusesEverythingAfterReleaseWithoutALine) {
  addVolumes();
  addPeer();
  queue.exitServiceThread();
  for (const auto& [method, call] : everyEntryPoint()) EXPECT_FALSE(call(contents)) << method;
  EXPECT_EQ(log.lines(), Lines());
  EXPECT_EQ(reports.lines(), Lines());
}

TEST_F(RequestEntry, RefusesEverythingOnceTheDeviceIsMarkedGone) {
  addVolumes();
  addPeer();
  context.releaseState = 1;
  for (const auto& [method, call] : everyEntryPoint()) EXPECT_FALSE(call(contents)) << method;
}

TEST_F(RequestEntry, QueuesASync) {
  EXPECT_TRUE(entry.syncContents(7, contents, kMediaImage, true));
  EXPECT_EQ(queued(),
            (Lines{"command: u32 216", "isStartInternal: u32 1", "mediaType: u32 2", "serviceID: u32 7"}));
}

TEST_F(RequestEntry, QueuesASyncThatBeginsWithTheCard) {
  EXPECT_TRUE(entry.syncContents(7, contents, kMediaPodcast, false));
  EXPECT_EQ(queued(), (Lines{"command: u32 216", "mediaType: u32 4", "serviceID: u32 7"}));
}

TEST_F(RequestEntry, QueuesACopyToTheDevice) {
  addVolumes();
  surroundings.profile->musicExternal = "/Tunes";
  EXPECT_TRUE(entry.copyContentsMacToDevice(7, contents, kMediaMusic, 1));
  EXPECT_EQ(queued(), (Lines{"command: u32 213", "destPath: text /card/Tunes", "mediaType: u32 1",
                             "serviceID: u32 7", "storageIndex: u32 1"}));
}

TEST_F(RequestEntry, ACopyToTheDeviceNeedsAVolumeWithAPath) {
  expectLine(surroundings, 1, kToDevice, "diskInfo is nil",
             [&] { EXPECT_FALSE(entry.copyContentsMacToDevice(7, contents, kMediaMusic, 0)); });
  context.volumes.addDiskInformation(Dictionary{{key::kDiskType, 1}});
  expectLine(surroundings, 1, kToDevice, "volumePath is nil",
             [&] { EXPECT_FALSE(entry.copyContentsMacToDevice(7, contents, kMediaMusic, 0)); });
  expectNothingQueued();
}

TEST_F(RequestEntry, ACopyToTheDeviceNeedsAMediaTypeWithAFolder) {
  addVolumes();
  for (uint32_t mediaType : {0u, 5u, 6u, 0xffffffffu}) {
    expectLine(surroundings, 7, kToDevice, "contentsPath is invalid",
               [&] { EXPECT_FALSE(entry.copyContentsMacToDevice(7, contents, mediaType, 0)); });
  }
  expectNothingQueued();
}

TEST_F(RequestEntry, QueuesACopyToTheComputer) {
  EXPECT_TRUE(entry.copyContentsDeviceToMac(7, contents, "/out", kMediaVideo, "Evening"));
  EXPECT_EQ(queued(), (Lines{"command: u32 210", "destPath: text /out", "mediaType: u32 3",
                             "playlistName: text Evening", "serviceID: u32 7"}));
}

TEST_F(RequestEntry, ACopyToTheComputerIsQueuedWithoutADestinationToo) {
  EXPECT_TRUE(entry.copyContentsDeviceToMac(7, contents, std::nullopt, kMediaVideo, std::nullopt));
  EXPECT_EQ(queued(), (Lines{"command: u32 210", "mediaType: u32 3", "serviceID: u32 7"}));
}

TEST_F(RequestEntry, QueuesACopyToAnotherDevice) {
  addPeer();
  surroundings.profile->musicExternal = "/Tunes";
  EXPECT_TRUE(copyToPeer(1));
  EXPECT_EQ(askedFor, "location-2");
  EXPECT_EQ(surroundings.profile->lastLocation(), "location-1") << "the source device's profile is asked";
  EXPECT_EQ(queued(), (Lines{"command: u32 217", "destLocationID: text location-2",
                             "destPath: text /peer/Tunes", "mediaType: u32 1", "serviceID: u32 7",
                             "srcLocationID: text location-1", "storageIndex: u32 1"}));
}

TEST_F(RequestEntry, ACopyToAnotherDeviceNeedsADelegateAServiceAndItsVolumes) {
  EXPECT_FALSE(copyToPeer(1));
  addPeer();
  EXPECT_FALSE(copyToPeer(1, kMediaMusic, "location-3"));
  EXPECT_FALSE(copyToPeer(1, kMediaMusic, std::nullopt));
  peer->volumes = std::nullopt;
  EXPECT_FALSE(copyToPeer(1));
  surroundings.delegate.reset();
  EXPECT_FALSE(copyToPeer(1)) << "the delegate is not kept alive";
  EXPECT_EQ(log.lines(), Lines());
  expectNothingQueued();
}

TEST_F(RequestEntry, ACopyToAnotherDeviceNeedsAVolumeWithAPath) {
  addVolumes();
  addPeer();
  expectLine(surroundings, 1, kToPeer, "diskInfo is nil", [&] { EXPECT_FALSE(copyToPeer(0)); });
  expectLine(surroundings, 1, kToPeer, "volumePath is nil", [&] { EXPECT_FALSE(copyToPeer(2)); });
  expectNothingQueued();
}

TEST_F(RequestEntry, ACopyToAnotherDeviceNeedsAMediaTypeWithAFolder) {
  addPeer();
  for (uint32_t mediaType : {0u, 5u, 6u}) {
    expectLine(surroundings, 3, kToPeer, "contentsPath is nil.",
               [&] { EXPECT_FALSE(copyToPeer(1, mediaType)); });
  }
  expectNothingQueued();
}

TEST_F(RequestEntry, QueuesADelete) {
  EXPECT_TRUE(entry.deleteContents(7, contents, kMediaMusic, 3));
  EXPECT_EQ(queued(),
            (Lines{"command: u32 205", "mediaType: u32 1", "serviceID: u32 7", "storageIndex: u32 3"}));
}

TEST_F(RequestEntry, ADeleteOfPodcastsTakesTheFolderOfTheFirstVolume) {
  addVolumes();
  EXPECT_TRUE(entry.deleteContents(7, contents, kMediaPodcast, 1));
  EXPECT_EQ(queued(), (Lines{"command: u32 205", "destPath: text /phone/Podcast", "mediaType: u32 4",
                             "serviceID: u32 7", "storageIndex: u32 1"}));
}

TEST_F(RequestEntry, ADeleteOfPodcastsAsksTheProfileByTheTypeOfTheFirstVolume) {
  context.volumes.addDiskInformation(disk(2, "/card"));
  surroundings.profile->podcastExternal = "/Casts";
  EXPECT_TRUE(entry.deleteContents(7, contents, kMediaPodcast, 0));
  EXPECT_EQ(queued(), (Lines{"command: u32 205", "destPath: text /card/Casts", "mediaType: u32 4",
                             "serviceID: u32 7"}));
}

TEST_F(RequestEntry, ADeleteOfPodcastsNeedsAFirstVolumeWithAPath) {
  expectLine(surroundings, 1, kDelete, "diskInfo is nil",
             [&] { EXPECT_FALSE(entry.deleteContents(7, contents, kMediaPodcast, 0)); });
  context.volumes.addDiskInformation(Dictionary{{key::kDiskType, 1}});
  log.clear();
  EXPECT_FALSE(entry.deleteContents(7, contents, kMediaPodcast, 0));
  EXPECT_EQ(log.lines(), Lines());
  expectNothingQueued();
}

}  // namespace
}  // namespace umsservice::testing
