#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "Sandbox.h"
#include "umsservice/FileSystem.h"

namespace umsservice::testing {
namespace {

using Opened = FileResult<std::unique_ptr<FileHandle>>;

class FileHandles : public ::testing::Test {
 protected:
  std::string link(const std::string& relative, const std::string& target) {
    EXPECT_EQ(symlink(target.c_str(), sandbox.at(relative).c_str()), 0);
    return sandbox.at(relative);
  }
  std::string fifo(const std::string& relative) {
    EXPECT_EQ(mkfifo(sandbox.at(relative).c_str(), 0666), 0);
    return sandbox.at(relative);
  }
  std::unique_ptr<FileHandle> created(const std::string& path) {
    Opened opened = files.createFile(path);
    EXPECT_TRUE(opened) << path;
    return opened ? std::move(*opened) : nullptr;
  }
  std::unique_ptr<FileHandle> opened(const std::string& path) {
    Opened opened = files.openForReading(path);
    EXPECT_TRUE(opened) << path;
    return opened ? std::move(*opened) : nullptr;
  }
  static void expectFailure(const Opened& opened, int number, FileError::Action action) {
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().systemNumber, number) << opened.error().description();
    EXPECT_EQ(opened.error().action, action) << opened.error().path;
  }

  Sandbox sandbox;
  FileSystem& files = *posixFileSystem();
};

TEST_F(FileHandles, CopyFromEachOtherAtTheirPositions) {
  sandbox.file("source", "0123456789");
  auto source = opened(sandbox.at("source"));
  auto copy = created(sandbox.at("copy"));
  char digit;
  EXPECT_EQ(*source->read(&digit, 1), 1u);
  EXPECT_EQ(copy->write("x", 1).written, 1u);
  EXPECT_EQ(copy->copyFrom(*source, 4), 4u);
  EXPECT_EQ(copy->copyFrom(*source, 100), 5u);
  EXPECT_EQ(copy->copyFrom(*source, 100), 0u) << "at the end";
  EXPECT_FALSE(copy->write("y", 1).error);
  EXPECT_EQ(bytesOf(sandbox.at("copy")), "x123456789y");
  EXPECT_EQ(source->copyFrom(*copy, 1), 0u) << "into a file that is only read";
}

TEST_F(FileHandles, SetRoomAsideWithoutGettingLonger) {
  constexpr uint64_t kRoom = 1 << 20;
  auto file = created(sandbox.at("file"));
  EXPECT_EQ(file->write("abc", 3).written, 3u);
  const bool isSetAside = file->reserve(kRoom);
  EXPECT_EQ(bytesOf(sandbox.at("file")), "abc");
  EXPECT_EQ(bytesOnDisk(sandbox.at("file")) >= kRoom, isSetAside);
  EXPECT_EQ(file->write("de", 2).written, 2u);
  EXPECT_TRUE(file->truncate(5));
  EXPECT_LT(bytesOnDisk(sandbox.at("file")), kRoom);
  EXPECT_EQ(bytesOf(sandbox.at("file")), "abcde");
  EXPECT_FALSE(opened(sandbox.at("file"))->reserve(10)) << "of a file that is only read";
}

TEST_F(FileHandles, AreMadeNewOnlyWhereNothingIs) {
  EXPECT_TRUE(files.createNewFile(sandbox.at("new")));
  sandbox.file("old", "old");
  sandbox.folder("folder");
  link("dangling", "nowhere");
  for (const char* name : {"old", "folder", "dangling", "new"})
    expectFailure(files.createNewFile(sandbox.at(name)), EEXIST, FileError::Action::Writing);
  expectFailure(files.createNewFile(sandbox.at("missing/file")), ENOENT, FileError::Action::Writing);
  EXPECT_EQ(bytesOf(sandbox.at("old")), "old");
  EXPECT_FALSE(exists(sandbox.at("nowhere")));
}

TEST_F(FileHandles, WriteANewFileThatIsReadBackFromItsFirstByte) {
  auto writer = created(sandbox.at("file"));
  EXPECT_EQ(writer->write("hello ", 6).written, 6u);
  EXPECT_FALSE(writer->write("world", 5).error);
  EXPECT_TRUE(writer->sync());
  EXPECT_TRUE(writer->close());
  auto reader = opened(sandbox.at("file"));
  char buffer[64];
  EXPECT_EQ(*reader->read(buffer, 5), 5u);
  EXPECT_EQ(std::string(buffer, 5), "hello");
  EXPECT_EQ(*reader->read(buffer, sizeof buffer), 6u);
  EXPECT_EQ(std::string(buffer, 6), " world");
  EXPECT_EQ(*reader->read(buffer, sizeof buffer), 0u);
}

TEST_F(FileHandles, EmptyAFileThatIsMadeAgain) {
  std::string path = sandbox.file("file", "old content");
  auto writer = created(path);
  EXPECT_EQ(bytesOf(path), "");
  EXPECT_FALSE(writer->write("new", 3).error);
  EXPECT_EQ(bytesOf(path), "new");
}

TEST_F(FileHandles, CloseOnlyOnceAndAnswerWithAnErrorAfterwards) {
  auto handle = created(sandbox.at("file"));
  char byte = 'x';
  EXPECT_TRUE(handle->close());
  EXPECT_TRUE(handle->close());
  auto outcome = handle->write(&byte, 1);
  EXPECT_EQ(outcome.written, 0u);
  ASSERT_TRUE(outcome.error);
  EXPECT_EQ(outcome.error->systemNumber, EBADF);
  EXPECT_FALSE(handle->read(&byte, 1));
  EXPECT_FALSE(handle->truncate(0));
  EXPECT_FALSE(handle->sync());
}

TEST_F(FileHandles, NeitherWriteToAFileOpenedForReadingNorReadFromANewOne) {
  std::string path = sandbox.file("file", "kept");
  char byte = 'x';
  auto outcome = opened(path)->write(&byte, 1);
  ASSERT_TRUE(outcome.error);
  EXPECT_EQ(outcome.written, 0u);
  EXPECT_EQ(outcome.error->action, FileError::Action::Writing);
  EXPECT_FALSE(opened(path)->truncate(0));
  EXPECT_EQ(bytesOf(path), "kept");
  auto length = created(sandbox.at("new"))->read(&byte, 1);
  ASSERT_FALSE(length);
  EXPECT_EQ(length.error().action, FileError::Action::Reading);
}

TEST_F(FileHandles, NeverWriteThroughALink) {
  std::string target = sandbox.file("target", "kept");
  link("link", target);
  link("dangling", sandbox.at("missing"));
  for (const char* name : {"link", "dangling"})
    expectFailure(files.createFile(sandbox.at(name)), ELOOP, FileError::Action::Writing);
  EXPECT_EQ(bytesOf(target), "kept");
  EXPECT_FALSE(exists(sandbox.at("missing")));
}

TEST_F(FileHandles, ReadTheFileThatALinkLeadsTo) {
  auto reader = opened(link("link", sandbox.file("target", "x")));
  char buffer[8];
  EXPECT_EQ(*reader->read(buffer, sizeof buffer), 1u);
}

TEST_F(FileHandles, AreGivenForRegularFilesOnlyAndNeverWaitForAPipeOrADevice) {
  std::string pipe = fifo("pipe");
  std::string folder = sandbox.folder("folder");
  for (const std::string& path : {pipe, std::string("/dev/null"), std::string("/dev/zero")}) {
    expectFailure(files.createFile(path), EOPNOTSUPP, FileError::Action::Writing);
    expectFailure(files.openForReading(path), EOPNOTSUPP, FileError::Action::Reading);
  }
  expectFailure(files.createFile(folder), EISDIR, FileError::Action::Writing);
  expectFailure(files.openForReading(folder), EISDIR, FileError::Action::Reading);
  expectFailure(files.openForReading(link("to-pipe", pipe)), EOPNOTSUPP, FileError::Action::Reading);
  expectFailure(files.createFile(sandbox.at("new/")), EISDIR, FileError::Action::Writing);
}

TEST_F(FileHandles, AreNotGivenForSockets) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::string path = sandbox.at("socket");
  ASSERT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.c_str(), path.size());
  int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  expectFailure(files.createFile(path), EOPNOTSUPP, FileError::Action::Writing);
  expectFailure(files.openForReading(path), EOPNOTSUPP, FileError::Action::Reading);
  close(server);
}

TEST_F(FileHandles, LeaveAPipeAloneThatSomebodyReads) {
  std::string path = fifo("pipe");
  int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(reader, 0);
  expectFailure(files.createFile(path), EOPNOTSUPP, FileError::Action::Writing);
  char byte;
  EXPECT_EQ(read(reader, &byte, 1), 0);
  close(reader);
}

TEST_F(FileHandles, AreNotGivenForPathsThatCannotBe) {
  std::string file = sandbox.file("file", "kept");
  const std::pair<std::string, int> rows[] = {
      {"", ENOENT},
      {sandbox.at("missing/file"), ENOENT},
      {file + "/below", ENOTDIR},
      {sandbox.at(std::string(256, 'x')), ENAMETOOLONG},
      {sandbox.at(std::string("nul\0name", 8)), EINVAL},
      {file + std::string("\0", 1), EINVAL},
  };
  for (const auto& [path, number] : rows) {
    expectFailure(files.createFile(path), number, FileError::Action::Writing);
    expectFailure(files.openForReading(path), number, FileError::Action::Reading);
  }
  expectFailure(files.openForReading(sandbox.at("missing")), ENOENT, FileError::Action::Reading);
  EXPECT_EQ(treeOf(sandbox.path()), std::vector<std::string>{"file"});
  EXPECT_EQ(bytesOf(file), "kept");
}

TEST_F(FileHandles, AreNotGivenWithoutPermission) {
  std::string path = sandbox.file("file", "kept");
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  WithoutRootPowers powerless;
  Opened reading = files.openForReading(path);
  Opened writing = files.createFile(path);
  ASSERT_FALSE(reading);
  EXPECT_EQ(reading.error().code(), 257u);
  ASSERT_FALSE(writing);
  EXPECT_EQ(writing.error().code(), 513u);
}

TEST_F(FileHandles, SayHowMuchWasWrittenWhenTheVolumeFills) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  auto handle = created(sandbox.at("card/file"));
  volume.fillUpTo(5 * 4096);
  std::string bytes(100 * 1024, 'x');
  auto outcome = handle->write(bytes.data(), bytes.size());
  ASSERT_TRUE(outcome.error);
  EXPECT_EQ(outcome.error->systemNumber, ENOSPC);
  EXPECT_EQ(outcome.error->code(), 640u);
  EXPECT_EQ(outcome.error->path, sandbox.at("card/file"));
  EXPECT_EQ(outcome.written, 5u * 4096);
  EXPECT_EQ(files.attributes(sandbox.at("card/file"))->size, outcome.written);
  EXPECT_EQ(handle->write(bytes.data(), 1).written, 0u);
}

TEST_F(FileHandles, CutAFileAndGoOnWritingAtItsNewEnd) {
  std::string path = sandbox.at("file");
  auto handle = created(path);
  EXPECT_FALSE(handle->write("0123456789", 10).error);
  EXPECT_TRUE(handle->truncate(4));
  EXPECT_EQ(bytesOf(path), "0123");
  EXPECT_FALSE(handle->write("ab", 2).error);
  EXPECT_EQ(bytesOf(path), "0123ab");
  EXPECT_TRUE(handle->truncate(0));
  EXPECT_FALSE(handle->write("z", 1).error);
  EXPECT_EQ(bytesOf(path), "z");
}

/// Sets a limit on the size of files for a block.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  }
  ~FileSizeLimit() { EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before_), 0); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};

volatile sig_atomic_t sizeSignals = 0;

TEST_F(FileHandles, StopAtTheProcesssLimitOnFileSizesWithoutASignal) {
  sizeSignals = 0;
  auto before = std::signal(SIGXFSZ, [](int) { sizeSignals = sizeSignals + 1; });
  std::string path = sandbox.at("file");
  std::string bytes(6000, 'x');
  WriteOutcome first, second, third;
  FileStatus grown = Done{}, cut = Done{};
  {
    FileSizeLimit limit(10000);
    auto handle = created(path);
    first = handle->write(bytes.data(), bytes.size());
    second = handle->write(bytes.data(), bytes.size());
    third = handle->write(bytes.data(), 1);
    grown = handle->truncate(10001);
    cut = handle->truncate(100);
  }
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(sizeSignals, 0);
  EXPECT_FALSE(first.error);
  ASSERT_TRUE(second.error);
  EXPECT_EQ(second.written, 4000u);
  EXPECT_EQ(second.error->systemNumber, EFBIG);
  ASSERT_TRUE(third.error);
  EXPECT_EQ(third.written, 0u);
  ASSERT_FALSE(grown);
  EXPECT_EQ(grown.error().systemNumber, EFBIG);
  EXPECT_TRUE(cut);
  EXPECT_EQ(bytesOf(path), std::string(100, 'x'));
}

/// Whether some descriptor of this process is open on a file, and whether all of those close on exec.
struct Descriptors {
  int count = 0;
  bool allCloseOnExec = true;
};

Descriptors descriptorsOn(FileSystem& files, const std::string& path) {
  Descriptors found;
  auto wanted = files.attributes(path);
  auto listed = files.list("/dev/fd");
  EXPECT_TRUE(listed);
  for (const DirectoryEntry& entry : *listed) {
    int descriptor = std::atoi(entry.name.c_str());
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || status.st_ino != wanted->inode || status.st_dev != wanted->device)
      continue;
    ++found.count;
    if ((fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0) found.allCloseOnExec = false;
  }
  return found;
}

TEST_F(FileHandles, AreNotInheritedByProgramsThatTheHostStarts) {
  std::string path = sandbox.at("file");
  auto writer = created(path);
  auto reader = opened(path);
  Descriptors open = descriptorsOn(files, path);
  EXPECT_EQ(open.count, 2);
  EXPECT_TRUE(open.allCloseOnExec);
}

TEST_F(FileHandles, GiveTheirDescriptorBackHoweverTheyEnd) {
  std::string path = sandbox.file("file", "x");
  created(path).reset();
  (void)opened(path)->close();
  EXPECT_EQ(descriptorsOn(files, path).count, 0);
  std::string folder = sandbox.folder("folder");
  EXPECT_FALSE(files.openForReading(folder));
  EXPECT_TRUE(files.list(folder));
  EXPECT_TRUE(files.syncVolume(folder));
  EXPECT_EQ(descriptorsOn(files, folder).count, 0);
}

}  // namespace
}  // namespace umsservice::testing
