#include <thread>

#include "CoreRoom.h"
#include "PassingFileSystem.h"

namespace umsservice::testing {
namespace {

constexpr auto kDispatcherMethod = "-[UMSService doUmsFileService:]";

class Dispatcher : public CoreTest {
 protected:
  static _serviceinfo of(uint32_t command, const MaybeString& filePath = {}, const MaybeString& destPath = {},
                         uint32_t mediaType = kMediaMusic) {
    _serviceinfo record;
    record.serviceID = 7;
    record.command = command;
    record.filePath = filePath;
    record.destPath = destPath;
    record.mediaType = mediaType;
    return record;
  }
  bool run(const _serviceinfo& record) { return dispatcher.doUmsFileService(&record); }
  static std::string result(uint32_t status, uint32_t error, int64_t space = 0) {
    return stringWithFormat("result 7: event 1 status 0x%08x error %u space ", {status, error}) +
           std::to_string(space) + " volume 0";
  }
};

/// Answers sizes of a test's choice.
class SizedFileSystem final : public PassingFileSystem {
 public:
  explicit SizedFileSystem(FileResult<VolumeSpace> answer)
      : PassingFileSystem(posixFileSystem()), answer_(std::move(answer)) {}
  FileResult<VolumeSpace> space(const std::string&) override { return answer_; }

 private:
  const FileResult<VolumeSpace> answer_;
};

TEST_F(Dispatcher, ANullRequestIsRefusedWithoutAWord) {
  EXPECT_FALSE(dispatcher.doUmsFileService(nullptr));
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(Dispatcher, TracesEachCommandUnderItsOwnNameAndLevel) {
  const struct {
    uint32_t command;
    int level;
    const char* name;
  } kRows[] = {
      {201, 6, "FS_COMMAND_UMS_CREAE_FILE"},
      {202, 6, "FS_COMMAND_OV_CREATE_FOLDER"},
      {203, 6, "FS_CMMAND_UMS_READ_FILE"},
      {204, 6, "FS_COMMAND_UMS_WRITE_FLE"},
      {205, 7, "FS_COMMAND_OV_DELETE_FILE"},
      {206, 6, "FS_COMMAND_OV_RENAME_FILE"},
      {207, 6, "FS_COMMAND_OV_GET_LIST"},
      {208, 6, "FS_COMMAND_OV_DISK_SPACE"},
      {209, 6, "FS_COMMAND_OV_FREE_SPACE"},
      {210, 7, "FS_COMMAND_OV_COPY_FILE"},
      {213, 7, "FS_COMMAND_OV_COPY_TO_DEVICE_CONTENTS"},
      {216, 7, "FS_COMMAND_OV_SYNC_CONTENTS"},
  };
  for (const auto& row : kRows) {
    std::string message = std::string("UMSService = <service>, ") + row.name;
    expectLine(surroundings, row.level, kDispatcherMethod, message, [&] { run(of(row.command)); });
    log.clear();
    run(of(row.command));
    EXPECT_EQ(log.messages().front(), kDispatcherMethod + (" " + message)) << "before anything else is said";
  }
}

TEST_F(Dispatcher, OtherCommandsHaveNoTraceLine) {
  for (uint32_t command : {217u, 211u, 212u, 214u, 215u, 200u, 218u, 300u, 0u, 0xffffffffu}) run(of(command));
  EXPECT_EQ(log.lines(), Lines());
}

TEST_F(Dispatcher, CommandsWithoutAnActionAnswerNoAndReportStatusZero) {
  for (uint32_t command : {204u, 207u, 212u, 214u, 215u, 200u, 218u, 300u, 0u}) {
    size_t before = reports.lines().size();
    EXPECT_FALSE(run(of(command))) << command;
    ASSERT_EQ(reports.lines().size(), before + 1) << command;
    EXPECT_EQ(reports.lines().back(), result(0, 0)) << command;
  }
  EXPECT_EQ(operations.names, Lines());
}

TEST_F(Dispatcher, TheSpareCommandReportsNothing) {
  EXPECT_FALSE(run(of(211)));
  EXPECT_EQ(reports.lines(), Lines());
}

TEST_F(Dispatcher, ChoosesTheLongOperationByCommandAndMediaType) {
  const struct {
    uint32_t command;
    const char* media;
    const char* podcast;
  } kRows[] = {
      {205, "doDeleteMediaContents", "doDeletePodcastContents"},
      {210, "doCopyMediaContents", "doCopyPodcastContents"},
      {213, "doCopyMediaContentsForAnyMediaType", "doCopyPodcastContents"},
      {216, "doSyncMediaContents", "doSyncPodcastContents"},
      {217, "doDeviceToDevcieContents", "doDeviceToDevicePodcast"},
  };
  for (const auto& row : kRows) {
    for (uint32_t mediaType : {0u, 1u, 2u, 3u, 4u, 5u}) {
      operations.names.clear();
      EXPECT_TRUE(run(of(row.command, {}, {}, mediaType)));
      EXPECT_EQ(operations.names, (Lines{mediaType == 4 ? row.podcast : row.media})) << row.command;
    }
  }
}

TEST_F(Dispatcher, LongCommandsReportAsTheirRowSays) {
  for (uint32_t command : {205u, 210u, 216u}) {
    for (bool success : {true, false}) {
      operations.answer = [success] { return success; };
      EXPECT_EQ(run(of(command)), success) << command;
    }
  }
  EXPECT_EQ(reports.lines(), Lines());
  for (uint32_t command : {213u, 217u}) {
    operations.answer = [] { return true; };
    EXPECT_TRUE(run(of(command)));
    EXPECT_EQ(reports.lines().back(), result(0, 0));
    operations.answer = [] { return false; };
    EXPECT_FALSE(run(of(command)));
    EXPECT_EQ(reports.lines().back(), result(0x23000001, 0));
  }
  EXPECT_EQ(reports.lines().size(), 4u);
}

TEST_F(Dispatcher, ALongOperationHoldsTheSectionAndAShortOneDoesNot) {
  bool freeDuring = true;
  operations.answer = [&] {
    freeDuring = object->isFree();
    return true;
  };
  for (uint32_t command : {205u, 210u, 213u, 216u, 217u}) {
    freeDuring = true;
    run(of(command));
    EXPECT_FALSE(freeDuring) << command;
    EXPECT_TRUE(object->isFree()) << command;
  }
  std::lock_guard held(context.synchronizedSection());
  std::thread([&] { run(of(kCommandWriteFile)); }).join();
  EXPECT_EQ(reports.lines().back(), result(0, 0));
}

TEST_F(Dispatcher, AnExceptionLeavesTheSectionAndReachesTheWorker) {
  operations.answer = []() -> bool { throw std::runtime_error("gone"); };
  EXPECT_THROW(run(of(kCommandCopyToDevice)), std::runtime_error);
  EXPECT_EQ(reports.lines(), Lines());
  EXPECT_TRUE(object->isFree());
}

TEST_F(Dispatcher, TellsTheHostOfTheEndOfALongRequestThatAnExceptionStopped) {
  operations.answer = []() -> bool { throw std::runtime_error("gone"); };
  for (uint32_t command : {205u, 210u, 213u, 216u, 217u}) dispatcher.serve(of(command));
  const std::string end = "cancel 7: at (null) type 1 file 0 of 0 status 3";
  const std::string failed = result(0x23000001, 0);
  EXPECT_EQ(reports.lines(), (Lines{end, end, end, failed, end, end, failed}));
  EXPECT_TRUE(log.has("Request is stopped by an exception. Reason :gone"));
  EXPECT_TRUE(object->isFree());
}

TEST_F(Dispatcher, ForgetsTheCancelOfARequestThatAnExceptionStopped) {
  operations.answer = [&]() -> bool {
    context.cancelList.add(7);
    context.cancelList.add(8);
    throw std::runtime_error("gone");
  };
  dispatcher.serve(of(kCommandCopyToDevice));
  EXPECT_FALSE(context.cancelList.isCancelServiceId(7));
  EXPECT_TRUE(context.cancelList.isCancelServiceId(8));
}

TEST_F(Dispatcher, TellsOfTheEndBesideAHandlerThatThrowsAgain) {
  operations.answer = []() -> bool { throw std::runtime_error("gone"); };
  reports.onCancel = [](uint32_t) { throw std::runtime_error("gone again"); };
  dispatcher.serve(of(kCommandCopyToDevice));
  EXPECT_EQ(reports.lines().size(), 2u);
  EXPECT_EQ(reports.lines().back(), result(0x23000001, 0));
}

TEST_F(Dispatcher, ReportsWhatItServesAsItAlwaysDoes) {
  operations.answer = [] { return true; };
  dispatcher.serve(of(kCommandCopyToDevice));
  dispatcher.serve(of(kCommandSyncContents));
  dispatcher.serve(of(kCommandGetList));
  EXPECT_EQ(reports.lines(), (Lines{result(0, 0), result(0, 0)}));
}

TEST_F(Dispatcher, LogsTheReasonThatTheHostGivesForItsOwnExceptions) {
  struct NoStandardException {};
  operations.answer = []() -> bool { throw NoStandardException(); };
  surroundings.environment.exceptionReason = []() -> MaybeString { return "the host's words"; };
  ServiceContext hosts(surroundings.environment, "<service>", std::nullopt);
  umsservice::Dispatcher at(hosts, reports, operations);
  at.serve(of(kCommandCopyToDevice));
  EXPECT_TRUE(log.has("Request is stopped by an exception. Reason :the host's words"));
}

TEST_F(Dispatcher, CreatesAnEmptyFile) {
  EXPECT_TRUE(run(of(kCommandCreateFile, sandbox.at("new.txt"))));
  EXPECT_TRUE(exists(sandbox.at("new.txt")));
  EXPECT_EQ(bytesOf(sandbox.at("new.txt")), "");
  EXPECT_EQ(reports.lines(), (Lines{result(0, 0)}));
}

TEST_F(Dispatcher, AFileThatCannotBeCreatedHasNoPlatformCode) {
  for (const MaybeString& path : {MaybeString(sandbox.at("no/such/folder.txt")), MaybeString()}) {
    EXPECT_FALSE(run(of(kCommandCreateFile, path)));
    EXPECT_EQ(reports.lines().back(), result(0x20000001, 0));
  }
  expectLine(surroundings, 3, kDispatcherMethod, "CreateFile Fail!", [&] { run(of(kCommandCreateFile)); });
}

TEST_F(Dispatcher, CreatesAFolderWithThoseAboveIt) {
  EXPECT_TRUE(run(of(kCommandCreateFolder, sandbox.at("a/b/c"))));
  EXPECT_TRUE(run(of(kCommandCreateFolder, sandbox.at("a/b/c"))));
  EXPECT_EQ(treeOf(sandbox.path()), (Lines{"a/", "a/b/", "a/b/c/"}));
  EXPECT_EQ(reports.lines(), (Lines{result(0, 0), result(0, 0)}));
}

TEST_F(Dispatcher, AFolderThatCannotBeCreatedReportsThePlatformsCode) {
  std::string path = sandbox.at("card/new");
  surroundings.files->failAlways(FileCall::CreateFolders, "card/new", ENOSPC);
  EXPECT_FALSE(run(of(kCommandCreateFolder, path)));
  EXPECT_EQ(reports.lines(), (Lines{result(0x20000002, 640)}));
  std::string error = errorText(ENOSPC, FileError::Action::Writing, "$/card/new");
  expectLine(surroundings, 3, kDispatcherMethod, "CreateFolder Fail. error = " + error,
             [&] { run(of(kCommandCreateFolder, path)); });
  EXPECT_FALSE(run(of(kCommandCreateFolder)));
  EXPECT_EQ(reports.lines().back(), result(0x20000002, 512));
}

TEST_F(Dispatcher, ReadingAsAQueuedCommandIsNotServed) {
  EXPECT_FALSE(run(of(kCommandReadFile, sandbox.file("a.txt", "a"))));
  EXPECT_EQ(reports.lines(), (Lines{result(0x11000004, 0)}));
  expectLine(surroundings, 3, kDispatcherMethod, "Read file is failed.", [&] { run(of(kCommandReadFile)); });
}

TEST_F(Dispatcher, RenamesAnItem) {
  std::string from = sandbox.file("old.txt", "text");
  EXPECT_TRUE(run(of(kCommandRenameFile, from, sandbox.at("new.txt"))));
  EXPECT_EQ(treeOf(sandbox.path()), (Lines{"new.txt"}));
  EXPECT_EQ(bytesOf(sandbox.at("new.txt")), "text");
  EXPECT_EQ(reports.lines(), (Lines{result(0, 0)}));
}

TEST_F(Dispatcher, ARenameThatFailsReportsThePlatformsCodeAndChangesNothing) {
  std::string from = sandbox.file("old.txt", "old");
  std::string taken = sandbox.file("taken.txt", "taken");
  EXPECT_FALSE(run(of(kCommandRenameFile, from, taken)));
  EXPECT_EQ(reports.lines().back(), result(0x20000004, 516));
  EXPECT_EQ(bytesOf(taken), "taken");
  EXPECT_EQ(bytesOf(from), "old");
  std::string missing = sandbox.at("missing.txt");
  EXPECT_FALSE(run(of(kCommandRenameFile, missing, sandbox.at("new.txt"))));
  EXPECT_EQ(reports.lines().back(), result(0x20000004, 4));
  std::string error = errorText(ENOENT, FileError::Action::Writing, "$/missing.txt");
  expectLine(surroundings, 3, kDispatcherMethod, "Rename file is Failed. error = " + error,
             [&] { run(of(kCommandRenameFile, missing, sandbox.at("new.txt"))); });
  EXPECT_FALSE(run(of(kCommandRenameFile, from)));
  EXPECT_EQ(reports.lines().back(), result(0x20000004, 512));
}

TEST_F(Dispatcher, SizesArriveAsSigned32BitNumbersWidenedWithTheirSign) {
  constexpr uint64_t kGiga = 1ull << 30;
  const struct {
    uint64_t bytes;
    int64_t reported;
  } kRows[] = {
      {0, 0},
      {kGiga, 1 << 30},
      {2 * kGiga - 1, 0x7fffffff},
      {2 * kGiga, -int64_t{1} * (1ll << 31)},
      {3 * kGiga, -(1 << 30)},
      {4 * kGiga, 0},
      {64 * kGiga + 5, 5},
  };
  for (const auto& row : kRows) {
    surroundings.environment.fileSystem =
        std::make_shared<SizedFileSystem>(VolumeSpace{.total = row.bytes, .free = row.bytes + 1});
    ServiceContext sized(surroundings.environment, "<service>", std::nullopt);
    umsservice::Dispatcher at(sized, reports, operations);
    _serviceinfo total = of(kCommandDiskSpace, "/volume");
    EXPECT_TRUE(at.doUmsFileService(&total));
    EXPECT_EQ(reports.lines().back(), result(0, 0, row.reported));
    _serviceinfo free = of(kCommandFreeSpace, "/volume");
    EXPECT_TRUE(at.doUmsFileService(&free));
    EXPECT_EQ(reports.lines().back(), result(0, 0, static_cast<int32_t>(row.bytes + 1)));
  }
}

TEST_F(Dispatcher, ASizeThatCannotBeReadIsZeroAndStillASuccess) {
  for (uint32_t command : {kCommandDiskSpace, kCommandFreeSpace}) {
    EXPECT_TRUE(run(of(command, sandbox.at("missing"))));
    EXPECT_TRUE(run(of(command)));
  }
  EXPECT_EQ(reports.lines(), Lines(4, result(0, 0)));
}

TEST_F(Dispatcher, LeavesTheRequestAsItWas) {
  _serviceinfo record = of(kCommandCopyToDevice, "file", "dest");
  record.contents = Array{content("/in/a.mp3", "a.mp3")};
  run(record);
  EXPECT_EQ(record.filePath, "file");
  EXPECT_EQ(record.destPath, "dest");
  EXPECT_EQ(record.contents->count(), 1u);
}

}  // namespace
}  // namespace umsservice::testing
