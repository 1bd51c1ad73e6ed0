#include <thread>

#include "EpisodeList.h"
#include "TestDevice.h"

namespace umsservice::testing {
namespace {

class EpisodeList : public ::testing::Test {
 protected:
  static Dictionary titled(const std::string& title) { return Dictionary{{"Title", title}}; }
  static std::vector<std::string> titles(const Array& episodes) {
    std::vector<std::string> titles;
    for (const Value& episode : episodes.snapshot())
      titles.push_back(episode.dictionary() ? *episode.dictionary()->string("Title") : episode.description());
    return titles;
  }

  umsservice::EpisodeList list;
};

using Titles = std::vector<std::string>;

TEST_F(EpisodeList, HandsOutEachStateByItself) {
  Array none = list.snapshot();
  list.append(titled("a"));
  Array one = list.snapshot();
  list.append(titled("b"));
  list.append(titled("c"));
  Array three = list.snapshot();
  list.removeAt(1);
  list.append(titled("d"));
  EXPECT_EQ(titles(none), Titles{});
  EXPECT_EQ(titles(one), Titles{"a"});
  EXPECT_EQ(titles(three), (Titles{"a", "b", "c"}));
  EXPECT_EQ(titles(list.snapshot()), (Titles{"a", "c", "d"}));
  EXPECT_EQ(list.count(), 3u);
  list.removeAt(9);
  EXPECT_EQ(list.count(), 3u);
}

TEST_F(EpisodeList, TakesTheEntriesOfADictionaryAsTheyAreThen) {
  Dictionary episode = titled("before");
  list.append(episode);
  episode.set("Title", "after");
  EXPECT_EQ(titles(list.snapshot()), Titles{"before"});
}

TEST_F(EpisodeList, AnArrayIsAnArrayLikeAnyOther) {
  list.append(titled("a"));
  list.append(titled("b"));
  Array array = list.snapshot();
  EXPECT_EQ(array.count(), 2u);
  EXPECT_TRUE(array.at(2).isNil());
  EXPECT_TRUE(array.at(0).dictionary()->isSame(*array.at(0).dictionary()));
  EXPECT_TRUE(array.snapshot()[1].dictionary()->isSame(*array.at(1).dictionary()));
  array.append("c");
  array.append(Value());
  EXPECT_EQ(array.count(), 4u);
  array.removeAt(0);
  array.removeAt(9);
  EXPECT_EQ(array.at(0).dictionary()->string("Title"), "b");
  EXPECT_EQ(array.at(1).string(), "c");
  EXPECT_TRUE(array.at(2).isNil());
  array.assign({titled("x")});
  EXPECT_EQ(titles(array), Titles{"x"});
  EXPECT_EQ(titles(list.snapshot()), (Titles{"a", "b"}));
}

TEST_F(EpisodeList, AChangedArrayKeepsTheDictionariesThatItHandedOut) {
  list.append(titled("a"));
  Array array = list.snapshot();
  Dictionary held = *array.at(0).dictionary();
  array.append(titled("b"));
  held.set("Title", "changed");
  EXPECT_EQ(titles(array), (Titles{"changed", "b"}));
}

TEST_F(EpisodeList, AnEpisodeOfAnArrayIsADictionaryOfItsOwn) {
  list.append(Dictionary{{"Title", "a"}, {"Url", "u"}});
  Array first = list.snapshot(), second = list.snapshot();
  Dictionary episode = *first.at(0).dictionary();
  episode.set("Title", "changed");
  episode.set("Mood", "fine");
  episode.remove("Url");
  episode.remove("nothing");
  EXPECT_EQ(episode.keys(), (Titles{"Mood", "Title"}));
  EXPECT_TRUE(episode.get("Nothing").isNil());
  EXPECT_EQ(first.at(0).dictionary()->string("Title"), "changed");
  EXPECT_EQ(second.at(0).dictionary()->keys(), (Titles{"Title", "Url"}));
  EXPECT_EQ(titles(list.snapshot()), Titles{"a"});
}

TEST_F(EpisodeList, ItsArraysAreReadWhileItGrows) {
  list.append(titled("0"));
  Array array = list.snapshot();
  std::thread reader([array] {
    for (int i = 0; i < 200; ++i) EXPECT_EQ(titles(array), Titles{"0"});
  });
  for (int i = 1; i < 500; ++i) list.append(titled(std::to_string(i)));
  reader.join();
  EXPECT_EQ(list.snapshot().count(), 500u);
}

}  // namespace
}  // namespace umsservice::testing
