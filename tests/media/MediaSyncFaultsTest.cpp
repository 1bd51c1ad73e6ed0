#include <filesystem>

#include "DeviceToDeviceTest.h"

namespace umsservice::testing {
namespace {

constexpr size_t kItems = 3;

/// Runs a request again and again while its first, second, third ... call on files fails, until a run makes
/// fewer calls than that.
class EveryCallOnFilesFails : public DeviceToDeviceTest {
 protected:
  EveryCallOnFilesFails() {
    for (size_t i = 0; i < kItems; ++i) {
      const std::string name = std::string(1, static_cast<char>('a' + i)) + ".mp3";
      request.contents->append(content(sandbox.patternFile("in/" + name, 300'000), name));
    }
  }

  void forEachCall(const std::function<void()>& prepare, const std::function<void()>& run) {
    bool reached = true;
    for (int n = 1; reached; ++n) {
      SCOPED_TRACE("call " + std::to_string(n));
      ASSERT_LT(n, 500);
      prepare();
      const size_t before = items.outcomes().size();
      int left = n;
      files.setFault([&left](FileCall, const std::string&) { return --left == 0 ? EIO : 0; });
      run();
      files.setFault(nullptr);
      reached = left <= 0;
      expectOutcomesTrue(before, !reached);
    }
  }

  /// Each item was told once, in order, and a file that is said to be there is there, whole.
  void expectOutcomesTrue(size_t before, bool nothingFailed) {
    const auto outcomes = items.outcomes();
    ASSERT_EQ(outcomes.size(), before + kItems);
    for (size_t i = 0; i < kItems; ++i) {
      const ItemOutcome& outcome = outcomes[before + i];
      EXPECT_EQ(outcome.index, i);
      if (nothingFailed) EXPECT_EQ(outcome.kind, ItemOutcome::Kind::Done);
      if (outcome.kind != ItemOutcome::Kind::Done) EXPECT_NE(outcome.errorNumber, 0u);
      if (outcome.kind == ItemOutcome::Kind::Done && outcome.destPath)
        EXPECT_EQ(bytesOf(*outcome.destPath), whole);
    }
  }

  const std::string whole = bytesOf(sandbox.patternFile("whole", 300'000));
};

TEST_F(EveryCallOnFilesFails, InASyncThatReplacesAFile) {
  request.serviceID = 0x00100005;
  request.isStartInternal = 1;
  auto prepare = [&] {
    for (const std::string& volume : {internal, card}) std::filesystem::remove_all(volume + "/Music");
    sandbox.file("internal/Music/b.mp3", "old");
    sandbox.file("internal/Music/other.mp3", "stays");
  };
  forEachCall(prepare, [&] { service->doSyncMediaContents(request); });
  EXPECT_EQ(bytesOf(internal + "/Music/other.mp3"), "stays");
  for (const char* name : {"in/a.mp3", "in/b.mp3", "in/c.mp3"}) EXPECT_EQ(bytesOf(sandbox.at(name)), whole);
}

TEST_F(EveryCallOnFilesFails, InACopyFromDeviceToDevice) {
  auto second = secondDevice();
  destination = second;
  auto prepare = [&] {
    std::filesystem::remove_all(there + "/Music");
    sandbox.file("there/Music/b.mp3", "old");
  };
  forEachCall(prepare, [&] { service->doDeviceToDevcieContents(request); });
  for (const char* name : {"in/a.mp3", "in/b.mp3", "in/c.mp3"}) EXPECT_EQ(bytesOf(sandbox.at(name)), whole);
}

TEST_F(EveryCallOnFilesFails, InADelete) {
  request.mediaType = kMediaVideo;
  request.contents = Array();
  for (const char* name : {"a.mp4", "b.mp4", "c.mp4"})
    request.contents->append(content(card + "/" + name, name));
  auto prepare = [&] {
    for (const char* name : {"a.mp4", "a.smi", "b.mp4", "c.mp4", "other.mp4"})
      sandbox.file(std::string("card/") + name, "la");
  };
  forEachCall(prepare, [&] { service->doDeleteMediaContents(request); });
  EXPECT_EQ(treeOf(card), Lines{"other.mp4"});
}

}  // namespace
}  // namespace umsservice::testing
