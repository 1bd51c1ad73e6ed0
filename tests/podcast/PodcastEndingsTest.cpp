#include <cerrno>
#include <filesystem>

#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

/// The four operations end in the same ways, and say so in the same words under their own names.
class PodcastEndings : public PodcastTest {
 protected:
  PodcastEndings() {
    useDelegate();
    peer->addDiskInformation(disk(1, peerDisk));
    surroundings.delegate->onService = [this](const MaybeString&) { return peer; };
    delegate.answer = {true, true, true};
    record = request({channel("News", {episode("1.mp3")})});
    record.isStartInternal = 1;
    record.destLocationID = "location-2";
  }
  struct Operation {
    const char* method;
    std::function<void()> run;
  };
  std::vector<Operation> operations() {
    auto fresh = [this] { record.contents = Array{channel("News", {episode("1.mp3")})}; };
    return {{"-[UMSService doCopyPodcastContents:]",
             [=, this] { fresh(), service->doCopyPodcastContents(record); }},
            {"-[UMSService doSyncPodcastContents:]",
             [=, this] { fresh(), service->doSyncPodcastContents(record); }},
            {"-[UMSService doDeletePodcastContents:]",
             [=, this] { fresh(), service->doDeletePodcastContents(record); }},
            {"-[UMSService doDeviceToDevicePodcast:]",
             [=, this] { fresh(), service->doDeviceToDevicePodcast(record); }}};
  }

  const std::string peerDisk = sandbox.folder("peer");
  std::shared_ptr<UMSService> peer = std::make_shared<UMSService>(surroundings.environment, "location-2");
  _serviceinfo record;
};

TEST_F(PodcastEndings, ACancelIsSaidAtItsLevel) {
  for (const Operation& operation : operations()) {
    expectLine(surroundings, 1, operation.method, "Cancel Podcast Processing.", [&] {
      service->cancelFileAction(7);
      operation.run();
    });
    EXPECT_FALSE(service->isCancelServiceId(7)) << operation.method;
  }
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastEndings, AnIndexThatCannotBeWrittenIsSaidAtItsLevel) {
  for (const Operation& operation : operations()) {
    files.failAlways(FileCall::Replace, "News.xml", EIO);
    expectLine(surroundings, 3, operation.method, "Podcast XML Data send is failed.", operation.run);
  }
}

TEST_F(PodcastEndings, AReleaseIsSaidAtItsLevel) {
  service->disconnectDevice("location-1");
  for (const Operation& operation : operations())
    expectLine(surroundings, 5, operation.method, "Device Disconnected - location-1", operation.run);
  EXPECT_EQ(treeOf(internal), Texts{});
}

TEST_F(PodcastEndings, EveryEpisodeIsToldOfOnceHoweverTheRunEnds) {
  std::vector<Value> episodes{episode("1.mp3"), Null(), missing("2.mp3"), episode("3.mp3")};
  bool reached = true;
  for (int failing = 1; reached; ++failing) {
    reached = false;
    record.contents =
        Array{channel("News", episodes), Null(), channel("..", episodes), channel("Arts", episodes)};
    size_t before = items.outcomes().size();
    files.setFault([failing, &reached, n = 0](FileCall, const std::string&) mutable {
      if (++n != failing) return 0;
      reached = true;
      return EIO;
    });
    service->doCopyPodcastContents(record);
    auto outcomes = items.outcomes();
    ASSERT_EQ(outcomes.size() - before, 13u) << "with call " << failing << " failing";
    for (size_t i = 0; i < 13; ++i) EXPECT_EQ(outcomes[before + i].index, i);
    files.setFault(nullptr);
    std::filesystem::remove_all(podcasts);
  }
}

}  // namespace
}  // namespace umsservice::testing
