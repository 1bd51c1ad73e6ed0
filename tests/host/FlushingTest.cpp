#include <cerrno>

#include "Flushing.h"
#include "HostTest.h"
#include "WrappedFileSystem.h"

namespace umsservice::testing {
namespace {

using umsctl::Errand;
using umsctl::Interrupt;
using umsctl::WrittenPlace;

class Flushing : public ::testing::Test {
 protected:
  /// Flushes two volumes and gives what a person reads on standard error.
  std::string flush(bool wasCancelled = false) {
    ::testing::internal::CaptureStderr();
    isKept = umsctl::flush(
        errand, files, {WrittenPlace{sandbox.folder("phone"), {}}, WrittenPlace{sandbox.folder("card"), {}}},
        wasCancelled, [this](const std::function<void()>& speak) {
          ++timesAside;
          speak();
        });
    return ::testing::internal::GetCapturedStderr();
  }
  void interruptWhileTheCardIsFlushed() {
    files.setFault([this](FileCall call, const std::string& path) {
      if (call == FileCall::SyncVolume && path.ends_with("card")) {
        interrupt.happen();
        interrupt.settle();
      }
      return 0;
    });
  }

  Sandbox sandbox;
  FaultyFileSystem files;
  Interrupt interrupt;
  const Errand errand{{}, interrupt};
  bool isKept = false;
  int timesAside = 0;
};

TEST_F(Flushing, OfEveryPlaceSaysNothingWhereAllIsWell) {
  EXPECT_EQ(flush(), "");
  EXPECT_TRUE(isKept);
  EXPECT_EQ(files.count(FileCall::SyncVolume), 2u);
  EXPECT_EQ(timesAside, 0);
}

TEST_F(Flushing, ThatFailsNamesThePlaceAndGoesOnWithTheNext) {
  files.failNth(FileCall::SyncVolume, 1, EIO);
  const std::string told = flush();
  EXPECT_NE(told.find("phone: it may not be written yet: "), std::string::npos) << told;
  EXPECT_EQ(told.find("card"), std::string::npos) << told;
  EXPECT_FALSE(isKept);
  EXPECT_EQ(files.count(FileCall::SyncVolume), 2u);
  EXPECT_EQ(timesAside, 1);
}

TEST_F(Flushing, AnswersAFirstInterruptAndGoesOn) {
  interruptWhileTheCardIsFlushed();
  EXPECT_EQ(flush(), "umsctl: the device is still writing; once more to stop at once\n");
  EXPECT_TRUE(isKept);
}

TEST_F(Flushing, SaysNothingMoreToAPersonWhoHasCancelled) {
  interrupt.happen();
  EXPECT_EQ(flush(true), "");
  EXPECT_TRUE(isKept);
}

}  // namespace
}  // namespace umsservice::testing
