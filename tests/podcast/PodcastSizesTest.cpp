#include "PodcastTest.h"

namespace umsservice::testing {
namespace {

class PodcastSizes : public PodcastTest {
 protected:
  static Dictionary ofLength(const Value& length) { return Dictionary{{"Length", length}}; }
  uint64_t requestSize(const std::vector<Value>& episodes) {
    return service->totalPodcastFileSize(Array{channel("News", episodes)}, nullptr);
  }
};

constexpr auto kCount = "-[UMSService totalPodcastCount:]";
constexpr auto kRequest = "-[UMSService totalPodcastFileSize:sendCount:]";
constexpr auto kEpisodes = "-[UMSService totalUmsPodcastEpisodeDataSize:]";

TEST_F(PodcastSizes, CountsTheEpisodesOfEveryChannel) {
  Array contents{channel("A", {ofLength(1), Null()}), Null(), Dictionary{{"Title", "B"}},
                 channel("C", {Null()})};
  expectLine(surroundings, 1, kCount, "Contents data is nil. Next data search",
             [&] { EXPECT_EQ(service->totalPodcastCount(contents), 3u); });
  expectLine(surroundings, 3, kCount, "Podcast Episode is NULL",
             [&] { service->totalPodcastCount(contents); });
  expectLine(surroundings, 7, kCount, "Total Podcast Episode Count = 0x00000003",
             [&] { service->totalPodcastCount(contents); });
}

TEST_F(PodcastSizes, AnEmptyListIsNothingAndFitsWhereThereIsRoom) {
  uint32_t count = 99;
  EXPECT_EQ(service->totalPodcastFileSize(Array{}, &count), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(service->totalPodcastCount(std::nullopt), 0u);
  EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(Array{}), 0u);
  EXPECT_TRUE(service->checkUmsPodcastEpisodeSize(internal, Array{}));
}

TEST_F(PodcastSizes, ReadsTheLengthOfARequestAsAnUnsignedNumberOf32Bits) {
  EXPECT_EQ(requestSize({ofLength(10), ofLength("20")}), 30u);
  EXPECT_EQ(requestSize({ofLength("-1")}), 4294967295u);
  EXPECT_EQ(requestSize({ofLength("-1"), ofLength("-1")}), 8589934590u);
  EXPECT_EQ(requestSize({ofLength("text"), ofLength("")}), 0u);
  EXPECT_EQ(requestSize({ofLength("99999999999")}), 2147483647u);
}

TEST_F(PodcastSizes, ReadsTheLengthOfEpisodesAsASignedNumber) {
  EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(Array{ofLength(100), ofLength("-1")}), 99u);
  EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(Array{ofLength("-1")}), ~uint64_t{0});
}

TEST_F(PodcastSizes, LooksForTheFileOfTheChannelWhenAnEpisodeOfARequestHasNoLength) {
  Dictionary lengthless{{key::kFilePath, sandbox.file("in/1.mp3", "12345")}};
  Dictionary news = channel("News", {lengthless, lengthless});
  uint32_t count = 0;
  EXPECT_EQ(service->totalPodcastFileSize(Array{news}, &count), 0u);
  EXPECT_EQ(count, 2u);
  news.set(key::kFilePath, sandbox.file("in/cover.jpg", "123"));
  EXPECT_EQ(service->totalPodcastFileSize(Array{news}, &count), 6u);
}

TEST_F(PodcastSizes, LooksForTheFileOfTheEpisodeOnTheWayToAVolume) {
  Array episodes{Dictionary{{key::kFilePath, sandbox.file("in/1.mp3", "12345")}},
                 Dictionary{{key::kFilePath, sandbox.file("in/2.mp3", "123")}, {"Length", Null()}},
                 Dictionary()};
  EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(episodes), 8u);
}

TEST_F(PodcastSizes, SaysWhichEpisodesHaveNoLengthOrAreNone) {
  Array episodes{Dictionary()};
  Array nothing{Null()};
  expectLine(surroundings, 3, kEpisodes, "Episode File Length value is nil",
             [&] { EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(episodes), 0u); });
  expectLine(surroundings, 1, kEpisodes, "Episode Dictionary Data is nil.",
             [&] { EXPECT_EQ(service->totalUmsPodcastEpisodeDataSize(nothing), 0u); });
  expectLine(surroundings, 3, kRequest, "Episode File Length value is nil",
             [&] { EXPECT_EQ(requestSize({Dictionary()}), 0u); });
  expectLine(surroundings, 1, kRequest, "Episode Dictionary Data is nil.",
             [&] { EXPECT_EQ(requestSize({Null()}), 0u); });
  expectLine(surroundings, 1, kRequest, "Contents data is nil. Next data search",
             [&] { service->totalPodcastFileSize(Array{Null()}, nullptr); });
  expectLine(surroundings, 3, kRequest, "Podcast Episode is NULL",
             [&] { service->totalPodcastFileSize(Array{Dictionary()}, nullptr); });
}

TEST_F(PodcastSizes, WhatTakesAllTheSpaceDoesNotFit) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(internal, 256 * 1024);
  auto free = static_cast<uint32_t>(volume.freeBytes());
  EXPECT_FALSE(service->checkUmsPodcastEpisodeSize(internal, Array{ofLength(free)}));
  EXPECT_TRUE(service->checkUmsPodcastEpisodeSize(internal, Array{ofLength(free - 1)}));
  EXPECT_FALSE(service->checkUmsPodcastEpisodeSize(std::nullopt, Array{}));
}

}  // namespace
}  // namespace umsservice::testing
