#include "Amounts.h"
#include "EscapedName.h"
#include "HostTest.h"
#include "Paths.h"
#include "ProgressLine.h"
#include "TransferRate.h"
#include "TransferTally.h"

namespace umsservice::testing {
namespace {

TEST(EscapedName, LeavesOrdinaryTextAlone) {
  for (const char* name : {"song.mp3", "Abendtöne am Fluß 音 🎵.mp3", "a b'c\"d.mp3", ""})
    EXPECT_EQ(umsctl::escaped(name), name);
}

TEST(EscapedName, ShowsWhatDrivesATerminal) {
  EXPECT_EQ(umsctl::escaped("\x1b[2J"), "\\x1b[2J");
  EXPECT_EQ(umsctl::escaped("a\nb\rc\td"), "a\\nb\\rc\\td");
  EXPECT_EQ(umsctl::escaped(std::string("nul\0end", 7)), "nul\\x00end");
  EXPECT_EQ(umsctl::escaped("\x7f"), "\\x7f");
  EXPECT_EQ(umsctl::escaped("\xc2\x9b"
                            "2J"),
            "\\u{009b}2J");  // the one-character form of ESC [
  EXPECT_EQ(umsctl::escaped("\xe2\x80\xae"
                            "3pm"),
            "\\u{202e}3pm");  // would show the rest backwards
  EXPECT_EQ(umsctl::escaped("back\\slash"), "back\\\\slash");
}

TEST(EscapedName, ShowsBytesThatAreNoUtf8) {
  EXPECT_EQ(umsctl::escaped("\xff\xfe"), "\\xff\\xfe");
  EXPECT_EQ(umsctl::escaped("caf\xe9.mp3"), "caf\\xe9.mp3");
  EXPECT_EQ(umsctl::escaped("\xc0\xaf"), "\\xc0\\xaf");                    // overlong
  EXPECT_EQ(umsctl::escaped("\xed\xa0\x80"), "\\xed\\xa0\\x80");           // half of a pair
  EXPECT_EQ(umsctl::escaped("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // beyond the last number
  EXPECT_EQ(umsctl::escaped("\xe9\x9f"), "\\xe9\\x9f");                    // cut off
}

TEST(EscapedName, IsShortenedByColumnsAndNeverInsideACharacter) {
  EXPECT_EQ(umsctl::shortened("short.mp3", 9), "short.mp3");
  EXPECT_EQ(umsctl::shortened("longer name.mp3", 9), "longer...");
  EXPECT_EQ(umsctl::shortened("音音音音音", 8), "音音...");
  EXPECT_EQ(umsctl::shortened("anything", 2), "..");
  EXPECT_EQ(umsctl::shortened("anything", 0), "");
}

TEST(Amounts, AreSpokenInDecimalUnits) {
  EXPECT_EQ(umsctl::byteText(0), "0 B");
  EXPECT_EQ(umsctl::byteText(999), "999 B");
  EXPECT_EQ(umsctl::byteText(1000), "1.0 kB");
  EXPECT_EQ(umsctl::byteText(999'949), "999.9 kB");
  EXPECT_EQ(umsctl::byteText(999'950), "1.0 MB");
  EXPECT_EQ(umsctl::byteText(5'368'709'120), "5.4 GB");
  EXPECT_EQ(umsctl::byteText(UINT64_MAX), "18.4 EB");
  EXPECT_EQ(umsctl::durationText(7), "0:07");
  EXPECT_EQ(umsctl::durationText(725), "12:05");
  EXPECT_EQ(umsctl::durationText(3765), "1:02:45");
}

TEST(Paths, KeepTheirMeaning) {
  EXPECT_EQ(umsctl::absolutePath("/a/../b"), "/a/../b");
  EXPECT_TRUE(umsctl::absolutePath("b").ends_with("/b"));
  EXPECT_EQ(umsctl::absolutePath(""), "");
  EXPECT_EQ(umsctl::withoutTrailingSlashes("/a//"), "/a");
  EXPECT_EQ(umsctl::withoutTrailingSlashes("//"), "/");
  EXPECT_EQ(umsctl::lastComponent("/a/b.mp3/"), "b.mp3");
  EXPECT_EQ(umsctl::lastComponent("/"), "");
  EXPECT_EQ(umsctl::inFolder("/", "b"), "/b");
  EXPECT_EQ(umsctl::inFolder("/a", "b"), "/a/b");
}

ItemOutcome outcome(size_t index, ItemOutcome::Kind kind, uint64_t bytes) {
  ItemOutcome item;
  item.index = index;
  item.kind = kind;
  item.bytes = bytes;
  return item;
}

TEST(TransferTally, TellsBytesFromPercentAndOutcomes) {
  umsctl::TransferTally tally({1000, 3000, 0, 6000});
  EXPECT_EQ(tally.totalBytes(), 10'000u);
  tally.setPercent(5);
  EXPECT_EQ(tally.passedBytes(), 500u);
  tally.itemCounted(outcome(0, ItemOutcome::Kind::Done, 1000));
  tally.setPercent(10);
  EXPECT_EQ(tally.passedBytes(), 1000u);
  tally.itemCounted(outcome(1, ItemOutcome::Kind::Skipped, 0));
  EXPECT_EQ(tally.passedBytes(), 4000u);
  EXPECT_EQ(tally.movedBytes(), 1000u);
  tally.itemCounted(outcome(2, ItemOutcome::Kind::Failed, 0));
  tally.setPercent(70);
  EXPECT_EQ(tally.passedBytes(), 7000u);
  EXPECT_DOUBLE_EQ(tally.fraction(), 0.7);
  tally.setPercent(100);
  tally.itemCounted(outcome(3, ItemOutcome::Kind::Done, 6000));
  EXPECT_DOUBLE_EQ(tally.fraction(), 1);
  EXPECT_EQ(tally.counted(), 4u);
}

TEST(TransferTally, NeverPassesTheEndOfTheFileInHand) {
  umsctl::TransferTally tally({1000, 1000});
  tally.setPercent(100);  // a run that ends early says so
  EXPECT_EQ(tally.passedBytes(), 1000u);
  tally.setPercent(20);
  EXPECT_EQ(tally.passedBytes(), 1000u);
}

TEST(TransferTally, GoesByItemsWhereNoSizeIsKnown) {
  umsctl::TransferTally tally({0, 0, 0, 0});
  tally.itemCounted(outcome(0, ItemOutcome::Kind::Failed, 0));
  EXPECT_DOUBLE_EQ(tally.fraction(), 0.25);
  EXPECT_DOUBLE_EQ(umsctl::TransferTally({}).fraction(), 1);
}

TEST(TransferTally, CountsThePercentOfARequestForItsOwnItemsOnly) {
  umsctl::TransferTally tally({1000, 3000, 6000});
  tally.itemCounted(outcome(1, ItemOutcome::Kind::Failed, 0));  // refused before any request
  tally.beginRequest({2});
  tally.setPercent(50);
  EXPECT_EQ(tally.passedBytes(), 6000u);
  tally.itemCounted(outcome(2, ItemOutcome::Kind::Done, 6000));
  tally.beginRequest({0});
  tally.setPercent(50);
  EXPECT_EQ(tally.passedBytes(), 9500u);
  tally.setBytes(900);
  EXPECT_EQ(tally.passedBytes(), 9900u);
  tally.itemCounted(outcome(0, ItemOutcome::Kind::Done, 1000));
  EXPECT_DOUBLE_EQ(tally.fraction(), 1);
}

TEST(ProgressLine, LeavesBytesOutWhereThereAreNone) {
  umsctl::TransferTally tally({0, 0});
  tally.itemCounted(outcome(0, ItemOutcome::Kind::Done, 0));
  EXPECT_EQ(umsctl::progressLine(tally, 0, "a.mp3", 60), "  50%  1/2  a.mp3");
}

TEST(ProgressLine, ShowsEverythingAndGivesUpTheBarAndTheNameWhereItIsNarrow) {
  umsctl::TransferTally tally({1'000'000, 3'000'000});
  tally.itemCounted(outcome(0, ItemOutcome::Kind::Done, 1'000'000));
  tally.setPercent(50);
  EXPECT_EQ(umsctl::progressLine(tally, 100'000, "a long name.mp4", 100),
            "[==========>         ]  50%  2.0 MB of 4.0 MB  100.0 kB/s  0:20 left  1/2  a long name.mp4");
  EXPECT_EQ(umsctl::progressLine(tally, 0, "a long name.mp4", 60),
            "  50%  2.0 MB of 4.0 MB  1/2  a long name.mp4");
  EXPECT_EQ(umsctl::progressLine(tally, 0, "a long name.mp4", 40),
            "  50%  2.0 MB of 4.0 MB  1/2  a long ...");
}

TEST(TransferRate, LooksAtTheLastSecondsOnly) {
  umsctl::TransferRate rate;
  const umsctl::TransferRate::Clock::time_point start;
  rate.note(start, 0);
  EXPECT_EQ(rate.perSecond(), 0);
  rate.note(start + std::chrono::seconds(1), 500);
  EXPECT_DOUBLE_EQ(rate.perSecond(), 500);
  for (int second = 2; second <= 30; ++second) rate.note(start + std::chrono::seconds(second), 500);
  EXPECT_DOUBLE_EQ(rate.perSecond(), 0);
  rate.restart();
  rate.note(start + std::chrono::seconds(60), 9000);
  EXPECT_EQ(rate.perSecond(), 0);
}

}  // namespace
}  // namespace umsservice::testing
