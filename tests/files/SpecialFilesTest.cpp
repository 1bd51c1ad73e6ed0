#include <sys/stat.h>
#include <unistd.h>

#include "TransferTest.h"

namespace umsservice::testing {
namespace {

/// FIFOs and device nodes in direct transfers: nothing waits for them, reads them or writes to them.
class SpecialFilesInTransfers : public TransferTest {
 protected:
  static Dictionary at(const std::string& path) { return Dictionary{{key::kFilePath, path}}; }
  std::string fifo(const std::string& relative) {
    const std::string path = sandbox.at(relative);
    sandbox.folder(relative.substr(0, relative.rfind('/')));
    EXPECT_EQ(::mkfifo(path.c_str(), 0666), 0);
    return path;
  }
  static bool isFifo(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
  }
};

TEST_F(SpecialFilesInTransfers, AreNoSources) {
  for (const std::string& from : {fifo("in/fifo"), std::string("/dev/zero")}) {
    EXPECT_FALSE(write(at(from), sandbox.at("out/written")));
    EXPECT_EQ(error, kErrorInvalidInput);
    EXPECT_FALSE(read(at(from), sandbox.at("out/read")));
    EXPECT_EQ(error, kErrorInvalidInput);
    EXPECT_FALSE(syncWrite(at(from)));
    EXPECT_EQ(error, kErrorCopyFailed);
    EXPECT_FALSE(service->readFileData(from));
    for (const char* made : {"out/written", "out/read"}) ::unlink(sandbox.at(made).c_str());
  }
  EXPECT_EQ(callback->reports.size(), 0u);
}

TEST_F(SpecialFilesInTransfers, AreNoSourcesThatAFileIsGivenUpFor) {
  const std::string standing = sandbox.file("out/a.mp3", "stands");
  const std::string inMusic = sandbox.file("internal/Music/zero", "stands");
  for (const std::string& from : {fifo("in/fifo"), std::string("/dev/zero")}) {
    EXPECT_FALSE(write(at(from), standing, true));
    EXPECT_FALSE(read(at(from), standing, true));
  }
  EXPECT_FALSE(syncWrite(at("/dev/zero")));
  EXPECT_EQ(bytesOf(standing), "stands");
  EXPECT_EQ(bytesOf(inMusic), "stands");
}

TEST_F(SpecialFilesInTransfers, AtADestinationAreReplacedWithTheFlagOnly) {
  for (bool toDevice : {true, false}) {
    const std::string to = fifo(toDevice ? "out/a" : "out/b");
    const Dictionary from = file("a.mp3", "la");
    EXPECT_FALSE(toDevice ? write(from, to) : read(from, to));
    EXPECT_EQ(error, kErrorOverwriteNotAllowed);
    EXPECT_TRUE(isFifo(to));
    EXPECT_TRUE(toDevice ? write(from, to, true) : read(from, to, true));
    EXPECT_FALSE(isFifo(to));
    EXPECT_EQ(bytesOf(to), "la");
  }
}

TEST_F(SpecialFilesInTransfers, AtTheDestinationOfASyncWriteAreNeverWrittenTo) {
  const std::string to = fifo("internal/Music/a.mp3");
  EXPECT_FALSE(syncWrite(file("a.mp3", "la"), std::nullopt, 0, kMediaMusic, true));
  EXPECT_EQ(error, kUntouched);
  EXPECT_TRUE(isFifo(to));
  EXPECT_TRUE(log.has("createFileAtPath Fail!"));
}

/// A device that is pulled in the middle of a direct transfer.
class VanishingVolume : public TransferTest {
 protected:
  /// The volume goes in the n-th call of a kind, and whatever was open on it with it.
  void vanishIn(FileCall kind, int n) {
    files.setFault([this, kind, n, left = n](FileCall call, const std::string& path) mutable {
      if (call == kind && --left == 0) volume->vanish();
      return left <= 0 && path.starts_with(card) && n > 0 ? EIO : 0;
    });
  }
  std::unique_ptr<TmpfsVolume> volume;
};

TEST_F(VanishingVolume, FailsAWriteAndLeavesTheSource) {
  REQUIRE_TMPFS_VOLUMES();
  volume = std::make_unique<TmpfsVolume>(card, 4 << 20);
  const Dictionary from = patternFile("a.mp3", 600'000);
  vanishIn(FileCall::Write, 2);
  EXPECT_FALSE(write(from, card + "/a.mp3"));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(sandbox.at("in/a.mp3")), bytesOf(sandbox.patternFile("same", 600'000)));
  EXPECT_EQ(treeOf(card), Lines{});
}

TEST_F(VanishingVolume, FailsAReadAndKeepsWhatWasReported) {
  REQUIRE_TMPFS_VOLUMES();
  volume = std::make_unique<TmpfsVolume>(card, 4 << 20);
  const std::string from = sandbox.patternFile("card/a.mp3", 600'000);
  const std::string before = bytesOf(from);
  vanishIn(FileCall::Read, 2);
  EXPECT_FALSE(read(Dictionary{{key::kFilePath, from}}, sandbox.at("out/a.mp3")));
  EXPECT_EQ(error, kErrorCopyFailed);
  ASSERT_FALSE(callback->reports.empty());
  EXPECT_EQ(bytesOf(sandbox.at("out/a.mp3")), before.substr(0, callback->reports.back().current));
}

}  // namespace
}  // namespace umsservice::testing
