/// What a host tells a service about its device, and the states that the two of them share.
#include "HostTest.h"

namespace umsplugin::testing {
namespace {

class Identity : public HostTest {};

TEST_F(Identity, IsTheLocationAndTheModelName) {
  UMSService* service = makeService(@"location-1");
  EXPECT_EQ(text([service locationID]), "location-1");
  EXPECT_EQ(text([service modelName]), "Pocket One");
  [service setDeviceInformation:nil];
  [service setDeviceInformation:[NSDictionary dictionary]];
  EXPECT_EQ(text([service modelName]), "Pocket One");
  [service setLocationID:nil];
  EXPECT_EQ([service locationID], nil);
}

TEST_F(Identity, IsEmptyAtFirst) {
  UMSService* service = [[[[loadedBundle() principalClass] alloc] init] autorelease];
  EXPECT_EQ([service locationID], nil);
  EXPECT_EQ([service modelName], nil);
  EXPECT_EQ([service getReleaseState], 0);
  EXPECT_EQ([service fileTransferStatus], 0);
}

TEST_F(Identity, IsCopiedFromMutableTexts) {
  NSMutableString* location = [NSMutableString stringWithString:@"location-1"];
  UMSService* service = makeService(location);
  [location setString:@"changed"];
  EXPECT_EQ(text([service locationID]), "location-1");
}

TEST_F(Identity, AnswersToKeyValueCoding) {
  UMSService* service = makeService(@"location-1");
  [service setValue:[NSNumber numberWithInt:3] forKey:@"fileTransferStatus"];
  EXPECT_EQ([service fileTransferStatus], 3);
  EXPECT_EQ([[service valueForKey:@"releaseState"] intValue], 0);
}

TEST_F(Identity, DisconnectsByItsOwnLocationInAnyLetterCase) {
  UMSService* service = makeService(@"Location-1");
  [service disconnectDevice:@"location-2"];
  EXPECT_EQ([service getReleaseState], 0);
  [service disconnectDevice:@"LOCATION-1"];
  EXPECT_EQ([service getReleaseState], 1);
}

TEST_F(Identity, RefusesRequestsAfterTheThreadWasToldToExit) {
  UMSService* service = makeDevice();
  NSArray* contents = [NSArray arrayWithObject:content(sandbox.file("a.mp3", "a"), "a.mp3")];
  EXPECT_TRUE([service exitServiceThread]);
  EXPECT_EQ([service getReleaseState], 1);
  EXPECT_FALSE([service syncContents:1 contents:contents mediaType:1 isStartInternal:YES]);
  EXPECT_FALSE([service copyContentsMacToDevice:1 contents:contents mediaType:1 storageIndex:0]);
  EXPECT_FALSE([service deleteContents:1 contents:contents mediaType:1 diskIndex:0]);
  EXPECT_EQ([service checkMediaType:@"a.mp3"], 0);
  EXPECT_EQ([[ear named:nil] count], 0u);
}

}  // namespace
}  // namespace umsplugin::testing
