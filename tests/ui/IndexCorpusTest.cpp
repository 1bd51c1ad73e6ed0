#include <filesystem>

#include "IndexProperties.h"
#include "Sandbox.h"

namespace umsservice::testing {
namespace {

TEST(IndexCorpus, HoldsWhatHoldsForEveryIndex) {
  size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(FUZZ_CORPUS "/podcast_index")) {
    ++files;
    EXPECT_EQ(fuzzing::brokenProperty(bytesOf(entry.path())), "") << entry.path();
  }
  EXPECT_GT(files, 20u);
}

/// Every file cut short at every place that a pulled cable may choose.
TEST(IndexCorpus, HoldsForEveryBeginningOfAnIndex) {
  std::string whole = bytesOf(FUZZ_CORPUS "/podcast_index/two-episodes.xml");
  ASSERT_GT(whole.size(), 1000u);
  for (size_t length = 0; length < whole.size(); length += 7)
    EXPECT_EQ(fuzzing::brokenProperty(whole.substr(0, length)), "") << length;
}

}  // namespace
}  // namespace umsservice::testing
