#include <sys/stat.h>
#include <unistd.h>

#include "DeviceToDeviceTest.h"

namespace umsservice::testing {
namespace {

/// FIFOs and device nodes where files are expected: nothing waits for them, reads them or writes to them.
class SpecialFiles : public DeviceToDeviceTest {
 protected:
  SpecialFiles() {
    destination = second;
    sandbox.folder("in");
    delegate.answer = {.returned = true, .isOverwrite = true, .isNotAsk = true};
  }
  std::string fifo(const std::string& relative) {
    const std::string path = sandbox.at(relative);
    sandbox.folder(relative.substr(0, relative.rfind('/')));
    EXPECT_EQ(::mkfifo(path.c_str(), 0666), 0);
    return path;
  }
  void addSpecialAndGood() {
    request.contents->append(content(fifo("in/fifo.mp3"), "fifo.mp3"));
    request.contents->append(content("/dev/zero", "zero.mp3"));
    request.contents->append(content(sandbox.file("in/good.mp3", "good"), "good.mp3"));
  }
  void addGood() { request.contents->append(content(sandbox.file("in/good.mp3", "good"), "good.mp3")); }
  /// How the three items end in a folder.
  static Lines specialFailed(const std::string& number, const std::string& folder) {
    return {"0 failed " + number + " 0 bytes to " + folder + "/fifo.mp3",
            "1 failed " + number + " 0 bytes to " + folder + "/zero.mp3",
            "2 done 0x00000000 4 bytes to " + folder + "/good.mp3"};
  }

  std::shared_ptr<UMSService> second = secondDevice();
};

bool isFifo(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

TEST_F(SpecialFiles, AreNotCopiedToADevice) {
  addSpecialAndGood();
  EXPECT_TRUE(service->doCopyMediaContentsForAnyMediaType(request));
  EXPECT_EQ(ends(), specialFailed("0x21000004", "$/internal/Music"));
  EXPECT_EQ(bytesOf(internal + "/Music/good.mp3"), "good");
}

TEST_F(SpecialFiles, AreNotCopiedToTheHost) {
  addSpecialAndGood();
  request.destPath = sandbox.at("mac");
  EXPECT_TRUE(service->doCopyMediaContents(request));
  EXPECT_EQ(ends(), specialFailed("0x21000004", "$/mac"));
  EXPECT_EQ(bytesOf(sandbox.at("mac/good.mp3")), "good");
}

TEST_F(SpecialFiles, AreNotSynced) {
  addSpecialAndGood();
  request.isStartInternal = 1;
  EXPECT_TRUE(service->doSyncMediaContents(request));
  EXPECT_EQ(ends(), specialFailed("0x21000004", "$/internal/Music"));
  EXPECT_EQ(bytesOf(internal + "/Music/good.mp3"), "good");
}

TEST_F(SpecialFiles, AreNotSentToAnotherDevice) {
  addSpecialAndGood();
  EXPECT_TRUE(run());
  EXPECT_EQ(ends(), specialFailed("0x20000005", "$/there/Music"));
  EXPECT_EQ(bytesOf(there + "/Music/good.mp3"), "good");
}

TEST_F(SpecialFiles, AtTheDestinationOfACopyAreReplacedWhenThePersonSaysSo) {
  const std::string standing = fifo("internal/Music/good.mp3");
  addGood();
  delegate.answer.isOverwrite = false;
  EXPECT_FALSE(service->doCopyMediaContentsForAnyMediaType(request));
  EXPECT_TRUE(isFifo(standing));
  delegate.answer.isOverwrite = true;
  EXPECT_TRUE(service->doCopyMediaContentsForAnyMediaType(request));
  EXPECT_FALSE(isFifo(standing));
  EXPECT_EQ(bytesOf(standing), "good");
}

TEST_F(SpecialFiles, AtTheDestinationOfASyncAreReplacedWhenThePersonSaysSo) {
  const std::string standing = fifo("internal/Music/good.mp3");
  addGood();
  request.isStartInternal = 1;
  delegate.answer.isOverwrite = false;
  EXPECT_FALSE(service->doSyncMediaContents(request));
  EXPECT_TRUE(isFifo(standing));
  delegate.answer.isOverwrite = true;
  EXPECT_TRUE(service->doSyncMediaContents(request));
  EXPECT_FALSE(isFifo(standing));
  EXPECT_EQ(bytesOf(standing), "good");
}

TEST_F(SpecialFiles, OnAnotherDeviceAreNeverWrittenTo) {
  const std::string standing = fifo("there/Music/good.mp3");
  addGood();
  EXPECT_FALSE(run());
  EXPECT_TRUE(isFifo(standing));
  EXPECT_EQ(ends(), Lines{"0 failed 0x20000005 0 bytes to $/there/Music/good.mp3"});
  EXPECT_TRUE(log.has("createFileAtPath Fail!"));
}

}  // namespace
}  // namespace umsservice::testing
