#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Sandbox.h"
#include "umsservice/FileSystem.h"

namespace umsservice::testing {
namespace {

class FileSystemLooks : public ::testing::Test {
 protected:
  /// Makes a symbolic link and gives its full path.
  std::string link(const std::string& relative, const std::string& target) {
    EXPECT_EQ(symlink(target.c_str(), sandbox.at(relative).c_str()), 0);
    return sandbox.at(relative);
  }
  std::string fifo(const std::string& relative) {
    EXPECT_EQ(mkfifo(sandbox.at(relative).c_str(), 0666), 0);
    return sandbox.at(relative);
  }
  FileType typeOf(const std::string& path) {
    auto found = files.attributes(path);
    return found ? found->type : FileType::Unknown;
  }
  FileType linkTypeOf(const std::string& path) {
    auto found = files.linkAttributes(path);
    return found ? found->type : FileType::Unknown;
  }

  Sandbox sandbox;
  FileSystem& files = *posixFileSystem();
};

TEST_F(FileSystemLooks, TellTheTypeOfEveryItemAndFollowLinksUnlessAskedNotTo) {
  std::string file = sandbox.file("file", "12345");
  std::string folder = sandbox.folder("folder");
  std::string toFile = link("to-file", file);
  std::string toFolder = link("to-folder", folder);
  std::string pipe = fifo("pipe");
  EXPECT_EQ(typeOf(file), FileType::Regular);
  EXPECT_EQ(linkTypeOf(file), FileType::Regular);
  EXPECT_EQ(typeOf(folder), FileType::Directory);
  EXPECT_EQ(typeOf(toFile), FileType::Regular);
  EXPECT_EQ(linkTypeOf(toFile), FileType::SymbolicLink);
  EXPECT_EQ(typeOf(toFolder), FileType::Directory);
  EXPECT_EQ(linkTypeOf(toFolder), FileType::SymbolicLink);
  EXPECT_EQ(typeOf(pipe), FileType::Other);
  EXPECT_EQ(typeOf("/dev/null"), FileType::Other);
}

TEST_F(FileSystemLooks, TakeALinkThatLeadsNowhereForAMissingItem) {
  std::string dangling = link("dangling", sandbox.at("missing"));
  auto found = files.attributes(dangling);
  ASSERT_FALSE(found);
  EXPECT_EQ(found.error().systemNumber, ENOENT);
  EXPECT_EQ(linkTypeOf(dangling), FileType::SymbolicLink);
  EXPECT_FALSE(files.exists(dangling));
  EXPECT_FALSE(files.isFolder(dangling));
}

TEST_F(FileSystemLooks, GiveSizesOfAnyMagnitude) {
  std::string file = sandbox.file("file", "");
  for (uint64_t size :
       {uint64_t{0}, uint64_t{1}, uint64_t{0xffffffff}, uint64_t{0x100000000}, uint64_t{5} << 30}) {
    ASSERT_EQ(truncate(file.c_str(), static_cast<off_t>(size)), 0);
    EXPECT_EQ(files.attributes(file)->size, size);
  }
}

TEST_F(FileSystemLooks, GiveTheTimeOfTheLastChangeInSeconds) {
  std::string file = sandbox.file("file", "x");
  for (int64_t seconds : {int64_t{1234567890}, int64_t{0}, int64_t{2208988800}}) {
    const timespec times[2] = {{0, UTIME_OMIT}, {seconds, 999999999}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    EXPECT_EQ(files.attributes(file)->modified, seconds);
  }
}

TEST_F(FileSystemLooks, ShowThatTwoNamesAreOneItem) {
  std::string file = sandbox.file("file", "x");
  std::string other = sandbox.file("other", "x");
  ASSERT_EQ(::link(file.c_str(), sandbox.at("same").c_str()), 0);
  auto first = files.attributes(file);
  auto same = files.attributes(sandbox.at("same"));
  auto second = files.attributes(other);
  EXPECT_EQ(first->inode, same->inode);
  EXPECT_NE(first->inode, second->inode);
  EXPECT_EQ(first->device, second->device);
}

TEST_F(FileSystemLooks, ShowThatAVolumeIsAnotherFileSystem) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  EXPECT_NE(files.attributes(volume.path())->device, files.attributes(sandbox.path())->device);
}

TEST_F(FileSystemLooks, SayWhyAnItemCannotBeSeen) {
  std::string file = sandbox.file("file", "x");
  link("loop", sandbox.at("loop"));
  const std::pair<std::string, int> rows[] = {
      {sandbox.at("missing"), ENOENT},
      {"", ENOENT},
      {file + "/below", ENOTDIR},
      {file + "/", ENOTDIR},
      {sandbox.at("loop"), ELOOP},
      {sandbox.at(std::string(256, 'x')), ENAMETOOLONG},
      {sandbox.at(std::string(5000, 'x')), ENAMETOOLONG},
      {file + std::string("\0", 1), EINVAL},
      {file + std::string("\0rest", 5), EINVAL},
  };
  for (const auto& [path, number] : rows) {
    auto found = files.attributes(path);
    ASSERT_FALSE(found) << path;
    EXPECT_EQ(found.error().systemNumber, number) << path;
    EXPECT_EQ(found.error().action, FileError::Action::Reading);
    EXPECT_EQ(found.error().path, path);
    EXPECT_FALSE(files.exists(path));
  }
}

TEST_F(FileSystemLooks, SeeNothingBelowAFolderThatMayNotBeSearched) {
  std::string file = sandbox.file("closed/file", "x");
  WithoutRootPowers powerless;
  ASSERT_EQ(chmod(sandbox.at("closed").c_str(), 0), 0);
  auto found = files.attributes(file);
  auto listed = files.list(sandbox.at("closed"));
  ASSERT_EQ(chmod(sandbox.at("closed").c_str(), 0700), 0);
  ASSERT_FALSE(found);
  EXPECT_EQ(found.error().code(), 257u);
  ASSERT_FALSE(listed);
  EXPECT_EQ(listed.error().code(), 257u);
}

TEST_F(FileSystemLooks, ListEveryEntryOnceWithItsTypeAndWithoutTheDotFolders) {
  sandbox.file("folder/file", "x");
  sandbox.folder("folder/sub");
  sandbox.file("folder/sub/deep", "x");
  sandbox.file("folder/.hidden", "x");
  link("folder/link", sandbox.at("folder/sub"));
  link("folder/dangling", sandbox.at("missing"));
  fifo("folder/pipe");
  auto listed = files.list(sandbox.at("folder"));
  ASSERT_TRUE(listed);
  std::map<std::string, FileType> types;
  for (const DirectoryEntry& entry : *listed) {
    EXPECT_TRUE(types.emplace(entry.name, entry.type).second) << entry.name;
  }
  EXPECT_EQ(types, (std::map<std::string, FileType>{{".hidden", FileType::Regular},
                                                    {"dangling", FileType::SymbolicLink},
                                                    {"file", FileType::Regular},
                                                    {"link", FileType::SymbolicLink},
                                                    {"pipe", FileType::Other},
                                                    {"sub", FileType::Directory}}));
}

TEST_F(FileSystemLooks, ListFoldersOfAnySize) {
  auto empty = files.list(sandbox.folder("empty"));
  ASSERT_TRUE(empty);
  EXPECT_TRUE(empty->empty());
  std::vector<std::string> names;
  sandbox.folder("many");
  for (int i = 0; i < 1000; ++i) {
    names.push_back("entry number " + std::to_string(10000 + i));
    ASSERT_GE(close(creat(sandbox.at("many/" + names.back()).c_str(), 0600)), 0);
  }
  auto many = files.list(sandbox.at("many"));
  ASSERT_TRUE(many);
  std::vector<std::string> found;
  for (const DirectoryEntry& entry : *many) found.push_back(entry.name);
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, names);
}

TEST_F(FileSystemLooks, ListTheFolderThatALinkLeadsTo) {
  sandbox.file("folder/file", "x");
  auto listed = files.list(link("link", sandbox.at("folder")));
  ASSERT_TRUE(listed);
  ASSERT_EQ(listed->size(), 1u);
  EXPECT_EQ(listed->front().name, "file");
}

TEST_F(FileSystemLooks, GiveTheAttributesOfTheEntriesOfAnOpenFolder) {
  sandbox.file("folder/file", "12345");
  sandbox.folder("folder/sub");
  link("folder/link", "file");
  link("folder/dangling", "missing");
  fifo("folder/pipe");
  auto folder = files.openFolder(sandbox.at("folder"));
  ASSERT_TRUE(folder);
  auto listed = (*folder)->list();
  ASSERT_TRUE(listed);
  EXPECT_EQ(listed->size(), 5u);
  EXPECT_EQ((*folder)->attributes("file")->size, 5u);
  EXPECT_EQ((*folder)->attributes("link")->inode, files.attributes(sandbox.at("folder/file"))->inode);
  EXPECT_EQ((*folder)->attributes("sub")->type, FileType::Directory);
  EXPECT_EQ((*folder)->attributes("pipe")->type, FileType::Other);
  const FileError missing = (*folder)->attributes("dangling").error();
  EXPECT_EQ(missing.systemNumber, ENOENT);
  EXPECT_EQ(missing.path, sandbox.at("folder/dangling"));
  EXPECT_EQ((*folder)->attributes(std::string("file\0", 5)).error().systemNumber, EINVAL);
}

TEST_F(FileSystemLooks, StayInAFolderThatIsRenamedWhileItIsOpen) {
  sandbox.file("folder/file", "12345");
  auto folder = files.openFolder(sandbox.at("folder"));
  ASSERT_TRUE(folder);
  ASSERT_TRUE(files.move(sandbox.at("folder"), sandbox.at("renamed")));
  EXPECT_EQ((*folder)->list()->front().name, "file");
  EXPECT_EQ((*folder)->attributes("file")->size, 5u);
}

TEST_F(FileSystemLooks, OpenNothingButFolders) {
  EXPECT_EQ(files.openFolder(sandbox.file("file", "x")).error().systemNumber, ENOTDIR);
  EXPECT_EQ(files.openFolder(sandbox.at("missing")).error().systemNumber, ENOENT);
  EXPECT_EQ(files.openFolder(sandbox.path() + std::string("\0", 1)).error().systemNumber, EINVAL);
}

TEST_F(FileSystemLooks, ListNothingButFoldersAndNeverWaitForAPipe) {
  const std::pair<std::string, int> rows[] = {
      {sandbox.file("file", "x"), ENOTDIR},
      {fifo("pipe"), ENOTDIR},
      {"/dev/null", ENOTDIR},
      {sandbox.at("missing"), ENOENT},
      {"", ENOENT},
      {sandbox.path() + std::string("\0", 1), EINVAL},
  };
  for (const auto& [path, number] : rows) {
    auto listed = files.list(path);
    ASSERT_FALSE(listed) << path;
    EXPECT_EQ(listed.error().systemNumber, number) << path;
  }
}

TEST_F(FileSystemLooks, GiveTheSpaceOfTheVolumeThatHoldsAPath) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  sandbox.file("card/file", std::string(100 * 1024, 'x'));
  volume.fillUpTo(256 * 1024);
  for (const std::string& path : {volume.path(), sandbox.at("card/file"), volume.path() + "/"}) {
    auto space = files.space(path);
    ASSERT_TRUE(space) << path;
    EXPECT_EQ(space->total, 1u << 20);
    EXPECT_EQ(space->free, 256u * 1024);
  }
  volume.fillUpTo(0);
  volume.vanish();
  EXPECT_NE(files.space(sandbox.at("card"))->total, 1u << 20);
}

TEST_F(FileSystemLooks, ShowWhatAFileTakesUpOnItsVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("card"), 1 << 20);
  const uint64_t free = volume.freeBytes();
  const std::string small = sandbox.file("card/small", std::string(100, 'x'));
  EXPECT_EQ(files.attributes(small)->allocated, free - volume.freeBytes());
  EXPECT_GT(files.attributes(small)->allocated, 100u);
  const std::string holes = sandbox.file("card/holes", "");
  ASSERT_EQ(::truncate(holes.c_str(), 1 << 19), 0);
  EXPECT_EQ(files.attributes(holes)->allocated, 0u);
}

TEST_F(FileSystemLooks, CountAsFreeOnlyWhatAnUnprivilegedUserMayStillWrite) {
  struct statvfs volume {};
  ASSERT_EQ(statvfs(sandbox.path().c_str(), &volume), 0);
  if (volume.f_bavail == volume.f_bfree) GTEST_SKIP() << "this file system keeps nothing back for root";
  auto space = files.space(sandbox.path());
  ASSERT_TRUE(space);
  auto distance = [&](uint64_t blocks) {
    auto difference = static_cast<int64_t>(blocks * volume.f_frsize - space->free);
    return std::abs(difference);
  };
  // Other programs write meanwhile; what is kept back is far more than they do.
  EXPECT_LT(distance(volume.f_bavail), distance(volume.f_bfree));
}

TEST_F(FileSystemLooks, HaveNoSpaceToTellForAPathThatDoesNotExist) {
  auto missing = files.space(sandbox.at("missing"));
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().code(), 260u);
  auto impossible = files.space(sandbox.path() + std::string("\0", 1));
  ASSERT_FALSE(impossible);
  EXPECT_EQ(impossible.error().systemNumber, EINVAL);
}

}  // namespace
}  // namespace umsservice::testing
