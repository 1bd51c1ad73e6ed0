#include <sys/stat.h>
#include <unistd.h>

#include "Story.h"

namespace umsservice::testing {
namespace {

constexpr auto kMethod = "-[UMSService doDeleteMediaContents:]";

class MediaDelete : public DeviceTest {
 protected:
  static constexpr uint32_t kRequest = 7;

  MediaDelete() {
    request.serviceID = kRequest;
    request.command = kCommandDeleteFile;
    request.contents = Array();
    request.mediaType = kMediaMusic;
    request.storageIndex = 1;
  }
  std::string add(const std::string& name) {
    const std::string path = sandbox.file("card/Music/" + name, name);
    request.contents->append(content(path, name));
    return path;
  }
  bool run() { return service->doDeleteMediaContents(request); }
  Lines told() const { return story(surroundings); }
  Lines ends() const { return outcomesOf(surroundings); }

  _serviceinfo request;
};

TEST_F(MediaDelete, RemovesEveryFileAndTellsEveryStep) {
  add("a.mp3");
  add("bb.mp3");
  sandbox.file("card/Music/other.mp3", "stays");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/other.mp3"}));
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/2 fail 0 status 2 50% a.mp3", "result 0x10000001 volume 1 $/card/Music/a.mp3",
             "progress 2/2 fail 0 status 2 100% bb.mp3", "result 0x10000001 volume 1 $/card/Music/bb.mp3",
             "progress 2/2 fail 0 status 4 100% bb.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 done 0x00000000 5 bytes to (none)", "1 done 0x00000000 6 bytes to (none)"}));
}

TEST_F(MediaDelete, SendsTheKeysThatAHostKnows) {
  const std::string path = add("a.mp3");
  ASSERT_TRUE(run());
  EXPECT_EQ(typed(notifications.named(kTransferProgressNotification).at(0).userInfo),
            (Lines{"Current: u32 1", "CurrentProgress: u32 100", "Fail: u32 0", "FileName: text a.mp3",
                   "LocationId: text location-1", "MN: text Pocket One", "Max: u32 1", "MaxProgress: u32 100",
                   "MediaNotiType: u32 1", "ServiceID: u32 7", "TransferStatus: u32 2"}));
  EXPECT_EQ(typed(notifications.named(kMediaResultNotification).at(0).userInfo),
            (Lines{"FilePath: text " + path, "LocationId: text location-1", "MN: text Pocket One",
                   "MediaNotiType: u32 1", "ResultStatus: u32 268435457", "ServiceID: u32 7",
                   "VolumeIndex: u32 1"}));
}

TEST_F(MediaDelete, ThroughTheQueueSendsNoRequestResult) {
  const std::string path = add("a.mp3");
  ASSERT_TRUE(service->deleteContents(kRequest, request.contents, kMediaMusic, 1));
  ASSERT_TRUE(items.waitFor(1));
  service.reset();
  EXPECT_FALSE(exists(path));
  EXPECT_EQ(notifications.count(kUmsResultNotification), 0u);
}

TEST_F(MediaDelete, OfNothingIsASuccess) {
  EXPECT_TRUE(run());
  EXPECT_EQ(told(), Lines{});
}

TEST_F(MediaDelete, RefusesPodcastsWithoutAWordToTheHost) {
  request.mediaType = kMediaPodcast;
  const std::string path = add("a.mp3");
  expectLine(surroundings, 3, kMethod, "Media Type is not podcast. Media Type = 4",
             [&] { EXPECT_FALSE(run()); });
  EXPECT_TRUE(exists(path));
  EXPECT_EQ(told(), Lines{});
}

TEST_F(MediaDelete, TakesTheCompanionOfAVideo) {
  request.mediaType = kMediaVideo;
  add("clip.mp4");
  sandbox.file("card/Music/clip.smi", "subtitles");
  sandbox.file("card/Music/clip.txt", "stays");
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/clip.txt"}));
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 8 bytes to (none)"});
}

TEST_F(MediaDelete, OfAVideoWithoutACompanionIsAsGood) {
  request.mediaType = kMediaVideo;
  add("clip.mp4");
  EXPECT_TRUE(run());
  EXPECT_EQ(told().at(1), "result 0x10000001 volume 1 $/card/Music/clip.mp4");
}

TEST_F(MediaDelete, OfAnotherTypeLeavesCompanionsAlone) {
  for (uint32_t mediaType : std::vector<uint32_t>{kMediaMusic, kMediaImage}) {
    request.mediaType = mediaType;
    request.contents = Array();
    add("clip.mp4");
    sandbox.file("card/Music/clip.smi", "stays");
    EXPECT_TRUE(run());
    EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/clip.smi"}));
  }
}

TEST_F(MediaDelete, OfAVideoThatCannotBeRemovedLeavesItsCompanion) {
  request.mediaType = kMediaVideo;
  add("clip.mp4");
  sandbox.file("card/Music/clip.smi", "stays");
  files.failAlways(FileCall::Remove, "clip.mp4", EACCES);
  EXPECT_FALSE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/clip.mp4", "Music/clip.smi"}));
}

TEST_F(MediaDelete, OfAFolderRemovesEverythingInIt) {
  sandbox.file("card/Music/album/one.mp3", "one");
  sandbox.file("card/Music/album/deep/two.mp3", "two");
  request.contents->append(content(card + "/Music/album", "album"));
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), Lines{"Music/"});
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 0 bytes to (none)"});
}

TEST_F(MediaDelete, OfALinkRemovesTheLinkOnly) {
  const std::string real = sandbox.file("elsewhere/real.mp3", "stays");
  sandbox.folder("card/Music");
  for (const std::string& target : {real, sandbox.at("elsewhere")}) {
    const std::string link = card + "/Music/link.mp3";
    ASSERT_EQ(::symlink(target.c_str(), link.c_str()), 0);
    request.contents = Array{content(link, "link.mp3")};
    EXPECT_TRUE(run());
    EXPECT_FALSE(exists(link));
  }
  EXPECT_EQ(bytesOf(real), "stays");
}

TEST_F(MediaDelete, OfAFifoRemovesIt) {
  sandbox.folder("card/Music");
  const std::string fifo = card + "/Music/fifo.mp3";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0666), 0);
  request.contents = Array{content(fifo, "fifo.mp3")};
  EXPECT_TRUE(run());
  EXPECT_FALSE(exists(fifo));
}

TEST_F(MediaDelete, CountsBadItemsAsFailedAndGoesOn) {
  const std::string path = sandbox.file("card/a.mp3", "stays");
  request.contents = Array{Null{}, Dictionary{{key::kFilePath, path}}, Dictionary{{key::kFileName, "a.mp3"}}};
  const std::string good = add("good.mp3");
  EXPECT_TRUE(run());
  EXPECT_TRUE(exists(path));
  EXPECT_FALSE(exists(good));
  EXPECT_EQ(told(),
            (Lines{"progress 4/4 fail 3 status 4 100% (none)", "progress 4/4 fail 3 status 4 100% good.mp3",
                   "result 0x10000001 volume 1 $/card/Music/good.mp3",
                   "progress 4/4 fail 3 status 4 100% good.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 failed 0x23000003 0 bytes to (none)", "1 failed 0x23000003 0 bytes to (none)",
                           "2 failed 0x23000003 0 bytes to (none)", "3 done 0x00000000 8 bytes to (none)"}));
}

TEST_F(MediaDelete, SaysWhatIsWrongWithAnItem) {
  request.contents = Array{Null{}};
  expectLine(surroundings, 1, kMethod, "Contents data is nil. Next data search", [&] { run(); });
  request.contents = Array{Dictionary{{key::kFilePath, "/x"}}};
  expectLine(surroundings, 1, kMethod, "Get contents information is failed. filePath = /x, name = (null)",
             [&] { run(); });
  request.contents = Array{content(card + "/missing.mp3", "missing.mp3")};
  expectLine(surroundings, 1, kMethod, "Delete $/card/missing.mp3 file is failed", [&] { run(); });
}

TEST_F(MediaDelete, ThatFailsGoesOnAndAnswersWithTheLastDelete) {
  const std::string missing = card + "/missing.mp3";
  request.contents = Array{content(missing, "missing.mp3")};
  add("a.mp3");
  EXPECT_TRUE(run());
  EXPECT_EQ(
      told(),
      (Lines{"progress 2/2 fail 1 status 4 100% missing.mp3", "progress 2/2 fail 1 status 4 100% a.mp3",
             "result 0x10000001 volume 1 $/card/Music/a.mp3", "progress 2/2 fail 1 status 4 100% a.mp3"}));
  EXPECT_EQ(ends().at(0), "0 failed 0x20000003 0 bytes to (none)");
  EXPECT_EQ(items.outcomes().at(0).reason, "No such file or directory");
  request.contents->append(content(missing, "missing.mp3"));
  EXPECT_FALSE(run());
}

TEST_F(MediaDelete, StopsOnACancelBetweenFilesAndForgetsTheCancel) {
  add("a.mp3");
  const std::string second = add("b.mp3");
  notifications.onEach([&](const Notification& posted) {
    if (posted.name == kMediaResultNotification) service->cancelFileAction(kRequest);
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/b.mp3"}));
  EXPECT_EQ(told().back(), "progress 2/2 fail 0 status 3 100% a.mp3");
  EXPECT_EQ(ends().at(1), "1 not reached 0x10000008 0 bytes to (none)");
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

TEST_F(MediaDelete, StopsOnAReleaseAndNamesTheDevice) {
  const std::string path = add("a.mp3");
  service->exitServiceThread();
  expectLine(surroundings, 5, kMethod, "Device Disconnected - location-1", [&] { EXPECT_TRUE(run()); });
  EXPECT_TRUE(exists(path));
  EXPECT_EQ(told().at(0), "progress 1/1 fail 0 status 3 100% a.mp3");
}

TEST_F(MediaDelete, LeavesTheCompanionOfAVideoWhenReleasedInBetween) {
  request.mediaType = kMediaVideo;
  add("clip.mp4");
  sandbox.file("card/Music/clip.smi", "stays");
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::Remove) service->exitServiceThread();
    return 0;
  });
  EXPECT_TRUE(run());
  EXPECT_EQ(treeOf(card), (Lines{"Music/", "Music/clip.smi"}));
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 8 bytes to (none)"});
}

TEST_F(MediaDelete, EndsWhenTheLastReferenceGoesAwayInAHandler) {
  add("a.mp3");
  const std::string second = add("b.mp3");
  notifications.onEach([&](const Notification&) { service.reset(); });
  ASSERT_TRUE(service->deleteContents(kRequest, request.contents, kMediaMusic, 1));
  ASSERT_TRUE(items.waitFor(2));
  EXPECT_TRUE(exists(second));
}

}  // namespace
}  // namespace umsservice::testing
