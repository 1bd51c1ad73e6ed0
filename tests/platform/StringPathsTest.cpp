#include "StringPaths.h"

namespace umsservice::testing {
namespace {

struct PathRow {
  const char* path;
  const char* expected;
};

template <typename Function>
void expectPaths(Function function, std::initializer_list<PathRow> rows) {
  for (const PathRow& row : rows) EXPECT_EQ(function(row.path), row.expected) << "of '" << row.path << "'";
}

TEST(PathComponents, SplitAtSeparatorsAndKeepThoseAtEitherEnd) {
  using Components = std::vector<std::string>;
  const std::pair<const char*, Components> rows[] = {
      {"tmp/scratch", {"tmp", "scratch"}},
      {"/tmp/scratch", {"/", "tmp", "scratch"}},
      {"/tmp/scratch/", {"/", "tmp", "scratch", "/"}},
      {"tmp/", {"tmp", "/"}},
      {"a", {"a"}},
      {"", {}},
      {"/", {"/"}},
      {"//", {"/"}},
      {"///", {"/"}},
      {"/a//b/", {"/", "a", "b", "/"}},
      {"//a///b///", {"/", "a", "b", "/"}},
      {"./a/../b", {".", "a", "..", "b"}},
      {"/Volumes/CARD/My Music", {"/", "Volumes", "CARD", "My Music"}},
      {" / ", {" ", " "}},
  };
  for (const auto& [path, components] : rows)
    EXPECT_EQ(pathComponents(path), components) << "'" << path << "'";
}

TEST(LastPathComponent, IsWhatTheDocumentedExamplesSay) {
  expectPaths(lastPathComponent, {
                                     {"/tmp/scratch.tiff", "scratch.tiff"},
                                     {"/tmp/scratch", "scratch"},
                                     {"/tmp/", "tmp"},
                                     {"scratch///", "scratch"},
                                     {"/", "/"},
                                 });
}

TEST(LastPathComponent, LooksPastRepeatedSeparatorsAndKeepsDotNames) {
  expectPaths(lastPathComponent, {
                                     {"", ""},
                                     {"a", "a"},
                                     {"//", "/"},
                                     {"///", "/"},
                                     {"//a", "a"},
                                     {"/a//b//", "b"},
                                     {"/a/.", "."},
                                     {"/a/..", ".."},
                                     {"/a/.hidden", ".hidden"},
                                     {"/a/ ", " "},
                                     {"/a/b:c", "b:c"},
                                 });
}

TEST(PathExtension, IsWhatTheDocumentedExamplesSay) {
  expectPaths(pathExtension, {
                                 {"/tmp/scratch.tiff", "tiff"},
                                 {".scratch.tiff", "tiff"},
                                 {"/tmp/scratch", ""},
                                 {"/tmp/", ""},
                                 {"/tmp/scratch..tiff", "tiff"},
                             });
}

TEST(PathExtension, BelongsToTheLastComponentAndNeedsANameBeforeItsDot) {
  expectPaths(pathExtension, {
                                 {"", ""},
                                 {"/", ""},
                                 {".", ""},
                                 {"..", ""},
                                 {"/a/..", ""},
                                 {".tiff", ""},
                                 {"/tmp/.tiff", ""},
                                 {"a.", ""},
                                 {"a.b.", ""},
                                 {"song.MP3", "MP3"},
                                 {"song.tar.gz", "gz"},
                                 {"/album.d/song", ""},
                                 {"scratch.bundle/", "bundle"},
                                 {"scratch.bundle///", "bundle"},
                                 {"a.b c", "b c"},
                             });
}

TEST(DeletingTheLastPathComponent, GivesWhatTheDocumentedExamplesSay) {
  expectPaths(stringByDeletingLastPathComponent, {
                                                     {"/tmp/scratch.tiff", "/tmp"},
                                                     {"/tmp/lock/", "/tmp"},
                                                     {"/tmp/", "/"},
                                                     {"/tmp", "/"},
                                                     {"/", "/"},
                                                     {"scratch.tiff", ""},
                                                 });
}

TEST(DeletingTheLastPathComponent, CollapsesRepeatedSeparators) {
  expectPaths(stringByDeletingLastPathComponent, {
                                                     {"", ""},
                                                     {"//", "/"},
                                                     {"///", "/"},
                                                     {"//a", "/"},
                                                     {"a/", ""},
                                                     {"a//", ""},
                                                     {"a/b", "a"},
                                                     {"a//b", "a"},
                                                     {"/a//b", "/a"},
                                                     {"/a//b/c", "/a/b"},
                                                     {"///a///b///c///", "/a/b"},
                                                     {"a//b/c", "a/b"},
                                                     {"/a/..", "/a"},
                                                     {"/a/.", "/a"},
                                                     {"..", ""},
                                                     {".hidden", ""},
                                                 });
}

TEST(DeletingThePathExtension, GivesWhatTheDocumentedExamplesSay) {
  expectPaths(stringByDeletingPathExtension, {
                                                 {"/tmp/scratch.tiff", "/tmp/scratch"},
                                                 {"/tmp/", "/tmp"},
                                                 {"scratch.bundle/", "scratch"},
                                                 {"scratch..tiff", "scratch."},
                                                 {".tiff", ".tiff"},
                                                 {"/", "/"},
                                             });
}

TEST(DeletingThePathExtension, CollapsesSeparatorsAndLeavesNamesWithoutAnExtension) {
  expectPaths(stringByDeletingPathExtension, {
                                                 {"", ""},
                                                 {"a", "a"},
                                                 {"a.", "a"},
                                                 {"a.b.avi", "a.b"},
                                                 {".", "."},
                                                 {"..", ".."},
                                                 {"/a/..", "/a/.."},
                                                 {"/a/.hidden", "/a/.hidden"},
                                                 {"/a/.hidden.txt", "/a/.hidden"},
                                                 {"/album.d/song", "/album.d/song"},
                                                 {"//", "/"},
                                                 {"///file/123.png.smb", "/file/123.png"},
                                                 {"/a//b.c", "/a/b"},
                                                 {"/a//b", "/a/b"},
                                                 {"a.b///", "a"},
                                             });
}

TEST(JoinedPaths, AreJoinedWithOneSeparatorAndNotNormalised) {
  EXPECT_EQ(joinedPath("/a", "b"), "/a/b");
  EXPECT_EQ(joinedPath("/a/", "b"), "/a//b");
  EXPECT_EQ(joinedPath("/a", "/b"), "/a//b");
  EXPECT_EQ(joinedPath("", "b"), "/b");
  EXPECT_EQ(joinedPath("/a", ""), "/a/");
  EXPECT_EQ(joinedPath("/a", "../b"), "/a/../b");
}

TEST(HiddenNames, BeginWithADot) {
  for (const char* name : {".", "..", ".nomedia", ".a.b", ".\xff"}) EXPECT_TRUE(isHiddenName(name)) << name;
  for (const char* name : {"", "a", "a.b", " .a", "_"}) EXPECT_FALSE(isHiddenName(name)) << name;
}

}  // namespace
}  // namespace umsservice::testing
