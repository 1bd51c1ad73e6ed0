#include <gtest/gtest.h>

#include "Columns.h"
#include "EscapedName.h"
#include "Program.h"

namespace umsservice::testing {
namespace {

using Fit = umsctl::Columns::Fit;
using Lines = std::vector<std::string>;

Lines shown(const umsctl::Columns& table, std::optional<size_t> width) {
  return linesOf(table.text(width, false));
}

TEST(Columns, TakeWhatTheScreenTakesForEachCharacter) {
  EXPECT_EQ(umsctl::columnsOf("Fluß"), 4u);
  EXPECT_EQ(umsctl::columnsOf("音楽"), 4u);
  EXPECT_EQ(umsctl::columnsOf("e\u0301"), 1u);  // a letter and the mark above it
  EXPECT_EQ(umsctl::columnsOf("Пісня"), 5u);
  EXPECT_EQ(umsctl::columnsOf("각"), 2u);
  EXPECT_GE(umsctl::columnsOf("\u1100\u1161\u11a8"), 2u);  // the same in parts; screens differ here
  EXPECT_EQ(umsctl::columnsOf("🎵"), 2u);
  EXPECT_EQ(umsctl::columnsOf("♥\ufe0f"), 2u);  // as a picture
  EXPECT_EQ(umsctl::columnsOf("…"), 1u);
}

TEST(Columns, LineUpTextsOfAllScripts) {
  umsctl::Columns table({{"TITLE"}, {"TIME", Fit::Keep, true}, {"ARTIST"}});
  table.add({"音楽", "0:07", "one"});
  table.add({"e\u0301te\u0301", "1:02:45", "two"});
  table.add({"plain", "", ""});
  EXPECT_EQ(shown(table, std::nullopt), (Lines{"TITLE     TIME  ARTIST", "音楽      0:07  one",
                                               "e\u0301te\u0301    1:02:45  two", "plain"}));
}

TEST(Columns, WithoutASingleTextAreLeftOut) {
  umsctl::Columns table({{"NAME"}, {"ARTIST"}, {"TIME"}});
  table.add({"a", "", "0:07"});
  EXPECT_EQ(shown(table, std::nullopt), (Lines{"NAME  TIME", "a     0:07"}));
}

TEST(Columns, AreCutFairlyWhereTheScreenIsNarrow) {
  umsctl::Columns table({{"NAME", Fit::Cut}, {"TITLE", Fit::Cut}, {"SIZE", Fit::Keep, true}});
  table.add({"a very long name.mp3", "the long title of it", "12.9 kB"});
  table.add({"b.mp3", "short", "1 B"});
  EXPECT_EQ(shown(table, 31), (Lines{"NAME        TITLE          SIZE", "a very ...  the lon...  12.9 kB",
                                     "b.mp3       short           1 B"}));
  for (size_t width = 0; width < 60; ++width) {
    for (const std::string& line : shown(table, width)) EXPECT_LE(umsctl::columnsOf(line), width) << line;
  }
}

TEST(Columns, KeepTheEndsOfPaths) {
  umsctl::Columns table({{"FILE", Fit::CutFront}});
  table.add({"Music/長い名前/song.mp3"});
  EXPECT_EQ(shown(table, 13), (Lines{"FILE", ".../song.mp3"}));
  EXPECT_EQ(shown(table, 15), (Lines{"FILE", "...前/song.mp3"}));
}

TEST(Columns, GoOnBelowWhereTheirTextsMustNotBeCut) {
  umsctl::Columns table({{"FILE", Fit::Cut}, {"CAUSE", Fit::Wrap}});
  table.add({"a.mp3", "not enough room on the volume"});
  EXPECT_EQ(shown(table, 19),
            (Lines{"FILE   CAUSE", "a.mp3  not enough", "       room on the", "       volume"}));
}

TEST(Columns, ArePaintedWithoutLosingTheirPlaces) {
  umsctl::Columns table({{"A"}, {"B"}});
  table.add({umsctl::Cell("x", umsctl::Paint::Bad), "y"});
  EXPECT_EQ(table.text(std::nullopt, true), "\x1b[1mA\x1b[0m  \x1b[1mB\x1b[0m\n\x1b[31mx\x1b[0m  y\n");
}

}  // namespace
}  // namespace umsservice::testing
