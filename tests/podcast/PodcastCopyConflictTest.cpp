#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

class PodcastCopyConflict : public PodcastTest {
 protected:
  PodcastCopyConflict() {
    copy({channel("News", {episode("1.mp3", "old 1"), episode("2.mp3", "old 2")})});
    forget();
    again = {channel("News", {episode("1.mp3", "new 1"), episode("2.mp3", "new 2")})};
    told = items.outcomes().size();
  }
  Texts onDevice() const { return {bytesOf(podcasts + "/News/1.mp3"), bytesOf(podcasts + "/News/2.mp3")}; }
  Texts newOutcomes() const {
    Texts all = outcomes();
    return Texts(all.begin() + static_cast<std::ptrdiff_t>(told), all.end());
  }
  Array again;
  size_t told = 0;
};

TEST_F(PodcastCopyConflict, IsAFailureWhenNobodyCanBeAsked) {
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(onDevice(), (Texts{"old 1", "old 2"}));
  EXPECT_EQ(lastFailCount(), 2u);
  EXPECT_EQ(results().size(), 0u);
  EXPECT_TRUE(
      log.has("Podcast Download " + sandbox.at("in/1.mp3") + " to " + podcasts + "/News/1.mp3 failed."));
  EXPECT_EQ(newOutcomes(), (Texts{"0 failed $/in/1.mp3 0x21000002", "1 failed $/in/2.mp3 0x21000002"}));
}

TEST_F(PodcastCopyConflict, IsAskedAboutEachTimeAndReplacedOnYes) {
  useDelegate();
  delegate.answer = {true, true, false};
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(delegate.asked(), (Texts{sandbox.at("in/1.mp3"), sandbox.at("in/2.mp3")}));
  EXPECT_EQ(onDevice(), (Texts{"new 1", "new 2"}));
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kItemTransferred, kItemTransferred}));
}

TEST_F(PodcastCopyConflict, IsNotAskedAboutAgainWhenToldSo) {
  useDelegate();
  delegate.answer = {true, true, true};
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onDevice(), (Texts{"new 1", "new 2"}));
}

TEST_F(PodcastCopyConflict, IsSkippedAndCountedAsDoneOnceAnsweredNo) {
  useDelegate();
  delegate.answer = {false, true, false};
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(delegate.asked().size(), 1u);
  EXPECT_EQ(onDevice(), (Texts{"old 1", "old 2"}));
  EXPECT_EQ(numbers(results(), key::kResultStatus),
            (std::vector<uint32_t>{kErrorFileExists, kErrorFileExists}));
  EXPECT_EQ(numbers(progress(), key::kCurrentProgress), (std::vector<uint32_t>{50, 100, 100}));
  EXPECT_EQ(lastFailCount(), 0u);
  EXPECT_EQ(newOutcomes(), (Texts{"0 skipped $/in/1.mp3 0x21000002", "1 skipped $/in/2.mp3 0x21000002"}));
}

TEST_F(PodcastCopyConflict, IsSkippedWhenTheHostDoesNotWantToReplace) {
  useDelegate();
  delegate.onAsk = [](const std::string& path) {
    return ScriptedDelegate::Answer{true, path.ends_with("2.mp3"), false};
  };
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(onDevice(), (Texts{"old 1", "new 2"}));
}

TEST_F(PodcastCopyConflict, NeverCostsAFileThatIsItsOwnSource) {
  useDelegate();
  delegate.answer = {true, true, true};
  Dictionary itself = episode("1.mp3");
  itself.set(key::kFilePath, podcasts + "/News/1.mp3");
  copy({channel("News", {itself})});
  EXPECT_EQ(onDevice()[0], "old 1");
  EXPECT_EQ(delegate.asked(), Texts{});
}

TEST_F(PodcastCopyConflict, NeverCostsAFolder) {
  useDelegate();
  delegate.answer = {true, true, true};
  sandbox.file("internal/Podcast/News/3.mp3/inside", "precious");
  copy({channel("News", {episode("3.mp3")})});
  EXPECT_EQ(bytesOf(podcasts + "/News/3.mp3/inside"), "precious");
  EXPECT_EQ(lastFailCount(), 1u);
}

TEST_F(PodcastCopyConflict, NeverCostsTheOldFileForASourceThatCannotBeRead) {
  useDelegate();
  delegate.answer = {true, true, true};
  copy({channel("News", {missing("gone/1.mp3")})});
  EXPECT_EQ(onDevice()[0], "old 1");
}

TEST_F(PodcastCopyConflict, EndsTheRunWhenTheDeviceGoesBeforeTheSecondCopy) {
  useDelegate();
  delegate.onAsk = [this](const std::string&) {
    service->disconnectDevice("location-1");
    return ScriptedDelegate::Answer{true, true, false};
  };
  EXPECT_FALSE(copy(again));
  EXPECT_TRUE(log.has("Device Disconnected - location-1"));
  EXPECT_EQ(onDevice(), (Texts{"old 1", "old 2"})) << "nothing goes for a copy that is not made";
  EXPECT_EQ(newOutcomes(),
            (Texts{"0 not reached $/in/1.mp3 0x10000008", "1 not reached $/in/2.mp3 0x10000008"}));
}

TEST_F(PodcastCopyConflict, KeepsTheOldFileOfARequestThatIsCancelledWhileTheQuestionIsOpen) {
  useDelegate();
  delegate.onAsk = [this](const std::string&) {
    service->cancelFileAction(7);
    return ScriptedDelegate::Answer{true, true, false};
  };
  copy(again);
  EXPECT_EQ(onDevice(), (Texts{"old 1", "old 2"}));
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
  EXPECT_FALSE(service->isCancelServiceId(7));
}

TEST_F(PodcastCopyConflict, KeepsTheOldFileWhenItCannotBeDeletedAndGoesOn) {
  useDelegate();
  delegate.answer = {true, true, false};
  files.failAlways(FileCall::Remove, "1.mp3", EACCES);
  EXPECT_TRUE(copy(again));
  EXPECT_EQ(onDevice(), (Texts{"old 1", "new 2"}));
  EXPECT_EQ(lastFailCount(), 1u);
  EXPECT_EQ(newOutcomes()[0], "0 failed $/in/1.mp3 0x20000003");
  EXPECT_TRUE(
      log.has("Podcast Download " + sandbox.at("in/1.mp3") + " to " + podcasts + "/News/1.mp3 failed."));
}

TEST_F(PodcastCopyConflict, EndsTheRunForAStopInTheSecondCopy) {
  useDelegate();
  delegate.answer = {true, true, true};
  files.setFault([&](FileCall call, const std::string& path) {
    if (call == FileCall::Remove && path.ends_with("1.mp3")) service->cancelFileAction(7);
    return 0;
  });
  EXPECT_TRUE(copy(again)) << "the index has been written";
  EXPECT_EQ(onDevice(), (Texts{"", "old 2"})) << "stopped before the first of its bytes";
  EXPECT_EQ(listed("News"), (Texts{"1.mp3", "2.mp3"}));
  EXPECT_EQ(results().size(), 0u);
  EXPECT_EQ(lastFailCount(), 0u);
  EXPECT_EQ(numbers(progress(), key::kTransferStatus).back(), 3u);
  EXPECT_FALSE(service->isCancelServiceId(7));
  EXPECT_EQ(newOutcomes(),
            (Texts{"0 not reached $/in/1.mp3 0x10000008", "1 not reached $/in/2.mp3 0x10000008"}));
}

}  // namespace
}  // namespace umsservice::testing
