/// The diagnostic log: through NSLog, as "DEBUG.plist" of the application says. A program of its own, as its
/// main bundle is changed; its tests run one after another.
#include <filesystem>
#include <regex>

#include "HostTest.h"
#include "StderrCapture.h"

/// A list that says how long it is, and no more.
@interface RaisingList : NSArray
@end
@implementation RaisingList
- (NSUInteger)count {
  return 1;
}
- (id)objectAtIndex:(NSUInteger)index {
  [NSException raise:@"ListException" format:@"no element %u", static_cast<unsigned int>(index)];
  return nil;
}
@end

namespace umsplugin::testing {
namespace {

class DiagnosticLog : public HostTest {
 protected:
  DiagnosticLog() { std::filesystem::create_directories(text([[NSBundle mainBundle] resourcePath])); }
  ~DiagnosticLog() override { std::filesystem::remove(list); }

  void setLevel(id level) {
    NSDictionary* contents = [NSDictionary dictionaryWithObject:level forKey:@"DEBUG_LEVEL"];
    ASSERT_TRUE([contents writeToFile:string(list) atomically:YES]);
  }
  /// What a request without a volume, and one without contents, have to say (levels 1 and 7).
  size_t linesOfTwoRefusals() {
    StderrCapture capture;
    NSArray* contents = [NSArray arrayWithObject:content("/a.mp3", "a.mp3")];
    [service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:9];
    [service copyContentsMacToDevice:1 contents:nil mediaType:1 storageIndex:0];
    return capture.linesWith("diskInfo is nil").size() + capture.linesWith("Contents Count is 0").size();
  }

  const std::string list = text([[NSBundle mainBundle] resourcePath]) + "/DEBUG.plist";
  UMSService* const service = makeService(@"location-1");
};

TEST_F(DiagnosticLog, IsSilentWithoutAList) {
  std::filesystem::remove(list);
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
}

TEST_F(DiagnosticLog, FollowsTheListFromOneStatementToTheNext) {
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
  setLevel([NSNumber numberWithInt:1]);
  EXPECT_EQ(linesOfTwoRefusals(), 1u);
  setLevel([NSNumber numberWithInt:7]);
  EXPECT_EQ(linesOfTwoRefusals(), 2u);
  setLevel(@"6");
  EXPECT_EQ(linesOfTwoRefusals(), 1u);
  setLevel([NSNumber numberWithInt:-1]);
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
  setLevel([NSArray array]);
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
  ASSERT_TRUE([@"neither list nor text" writeToFile:string(list)
                                         atomically:YES
                                           encoding:NSUTF8StringEncoding
                                              error:NULL]);
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
  std::filesystem::remove(list);
  EXPECT_EQ(linesOfTwoRefusals(), 0u);
}

TEST_F(DiagnosticLog, NeverFailsForAListThatThePlatformChokesOn) {
  const std::string lists[] = {
      "bplist00" + std::string(36, '\xFF'),
      "<?xml version=\"1.0\"?><plist><dict><key>DEBUG_LEVEL</key><date>no date</date></dict></plist>",
      "<?xml version=\"1.0\"?><plist><dict><key>DEBUG_LEVEL</key><data>AA==</data></dict></plist>",
      "bplist00",
      "<?xml version=\"1.0\"?><plist><dict><key>DEBUG_LEVEL</key><array/></dict></plist>",
      "<?xml version=\"1.0\"?><plist><array/></plist>",
  };
  UMSService* device = makeDevice();
  NSArray* contents = [NSArray arrayWithObject:content(sandbox.file("mac/a.mp3", "a"), "a.mp3")];
  for (const std::string& bytes : lists) {
    NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    ASSERT_TRUE([data writeToFile:string(list) atomically:YES]);
    EXPECT_EQ(linesOfTwoRefusals(), 0u) << bytes;
    [ear forget];
    ASSERT_TRUE([device copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
    ASSERT_TRUE([ear waitFor:kUmsResult count:1]) << "a worker that logs all the while: " << bytes;
  }
}

TEST_F(DiagnosticLog, GivesTheReasonOfAnExceptionOfTheHost) {
  setLevel([NSNumber numberWithInt:1]);
  RaisingList* raising = [[[RaisingList alloc] init] autorelease];
  UMSService* device = makeDevice();
  StderrCapture capture;
  ASSERT_TRUE([device copyContentsMacToDevice:1 contents:raising mediaType:1 storageIndex:0]);
  ASSERT_TRUE([ear waitFor:kUmsResult count:1]);
  EXPECT_EQ(
      capture.linesWith("Request is stopped by an exception. Reason :no element 0 (ListException)").size(),
      1u)
      << capture.text();
}

TEST_F(DiagnosticLog, ShowsTheServiceAsTheHostKnowsIt) {
  setLevel([NSNumber numberWithInt:6]);
  StderrCapture capture;
  _serviceinfo record = {};
  record.command = 207;
  [service doUmsFileService:&record];
  const std::string shown = "UMSService = " + text([service description]) + ", FS_COMMAND_OV_GET_LIST";
  EXPECT_EQ(capture.linesWith(shown).size(), 1u) << capture.text();
}

TEST_F(DiagnosticLog, WritesFileMethodLineAndMessage) {
  setLevel([NSNumber numberWithInt:1]);
  StderrCapture capture;
  NSArray* contents = [NSArray arrayWithObject:content("/a.mp3", "a.mp3")];
  [service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:9];
  auto lines = capture.linesWith("diskInfo is nil");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(std::regex_search(
      lines.front(),
      std::regex(
          R"(\[\w+\.cpp:-\[UMSService copyContentsMacToDevice:contents:mediaType:storageIndex:\]-\(\d+\)\] )"
          "diskInfo is nil$")))
      << lines.front();
}

TEST_F(DiagnosticLog, ShowsTextsAsTheyAre) {
  setLevel([NSNumber numberWithInt:6]);
  StderrCapture capture;
  [service convertAvailableFileName:@"100%@ ü:x"];
  EXPECT_EQ(capture.linesWith("Convert 100%@ ü:x to 100%@ ü_x").size(), 1u) << capture.text();
}

TEST_F(DiagnosticLog, TracesTheLifeOfAServiceAndItsWorker) {
  setLevel([NSNumber numberWithInt:6]);
  StderrCapture capture;
  UMSService* other = [[[loadedBundle() principalClass] alloc] init];
  [other release];
  EXPECT_EQ(capture.linesWith("-[UMSService init]").size(), 2u);
  EXPECT_EQ(capture.linesWith("-[UMSService dealloc]").size(), 2u);
  EXPECT_EQ(capture.linesWith("umsFileServiceQueueThread Exit!").size(), 1u) << capture.text();
}

}  // namespace
}  // namespace umsplugin::testing
