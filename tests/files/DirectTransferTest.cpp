#include <unistd.h>

#include "TransferTest.h"

namespace umsservice::testing {
namespace {

constexpr const char* kMethods[] = {
    "-[UMSService "
    "writeFileToDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]",
    "-[UMSService "
    "readFileFromDevice:destinationPath:diskIndex:mediaType:isOverWrite:callbackObject:context:error:]"};

/// What holds for both directions: 0 writes to the device, 1 reads from it.
class DirectTransfer : public TransferTest, public ::testing::WithParamInterface<int> {
 protected:
  bool transfer(const MaybeDictionary& from, const MaybeString& path, bool isOverWrite = false) {
    return GetParam() == 0 ? write(from, path, isOverWrite) : read(from, path, isOverWrite);
  }
  std::string method() const { return kMethods[GetParam()]; }

  std::string to = sandbox.at("out/deep/a.mp3");
};

INSTANTIATE_TEST_SUITE_P(InBothDirections, DirectTransfer, ::testing::Values(0, 1),
                         [](const auto& instance) { return instance.param == 0 ? "Write" : "Read"; });

TEST_P(DirectTransfer, PutsTheBytesThereMakesTheFoldersAndReportsEachUnit) {
  const Dictionary from = patternFile("a.mp3", 10'000);
  EXPECT_TRUE(transfer(from, to));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(to), bytesOf(*from.string(key::kFilePath)));
  ASSERT_EQ(callback->reports.size(), 3u);
  const uint64_t counts[] = {4096, 8192, 10'000};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_FALSE(callback->reports[i].full);
    EXPECT_EQ(callback->reports[i].context, &context);
    EXPECT_EQ(callback->reports[i].max, 10'000u);
    EXPECT_EQ(callback->reports[i].current, counts[i]);
  }
}

TEST_P(DirectTransfer, WorksWithoutACallbackOrAPlaceForTheNumber) {
  callback.reset();
  EXPECT_TRUE(transfer(file("a.mp3", "la"), to));
  EXPECT_TRUE(service->writeFileToDevice(file("a.mp3", "la"), sandbox.at("x"), 0, 0, false, nullptr, nullptr,
                                         nullptr));
  EXPECT_FALSE(service->readFileFromDevice(std::nullopt, to, 0, 0, false, nullptr, nullptr, nullptr));
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_P(DirectTransfer, LetsGoOfTheCallbackAtTheEnd) {
  EXPECT_TRUE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(callback.use_count(), 1);
}

TEST_P(DirectTransfer, KeepsTheCallbackWhileItRuns) {
  // The caller's own reference goes away in the first report.
  std::weak_ptr<ListeningCallback> watched = callback;
  callback->onReport = [&] {
    callback.reset();
    return !watched.expired();
  };
  EXPECT_TRUE(transfer(patternFile("a.mp3", 4096), to));
  EXPECT_TRUE(watched.expired());
}

TEST_P(DirectTransfer, OfNoBytesMakesAnEmptyFileWithoutAReport) {
  EXPECT_TRUE(transfer(file("empty.mp3", ""), to));
  EXPECT_EQ(error, 0u);
  EXPECT_TRUE(exists(to));
  EXPECT_EQ(callback->reports.size(), 0u);
}

TEST_P(DirectTransfer, RefusesMissingInput) {
  const Dictionary good = file("a.mp3", "la");
  EXPECT_FALSE(transfer(std::nullopt, to));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_FALSE(transfer(good, std::nullopt));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_FALSE(transfer(Dictionary{{key::kFileName, "a.mp3"}}, to));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_FALSE(transfer(Dictionary{{key::kFilePath, 5}}, to));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_FALSE(exists(sandbox.at("out")));
}

TEST_P(DirectTransfer, LeavesAnExistingFileUntouchedWithoutTheFlag) {
  sandbox.file("out/deep/a.mp3", "old");
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(error, kErrorOverwriteNotAllowed);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_P(DirectTransfer, ReplacesAnExistingFileWithTheFlag) {
  sandbox.file("out/deep/a.mp3", "old and longer");
  EXPECT_TRUE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_P(DirectTransfer, ReplacesALinkAndNotWhatItLeadsTo) {
  const std::string real = sandbox.file("real.mp3", "real");
  sandbox.folder("out/deep");
  ASSERT_EQ(::symlink(real.c_str(), to.c_str()), 0);
  EXPECT_TRUE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(bytesOf(real), "real");
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_P(DirectTransfer, NeverWritesThroughALinkThatLeadsNowhere) {
  sandbox.folder("out/deep");
  ASSERT_EQ(::symlink(sandbox.at("nowhere").c_str(), to.c_str()), 0);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_FALSE(exists(sandbox.at("nowhere")));
}

TEST_P(DirectTransfer, NeverReplacesAFolder) {
  sandbox.file("out/deep/a.mp3/inside", "kept");
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, kErrorOverwriteNotAllowed);
  EXPECT_EQ(bytesOf(to + "/inside"), "kept");
}

TEST_P(DirectTransfer, NeverReplacesAFileByItself) {
  const Dictionary from = file("a.mp3", "la");
  EXPECT_FALSE(transfer(from, *from.string(key::kFilePath), true));
  EXPECT_EQ(error, kErrorOverwriteNotAllowed);
  EXPECT_EQ(bytesOf(*from.string(key::kFilePath)), "la");
}

TEST_P(DirectTransfer, NeverGivesUpAFileForASourceThatCannotBeRead) {
  sandbox.file("out/deep/a.mp3", "old");
  EXPECT_FALSE(transfer(Dictionary{{key::kFilePath, sandbox.at("missing")}}, to, true));
  EXPECT_EQ(error, kErrorAttributesUnreadable);
  EXPECT_FALSE(transfer(Dictionary{{key::kFilePath, sandbox.folder("folder")}}, to, true));
  EXPECT_EQ(error, kErrorInvalidInput);
  files.failAlways(FileCall::OpenForReading, "in/b.mp3", EACCES);
  EXPECT_FALSE(transfer(file("b.mp3", "la"), to, true));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_P(DirectTransfer, GivesTheNumberOfTheSourceWhenAFileCannotBeRemoved) {
  sandbox.file("out/deep/a.mp3", "old");
  files.failAlways(FileCall::Remove, "a.mp3", EACCES);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, kErrorAttributesUnreadable);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_P(DirectTransfer, FailsWhereTheFolderCannotBeMade) {
  sandbox.file("out", "a file of that name");
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(error, kErrorInvalidInput);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), "bare-name.mp3"));
  EXPECT_EQ(error, kErrorInvalidInput);
}

TEST_P(DirectTransfer, FailsForASourceThatIsMissing) {
  EXPECT_FALSE(transfer(Dictionary{{key::kFilePath, sandbox.at("missing")}}, to));
  EXPECT_EQ(error, kErrorAttributesUnreadable);
  EXPECT_EQ(treeOf(sandbox.at("out")), Lines{"deep/"});
}

TEST_P(DirectTransfer, FailsWhereTheFileCannotBeMade) {
  files.failAlways(FileCall::CreateFile, "a.mp3", EROFS);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(error, kErrorCopyFailed);
}

TEST_P(DirectTransfer, FailsForASourceThatCannotBeOpened) {
  EXPECT_FALSE(transfer(Dictionary{{key::kFilePath, sandbox.folder("folder")}}, to));
  EXPECT_EQ(error, kErrorInvalidInput);
}

TEST_P(DirectTransfer, NeverEmptiesAFileThatAFailingDeviceHides) {
  sandbox.file("out/deep/a.mp3", "old");
  files.failAlways(FileCall::Attributes, "out/deep/a.mp3", EIO);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(to), "old");
}

TEST_P(DirectTransfer, NeverEmptiesAFileThatAppearsMeanwhile) {
  files.setFault([&](FileCall call, const std::string&) {
    if (call == FileCall::CreateFile) sandbox.file("out/deep/a.mp3", "of somebody else");
    return 0;
  });
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(to), "of somebody else");
}

TEST_P(DirectTransfer, StopsAtTheFirstUnitWhenTheCallbackSaysNo) {
  callback->onReport = [] { return false; };
  EXPECT_FALSE(transfer(patternFile("a.mp3", 600'000), to));
  EXPECT_EQ(error, kErrorStopped);
  EXPECT_EQ(bytesOf(to), bytesOf(sandbox.at("in/a.mp3")).substr(0, 4096));
  EXPECT_EQ(callback->reports.size(), 1u);
}

TEST_P(DirectTransfer, SaysNoEvenWhenTheCallbackStopsAfterTheLastUnit) {
  callback->onReport = [] { return false; };
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to));
  EXPECT_EQ(error, kErrorStopped);
  EXPECT_EQ(bytesOf(to), "la");
}

TEST_P(DirectTransfer, StopsWithinOneUnitWhenReleased) {
  callback->onReport = [&] { return service->exitServiceThread(); };
  EXPECT_FALSE(transfer(patternFile("a.mp3", 600'000), to));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(to).size(), 4096u);
  auto again = [&] {
    ::unlink(to.c_str());
    transfer(patternFile("a.mp3", 600'000), to);
  };
  expectLine(surroundings, 3, method(), "Object Releasing process stop!", again);
}

TEST_P(DirectTransfer, GivesUpNothingOnceReleased) {
  sandbox.file("out/deep/a.mp3", "old");
  service->exitServiceThread();
  EXPECT_FALSE(transfer(file("a.mp3", "la"), to, true));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(to), "old");
  EXPECT_EQ(linesOf(surroundings, method()), Lines{"Object Releasing process stop!"});
}

TEST_P(DirectTransfer, EndsWhenTheLastReferenceGoesAwayInAReport) {
  callback->onReport = [&] {
    service.reset();
    return true;
  };
  EXPECT_FALSE(transfer(patternFile("a.mp3", 600'000), to));
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(bytesOf(to).size(), 4096u);
}

TEST_P(DirectTransfer, FailsWhenReadingOrWritingFails) {
  const Dictionary from = patternFile("a.mp3", 600'000);
  for (FileCall call : {FileCall::Read, FileCall::Write}) {
    ::unlink(to.c_str());
    files.failNth(call, 2, EIO);
    EXPECT_FALSE(transfer(from, to));
    EXPECT_EQ(error, kErrorCopyFailed);
    EXPECT_EQ(bytesOf(to).size(), 262'144u);
  }
  ::unlink(to.c_str());
  files.failNth(FileCall::Close, 1, EIO);
  EXPECT_FALSE(transfer(from, to));
  EXPECT_EQ(error, kErrorCopyFailed);
}

TEST_P(DirectTransfer, NamesTheExceptionAndItsReason) {
  const Dictionary from = file("a.mp3", "la");
  auto again = [&] {
    ::unlink(to.c_str());
    files.failNth(FileCall::Write, 1, ENOSPC);
    transfer(from, to);
  };
  expectLine(surroundings, 3, method(), "Name : NSFileHandleOperationException", again);
  expectLine(surroundings, 3, method(), "Reason :No space left on device", again);
}

TEST_P(DirectTransfer, TakesAFileThatGrowsAtTheSizeItBeganWithAndFailsOneThatShrinks) {
  const Dictionary from = patternFile("a.mp3", 10'000);
  const std::string before = bytesOf(sandbox.at("in/a.mp3"));
  callback->onReport = [&] {
    sandbox.patternFile("in/a.mp3", 50'000);
    return true;
  };
  EXPECT_TRUE(transfer(from, to));
  EXPECT_EQ(bytesOf(to), before);
  callback->onReport = [&] { return ::truncate(sandbox.at("in/b.mp3").c_str(), 300'000) == 0; };
  EXPECT_FALSE(transfer(patternFile("b.mp3", 600'000), sandbox.at("out/b.mp3")));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(sandbox.at("out/b.mp3")).size(), 300'000u);
}

TEST_P(DirectTransfer, FailsOnAVolumeThatFills) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(card, 1 << 20);
  volume.fillUpTo(100 * 1024);
  EXPECT_FALSE(transfer(patternFile("a.mp3", 600'000), card + "/a.mp3"));  // "FileSize" says nothing
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_EQ(bytesOf(card + "/a.mp3"), bytesOf(sandbox.at("in/a.mp3")).substr(0, 100 * 1024));
}

TEST_P(DirectTransfer, OfALongPathAndANameThatIsNoTextFails) {
  EXPECT_FALSE(transfer(file("a.mp3", "la"), sandbox.at(std::string(300, 'n'))));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_FALSE(transfer(file("a.mp3", "la"), sandbox.at(std::string("a\0b", 3))));
  EXPECT_EQ(error, kErrorCopyFailed);
  EXPECT_TRUE(transfer(file("a.mp3", "la"), sandbox.at("not-utf8-\xff\xfe.mp3")));
}

}  // namespace
}  // namespace umsservice::testing
