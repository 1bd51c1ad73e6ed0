#include "DeviceToDeviceTest.h"

namespace umsservice::testing {
namespace {

using Write = FakeFileService::Write;

/// Copies to a destination that a host supplies itself.
class DeviceToDevice : public DeviceToDeviceTest {
 protected:
  using Answer = ScriptedDelegate::Answer;

  DeviceToDevice() {
    destination = fake;
    fake->onWrite = [](const Write& write) { return write.answer(true, 0); };
  }
  /// Answers the writes with these numbers in turn (YES for 0), then with 0.
  void answerWith(std::vector<uint32_t> numbers) {
    fake->onWrite = [numbers, next = size_t{0}](const Write& write) mutable {
      const uint32_t number = next < numbers.size() ? numbers[next++] : 0;
      return write.answer(number == 0, number);
    };
  }
  std::vector<bool> overwriteFlags() const {
    std::vector<bool> flags;
    for (const Write& write : fake->writes) flags.push_back(write.isOverWrite);
    return flags;
  }

  std::shared_ptr<FakeFileService> fake = std::make_shared<FakeFileService>();
};

TEST_F(DeviceToDevice, HandsOverTheWholeContentAndItsOwnNotifier) {
  request.storageIndex = 3;
  request.mediaType = kMediaVideo;
  const Dictionary whole{
      {key::kFilePath, "/x/a.mp4"}, {key::kFileName, "a.mp4"}, {"more", 1}, {key::kFileSize, 4}};
  request.contents = Array{whole};
  fake->onWrite = [](const Write& write) {
    auto* notifier = dynamic_cast<OVUmsDeviceNotifier*>(write.context);
    EXPECT_TRUE(notifier && write.callbackObject);
    EXPECT_EQ(notifier->currentTransferStatus(), kTransferRunning);
    EXPECT_TRUE(write.callbackObject->transferProgressInfoEx(write.context, 4, 4));
    return write.answer(true, 0);
  };
  EXPECT_TRUE(run());
  ASSERT_EQ(fake->writes.size(), 1u);
  const Write& write = fake->writes[0];
  EXPECT_TRUE(write.content->isSame(whole));
  EXPECT_FALSE(write.subFolderName);
  EXPECT_EQ(write.diskIndex, 3u);
  EXPECT_EQ(write.mediaType, uint32_t{kMediaVideo});
  EXPECT_FALSE(write.isOverWrite);
  EXPECT_EQ(told(), (Lines{"progress 1/1 fail 0 status 2 100% a.mp4",
                           "result 0x10000001 volume 3 $/there/Music/a.mp4",
                           "progress 1/1 fail 0 status 4 100% a.mp4"}));
}

TEST_F(DeviceToDevice, ListensToTheNarrowProgressToo) {
  add("a.mp3", "la");
  fake->onWrite = [](const Write& write) {
    EXPECT_TRUE(write.callbackObject->transferProgressInfo(write.context, 2, 2));
    return write.answer(true, 0);
  };
  EXPECT_TRUE(run());
  EXPECT_EQ(ends(), Lines{"0 done 0x00000000 2 bytes to $/there/Music/a.mp3"});
}

TEST_F(DeviceToDevice, WithoutADelegateEndsWithoutAWordToTheHost) {
  surroundings.delegate.reset();  // a service does not keep its delegate alive
  add("a.mp3", "la");
  expectLine(surroundings, 3, kDeviceToDeviceMethod, "Delegate is nil", [&] { EXPECT_FALSE(run()); });
  EXPECT_EQ(told(), Lines{});
  EXPECT_EQ(ends(), Lines{});
}

TEST_F(DeviceToDevice, ToADeviceThatIsUnpluggedEndsWithoutAWordToTheHost) {
  destination.reset();
  add("a.mp3", "la");
  expectLine(surroundings, 3, kDeviceToDeviceMethod, "Get target file service object fail",
             [&] { EXPECT_FALSE(run()); });
  EXPECT_EQ(told(), Lines{});
  EXPECT_FALSE(service->doUmsFileService(&request));
  EXPECT_EQ(told(), Lines{"request 0x23000001"});
}

TEST_F(DeviceToDevice, OfPodcastsEndsOnceTheDestinationIsFound) {
  request.mediaType = kMediaPodcast;
  add("a.mp3", "la");
  expectLine(surroundings, 3, kDeviceToDeviceMethod, "Media Type is podcast.", [&] { EXPECT_FALSE(run()); });
  EXPECT_EQ(asked.size(), 2u);
  EXPECT_EQ(fake->writes.size(), 0u);
  EXPECT_EQ(told(), Lines{});
}

TEST_F(DeviceToDevice, LetsGoOfTheDestinationAtTheEnd) {
  add("a.mp3", "la");
  EXPECT_TRUE(run());
  destination.reset();
  EXPECT_EQ(fake.use_count(), 1);
}

TEST_F(DeviceToDevice, NamesNoModelWhenTheDestinationHasNone) {
  fake->model.reset();
  add("a.mp3", "la");
  EXPECT_TRUE(run());
  EXPECT_FALSE(notifications.named(kMediaResultNotification).at(0).userInfo.contains(key::kDeviceName));
}

TEST_F(DeviceToDevice, CountsBadItemsAsFailedAndGoesOn) {
  request.contents = Array{Null{}, Dictionary{{key::kFileName, "x.mp3"}}, Dictionary{{key::kFilePath, "/x"}},
                           content("/x", "..")};
  add("a.mp3", "la");
  EXPECT_TRUE(run());
  Lines expected;
  for (int i = 0; i < 4; ++i) expected.push_back(std::to_string(i) + " failed 0x23000005 0 bytes to (none)");
  expected.push_back("4 failed 0x20000002 0 bytes to $/there/Music/a.mp3");  // nothing came, see below
  EXPECT_EQ(ends(), expected);
  EXPECT_EQ(fake->writes.size(), 1u);
}

TEST_F(DeviceToDevice, SaysWhatIsWrongWithAnItem) {
  request.contents = Array{Null{}};
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Contents data is nil. Next data search",
             [&] { run(); });
  request.contents = Array{Dictionary{{key::kFilePath, "/x"}}};
  expectLine(surroundings, 1, kDeviceToDeviceMethod,
             "Get contents information is failed. filePath = /x, name = (null)", [&] { run(); });
  request.contents = Array{content("/x", "")};
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Consist of Target Path Name is failed", [&] { run(); });
  request.contents = Array{content("/x", "x.mp3")};
  request.destPath.reset();
  expectLine(surroundings, 1, kDeviceToDeviceMethod, "Consist of Target Path Name is failed", [&] { run(); });
}

TEST_F(DeviceToDevice, AsksAboutAFileThatTheDestinationReportsAndWritesAgain) {
  add("a.mp3", "la");
  delegate.answer = {true, true, false};
  answerWith({kErrorFileExists});
  EXPECT_TRUE(run());
  EXPECT_EQ(delegate.asked(), Lines{internal + "/Music/a.mp3"});
  EXPECT_EQ(overwriteFlags(), (std::vector<bool>{false, true}));
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
}

TEST_F(DeviceToDevice, AsksOnceWhenTheAnswerIsForAll) {
  for (const char* name : {"a.mp3", "b.mp3", "c.mp3"}) add(name, "la");
  delegate.answer = {true, true, true};
  fake->onWrite = [](const Write& write) {
    return write.isOverWrite ? write.answer(true, 0) : write.answer(false, kErrorFileExists);
  };
  EXPECT_TRUE(run());
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(overwriteFlags(), (std::vector<bool>{false, true, false, true, false, true}));
}

TEST_F(DeviceToDevice, SkipsEveryConflictAfterADeclinedOne) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  delegate.answer = {false, true, false};
  answerWith({kErrorFileExists, kErrorFileExists});
  EXPECT_FALSE(run());
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(overwriteFlags(), (std::vector<bool>{false, false}));
  EXPECT_EQ(
      told(),
      (Lines{"progress 1/2 fail 0 status 2 50% a.mp3", "result 0x21000002 volume 0 $/there/Music/a.mp3",
             "progress 2/2 fail 0 status 2 100% b.mp3", "result 0x21000002 volume 0 $/there/Music/b.mp3",
             "progress 2/2 fail 0 status 4 100% b.mp3"}));
  EXPECT_EQ(ends(), (Lines{"0 skipped 0x21000002 0 bytes to $/there/Music/a.mp3",
                           "1 skipped 0x21000002 0 bytes to $/there/Music/b.mp3"}));
}

TEST_F(DeviceToDevice, EndsForBothStopCodesAndForgetsTheCancel) {
  for (uint32_t number : {kErrorStopped, kErrorStoppedByPeer}) {
    notifications.clear();
    request.contents = Array();
    add("a.mp3", "la");
    add("b.mp3", "la");
    answerWith({number});
    service->cancelFileAction(kRequest + 1);
    EXPECT_FALSE(run());
    EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
    EXPECT_EQ(items.outcomes().back().kind, ItemOutcome::Kind::NotReached);
  }
  EXPECT_EQ(items.outcomes().size(), 4u);
  EXPECT_EQ(items.outcomes().at(2).errorNumber, kErrorStoppedByPeer);
}

TEST_F(DeviceToDevice, EndsForAStopCodeOfTheSecondWrite) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  delegate.answer = {true, true, false};
  answerWith({kErrorFileExists, kErrorStopped});
  EXPECT_FALSE(run());
  EXPECT_EQ(fake->writes.size(), 2u);
  EXPECT_EQ(told(), Lines{"progress 1/2 fail 0 status 3 100% a.mp3"});
}

TEST_F(DeviceToDevice, TakesAStopCodeOfAWriteThatSucceededForAFailure) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  fake->onWrite = [](const Write& write) { return write.answer(true, kErrorStopped); };
  EXPECT_TRUE(run());
  EXPECT_EQ(told(),
            (Lines{"progress 2/2 fail 1 status 4 100% a.mp3", "progress 2/2 fail 2 status 4 100% b.mp3"}));
}

TEST_F(DeviceToDevice, EndsForAFullVolume) {
  for (const char* name : {"a.mp3", "b.mp3", "c.mp3"}) add(name, "la");
  answerWith({kErrorVolumeFull});
  EXPECT_FALSE(run());
  EXPECT_EQ(fake->writes.size(), 1u);
  EXPECT_EQ(told(), (Lines{"progress 3/3 fail 3 status 4 100% a.mp3",
                           "result 0x1000000a volume 0 $/there/Music/a.mp3"}));
}

TEST_F(DeviceToDevice, DoesNotCarryANumberOverToTheNextFile) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  fake->onWrite = [](const Write& write) {
    if (write.content->string(key::kFileName) == "a.mp3")
      return write.answer(false, kErrorAttributesUnreadable);
    return true;  // says nothing about the number
  };
  EXPECT_TRUE(run());
  EXPECT_EQ(ends().at(0), "0 failed 0x20000008 0 bytes to $/there/Music/a.mp3");
  EXPECT_EQ(results(), std::vector<uint32_t>{kItemTransferred});
}

TEST_F(DeviceToDevice, BelievesADestinationWithoutProgressOnlyWhenTheFileIsThere) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  sandbox.file("there/Music/b.mp3", "ta");
  EXPECT_TRUE(run());
  EXPECT_EQ(results(), (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
  EXPECT_EQ(ends(), (Lines{"0 failed 0x20000002 0 bytes to $/there/Music/a.mp3",
                           "1 done 0x00000000 0 bytes to $/there/Music/b.mp3"}));
}

TEST_F(DeviceToDevice, StopsBetweenFilesOnACancelAndForgetsIt) {
  add("a.mp3", "la");
  add("b.mp3", "la");
  fake->onWrite = [&](const Write& write) {
    service->cancelFileAction(kRequest);
    return write.answer(true, 0);
  };
  EXPECT_TRUE(run());
  EXPECT_EQ(fake->writes.size(), 1u);
  EXPECT_EQ(told().back(), "progress 2/2 fail 0 status 3 100% a.mp3");
  EXPECT_FALSE(service->isCancelServiceId(kRequest));
}

}  // namespace
}  // namespace umsservice::testing
