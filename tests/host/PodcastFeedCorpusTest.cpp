#include <gtest/gtest.h>

#include <filesystem>

#include "FeedProperties.h"
#include "Sandbox.h"

namespace umsservice::testing {
namespace {

TEST(PodcastFeedCorpus, HoldsWhatHoldsForEveryFeed) {
  size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(FUZZ_CORPUS "/feed")) {
    ++files;
    EXPECT_EQ(fuzzing::brokenFeedProperty(bytesOf(entry.path())), "") << entry.path();
  }
  EXPECT_GT(files, 10u);
}

/// Every feed cut short, as a broken download is.
TEST(PodcastFeedCorpus, HoldsForEveryBeginningOfAFeed) {
  std::string whole = bytesOf(FUZZ_CORPUS "/feed/harbour-notes.rss");
  ASSERT_GT(whole.size(), 1000u);
  for (size_t length = 0; length < whole.size(); length += 7)
    EXPECT_EQ(fuzzing::brokenFeedProperty(whole.substr(0, length)), "") << length;
}

}  // namespace
}  // namespace umsservice::testing
