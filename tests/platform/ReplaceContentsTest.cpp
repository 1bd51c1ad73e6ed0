#include <cerrno>
#include <filesystem>

#include "FileContents.h"
#include "TestDevice.h"

namespace umsservice::testing {
namespace {

class ReplaceContents : public ::testing::Test {
 protected:
  Sandbox sandbox;
  FaultyFileSystem files;
  std::string path = sandbox.file("folder/index.xml", "old");

  FileStatus replace(const std::string& bytes) { return replaceContents(files, path, bytes); }
  std::vector<std::string> left() const { return treeOf(sandbox.at("folder")); }
};

TEST_F(ReplaceContents, PutsExactlyTheBytesUnderTheName) {
  EXPECT_TRUE(replace(std::string("new\0bytes", 9)));
  EXPECT_EQ(bytesOf(path), std::string("new\0bytes", 9));
  EXPECT_EQ(left(), (std::vector<std::string>{"index.xml"}));
  EXPECT_TRUE(replaceContents(files, sandbox.at("folder/fresh.xml"), ""));
  EXPECT_EQ(left(), (std::vector<std::string>{"fresh.xml", "index.xml"}));
}

TEST_F(ReplaceContents, LeavesTheOldFileAndNothingBesideItWhicheverStepFails) {
  for (FileCall call :
       {FileCall::CreateFile, FileCall::Write, FileCall::Sync, FileCall::Close, FileCall::Replace}) {
    files.failNth(call, 1, EIO);
    FileStatus status = replace("new");
    EXPECT_FALSE(status);
    EXPECT_EQ(bytesOf(path), "old") << static_cast<int>(call);
    EXPECT_EQ(left(), (std::vector<std::string>{"index.xml"})) << static_cast<int>(call);
  }
}

TEST_F(ReplaceContents, ReplacesALinkAndNotWhatItLeadsTo) {
  std::string other = sandbox.file("other.txt", "precious");
  std::filesystem::remove(path);
  std::filesystem::create_symlink(other, path);
  EXPECT_TRUE(replace("new"));
  EXPECT_EQ(bytesOf(other), "precious");
  EXPECT_FALSE(std::filesystem::is_symlink(path));
  EXPECT_EQ(bytesOf(path), "new");
}

TEST_F(ReplaceContents, NeverReplacesAFolder) {
  path = sandbox.folder("folder/index.d");
  EXPECT_FALSE(replace("new"));
  EXPECT_EQ(left(), (std::vector<std::string>{"index.d/", "index.xml"}));
}

TEST_F(ReplaceContents, KeepsTheOldFileOnAFullVolume) {
  REQUIRE_TMPFS_VOLUMES();
  TmpfsVolume volume(sandbox.folder("volume"), 256 * 1024);
  path = sandbox.file("volume/index.xml", "old");
  volume.fillUpTo(4096);
  FileStatus status = replace(std::string(64 * 1024, 'x'));
  ASSERT_FALSE(status);
  EXPECT_EQ(status.error().systemNumber, ENOSPC);
  EXPECT_EQ(bytesOf(path), "old");
  EXPECT_EQ(treeOf(volume.path()), (std::vector<std::string>{".filler", "index.xml"}));
}

}  // namespace
}  // namespace umsservice::testing
