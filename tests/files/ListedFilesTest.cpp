#include <thread>

#include "ListedFiles.h"
#include "TypedEntries.h"
#include "umsservice/Notifications.h"

namespace umsservice::testing {
namespace {

PathList paths(std::initializer_list<std::string_view> names) {
  PathList list;
  for (std::string_view name : names) list.append("Music/", name, FileType::Regular);
  return list;
}

Array threeFiles() {
  return listedFiles({.folder = "/card", .diskIndex = 1}, paths({"a.mp3", "b.mp3", "c.mp3"}), {1, 2, 3});
}

Dictionary fileAt(const Array& files, size_t index) {
  return *files.at(index).dictionary();
}

TEST(ListedFiles, HoldPathNameVolumeAndSize) {
  const Array files = threeFiles();
  ASSERT_EQ(files.count(), 3u);
  EXPECT_EQ(typed(fileAt(files, 2)), (Lines{"FileName: text c.mp3", "FilePath: text /card/Music/c.mp3",
                                            "FileSize: u64 3", "diskIndex: u32 1"}));
  EXPECT_TRUE(files.at(3).isNil());
  EXPECT_TRUE(fileAt(files, 0).get("Title").isNil());
}

TEST(ListedFiles, HoldOnlyWhatTheirListingHas) {
  const Array files = listedFiles({.folder = "/card"}, paths({"a.mp3"}));
  EXPECT_EQ(typed(fileAt(files, 0)), (Lines{"FileName: text a.mp3", "FilePath: text /card/Music/a.mp3"}));
  EXPECT_TRUE(fileAt(files, 0).get(key::kFileSize).isNil());
  EXPECT_TRUE(fileAt(files, 0).get(key::kDiskIndex).isNil());
}

TEST(ListedFiles, ShowAChangeToEveryHandle) {
  const Array files = threeFiles();
  Dictionary file = fileAt(files, 1);
  file.set("Title", "B");
  file.remove(key::kFileSize);
  file.set(key::kFileName, "other");
  EXPECT_TRUE(fileAt(files, 1).isSame(file));
  EXPECT_EQ(typed(fileAt(files, 1)), (Lines{"FileName: text other", "FilePath: text /card/Music/b.mp3",
                                            "Title: text B", "diskIndex: u32 1"}));
  EXPECT_EQ(typed(*files.snapshot()[1].dictionary()), typed(file));
  EXPECT_EQ(fileAt(files, 0).string(key::kFileName), "a.mp3");
}

TEST(ListedFiles, StayTheSameWhenTheirArrayChanges) {
  Array files = threeFiles();
  Dictionary last = fileAt(files, 2);
  files.removeAt(0);
  files.append("more");
  ASSERT_EQ(files.count(), 3u);
  EXPECT_TRUE(fileAt(files, 1).isSame(last));
  EXPECT_EQ(files.at(2).string(), "more");
  EXPECT_EQ(files.elements()->size(), 3u);
  files.assign({"only"});
  EXPECT_EQ(files.count(), 1u);
  EXPECT_EQ(last.string(key::kFilePath), "/card/Music/c.mp3");
}

TEST(ListedFiles, OutliveTheirArray) {
  Dictionary file = fileAt(threeFiles(), 1);
  Dictionary copy = file.mutableCopy();
  EXPECT_EQ(file.string(key::kFilePath), "/card/Music/b.mp3");
  EXPECT_TRUE(copy.isEqualToDictionary(file));
  file.set("Title", "B");
  EXPECT_FALSE(copy.contains("Title"));
}

TEST(ListedFiles, LoseNoChangeOfSeveralThreads) {
  Array files = threeFiles();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&files, thread] {
      for (int i = 0; i < 100; ++i) fileAt(files, 0).set(std::to_string(thread * 100 + i), i);
      files.append(thread);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(fileAt(files, 0).count(), 404u);
  EXPECT_EQ(files.count(), 7u);
}

TEST(PathLists, KeepPathsInOrderAcrossBlocksOfMemory) {
  PathList list;
  const std::string folder(3000, 'f');
  for (int i = 0; i < 100; ++i) list.append(folder, std::to_string(i), FileType::Regular);
  list.append(std::string(100'000, 'l'), "ong", FileType::Directory);
  const std::string_view before = list[7];
  PathList moved = std::move(list);
  EXPECT_EQ(moved[7].data(), before.data());
  moved.keepIf([](std::string_view path) { return path.ends_with('7') || path.ends_with("ong"); });
  ASSERT_EQ(moved.size(), 11u);
  EXPECT_EQ(moved[9], folder + "97");
  EXPECT_EQ(moved[10].size(), 100'003u);
  EXPECT_EQ(moved.typeOf(10), FileType::Directory);
}

}  // namespace
}  // namespace umsservice::testing
