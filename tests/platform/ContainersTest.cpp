#include <atomic>
#include <thread>

#include "umsservice/Value.h"

namespace umsservice::testing {
namespace {

/// A list of a host's that leaves what it can to the defaults.
class HostsArray final : public ArrayStorage {
 public:
  size_t count() const override { return values_.size(); }
  Value at(size_t index) const override { return values_.at(index); }
  void append(Value value) override { values_.push_back(std::move(value)); }
  void removeAt(size_t) override {}
  void assign(std::vector<Value> values) override { values_ = std::move(values); }
  std::vector<Value> snapshot() const override { return values_; }
  MaybeString description() const override { return "the host's words"; }

 private:
  std::vector<Value> values_;
};

/// A table of a host's with copies of its own kind.
class HostsDictionary final : public DictionaryStorage {
 public:
  explicit HostsDictionary(bool isCopy = false) : isCopy_(isCopy) {}
  Value get(std::string_view) const override { return isCopy_ ? "yes" : "no"; }
  void set(std::string_view, Value) override {}
  std::vector<std::string> keys() const override { return {"copied"}; }
  std::shared_ptr<DictionaryStorage> mutableCopy() const override {
    return std::make_shared<HostsDictionary>(true);
  }
  MaybeString description() const override { return "the host's words"; }

 private:
  const bool isCopy_;
};

TEST(Arrays, KeepTheirElementsInOrder) {
  Array array{"a", 2, Null()};
  array.append(4.5);
  ASSERT_EQ(array.count(), 4u);
  EXPECT_EQ(array.at(0).string(), "a");
  EXPECT_EQ(array.at(1).intValue(), 2);
  EXPECT_EQ(array.at(2).kind(), Value::Kind::Null);
  EXPECT_EQ(array.at(3).doubleValue(), 4.5);
}

TEST(Arrays, GiveNilAtAndPastTheEndAndIgnoreRemovalsThere) {
  Array array{"only"};
  EXPECT_TRUE(array.at(1).isNil());
  EXPECT_TRUE(array.at(SIZE_MAX).isNil());
  array.removeAt(1);
  array.removeAt(SIZE_MAX);
  EXPECT_EQ(array.count(), 1u);
  array.removeAt(0);
  array.removeAt(0);
  EXPECT_TRUE(array.empty());
}

TEST(Arrays, HoldNilElementsAsElements) {
  Array array{Value(), "b"};
  EXPECT_EQ(array.count(), 2u);
  EXPECT_TRUE(array.at(0).isNil());
  array.append(Value());
  EXPECT_EQ(array.count(), 3u);
}

TEST(Arrays, CloseTheGapWhereAnElementWasRemoved) {
  Array array{"a", "b", "c"};
  array.removeAt(1);
  EXPECT_TRUE(Value(array).isEqual(Array{"a", "c"}));
}

TEST(Arrays, LoseNothingBetweenTwoEditsAtOnce) {
  constexpr int kEach = 2000;
  Array array;
  auto growAtTheFront = [&array](int number) {
    array.edit([number](std::vector<Value>& values) {
      values.insert(values.begin(), number);
      return true;
    });
  };
  std::thread other([&] {
    for (int i = 0; i < kEach; ++i) growAtTheFront(i);
  });
  for (int i = 0; i < kEach; ++i) growAtTheFront(-i);
  other.join();
  EXPECT_EQ(array.count(), size_t{2 * kEach});
}

TEST(Arrays, AreEditedByEveryStorageAndStayAsTheyWereWhenTheEditSaysSo) {
  Array own(std::make_shared<HostsArray>());
  for (Array array : {Array{1, 2}, own}) {
    EXPECT_TRUE(array.edit([](std::vector<Value>& values) {
      values.assign({3});
      return true;
    }));
    EXPECT_FALSE(array.edit([](std::vector<Value>&) { return false; }));
    EXPECT_EQ(array.count(), 1u);
    EXPECT_EQ(array.at(0).intValue(), 3);
  }
}

TEST(Arrays, AreDescribedInTheWordsOfTheirHost) {
  EXPECT_EQ(Value(Array(std::make_shared<HostsArray>())).description(), "the host's words");
}

TEST(Dictionaries, AreCopiedAndDescribedAsTheirHostDoes) {
  Dictionary copy = Dictionary(std::make_shared<HostsDictionary>()).mutableCopy();
  EXPECT_EQ(copy.string("copied"), "yes");
  EXPECT_EQ(Value(copy).description(), "the host's words");
}

TEST(Arrays, AreReferencesToOneContainer) {
  Array array{1};
  Array other = array;
  other.append(2);
  EXPECT_EQ(array.count(), 2u);
  EXPECT_TRUE(array.isSame(other));
  EXPECT_FALSE(array.isSame(Array{1, 2}));
  EXPECT_TRUE(Value(array).isEqual(Array{1, 2}));
}

TEST(Arrays, GoTheirOwnWayAfterAMutableCopyOrASnapshot) {
  Array inner{1};
  Array array{Value(inner)};
  Array copy = array.mutableCopy();
  std::vector<Value> snapshot = array.snapshot();
  array.append("later");
  EXPECT_EQ(copy.count(), 1u);
  EXPECT_EQ(snapshot.size(), 1u);
  EXPECT_FALSE(copy.isSame(array));
  EXPECT_TRUE(copy.at(0).array()->isSame(inner));
}

TEST(Arrays, CanBeRefilledWithTheirOwnElements) {
  Array array{1, 2, 3};
  array.assign(array.snapshot());
  EXPECT_TRUE(Value(array).isEqual(Array{1, 2, 3}));
  array.assign({});
  EXPECT_TRUE(array.empty());
}

TEST(Dictionaries, GiveNilForAKeyThatIsNotThere) {
  Dictionary dictionary{{"there", 1}};
  EXPECT_TRUE(dictionary.get("missing").isNil());
  EXPECT_TRUE(dictionary.contains("there"));
  EXPECT_FALSE(dictionary.contains("missing"));
  EXPECT_EQ(dictionary.string("there"), std::nullopt);
}

TEST(Dictionaries, LoseAKeyThatIsSetToNilButKeepTheNullObject) {
  Dictionary dictionary{{"a", 1}, {"b", Null()}, {"c", Value()}};
  EXPECT_EQ(dictionary.keys(), (std::vector<std::string>{"a", "b"}));
  dictionary.set("a", Value());
  dictionary.set("never there", Value());
  dictionary.remove("never there either");
  EXPECT_EQ(dictionary.count(), 1u);
  EXPECT_TRUE(dictionary.contains("b"));
}

TEST(Dictionaries, KeepTheLastValueOfAKeyThatIsSetTwice) {
  Dictionary dictionary{{"a", 1}, {"a", 2}};
  EXPECT_EQ(dictionary.get("a").intValue(), 2);
  dictionary.set("a", "three");
  EXPECT_EQ(dictionary.string("a"), "three");
  EXPECT_EQ(dictionary.count(), 1u);
}

TEST(Dictionaries, MadeOfEntriesThatAreGivenAwayAreLikeThoseOfAList) {
  using Entries = std::vector<std::pair<std::string, Value>>;
  EXPECT_EQ(Dictionary(Entries{}).count(), 0u);
  Dictionary inOrder(Entries{{"a", 1}, {"b", Value()}, {"c", 3}});
  EXPECT_TRUE(inOrder.isEqualToDictionary(Dictionary{{"a", 1}, {"c", 3}}));
  EXPECT_EQ(inOrder.keys(), (std::vector<std::string>{"a", "c"}));
  Dictionary outOfOrder(Entries{{"c", 1}, {"a", 1}, {"c", 2}, {"b", 5}, {"a", Value()}, {"c", 3}});
  EXPECT_TRUE(outOfOrder.isEqualToDictionary(Dictionary{{"b", 5}, {"c", 3}}));
  EXPECT_EQ(outOfOrder.keys(), (std::vector<std::string>{"b", "c"}));
}

TEST(Dictionaries, TellKeysApartByEveryByte) {
  Dictionary dictionary;
  dictionary.set("DiskIndex", 1);
  dictionary.set("diskIndex", 2);
  dictionary.set("", 3);
  dictionary.set(std::string("a\0b", 3), 4);
  EXPECT_EQ(dictionary.count(), 4u);
  EXPECT_EQ(dictionary.get("diskIndex").intValue(), 2);
  EXPECT_EQ(dictionary.get("").intValue(), 3);
  EXPECT_TRUE(dictionary.get("a").isNil());
}

TEST(Dictionaries, AreReferencesUntilTheyAreCopied) {
  Dictionary dictionary{{"list", Array{1}}};
  Dictionary same = dictionary;
  Dictionary copy = dictionary.mutableCopy();
  same.set("new", true);
  EXPECT_TRUE(dictionary.contains("new"));
  EXPECT_FALSE(copy.contains("new"));
  EXPECT_TRUE(copy.get("list").array()->isSame(*dictionary.get("list").array()));
}

TEST(Dictionaries, AreEqualWithTheSameKeysAndEqualValues) {
  Dictionary left{{"a", 1}, {"b", "x"}};
  EXPECT_TRUE(left.isEqualToDictionary(left));
  EXPECT_TRUE(left.isEqualToDictionary(Dictionary{{"b", "x"}, {"a", uint64_t{1}}}));
  EXPECT_FALSE(left.isEqualToDictionary(Dictionary{{"a", 1}}));
  EXPECT_FALSE(left.isEqualToDictionary(Dictionary{{"a", 1}, {"c", "x"}}));
  EXPECT_FALSE(left.isEqualToDictionary(Dictionary{{"a", 1}, {"b", "y"}}));
}

/// Counts the calls that a host's own container gets.
class HostArray final : public ArrayStorage {
 public:
  size_t count() const override { return 2; }
  Value at(size_t index) const override { return index < 2 ? Value("host") : Value(); }
  void append(Value) override { ++appended; }
  void removeAt(size_t) override {}
  void assign(std::vector<Value>) override {}
  std::vector<Value> snapshot() const override { return {"host", "host"}; }
  std::atomic<int> appended{0};
};

TEST(Arrays, MayBeSuppliedByAHost) {
  auto storage = std::make_shared<HostArray>();
  Array array(storage);
  array.append(1);
  EXPECT_EQ(storage->appended, 1);
  EXPECT_TRUE(Value(array).isEqual(Array{"host", "host"}));
  EXPECT_EQ(Value(array).array()->storage(), storage);
}

/// Runs a body on several threads at once, each with its number.
void onThreads(int count, const std::function<void(int)>& body) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(body, i);
  for (std::thread& thread : threads) thread.join();
}

TEST(Arrays, LeaveTheElementsThatAReaderHoldsAsTheyWere) {
  Array array{"a", "b"};
  const auto before = array.elements();
  array.append("c");
  array.removeAt(0);
  EXPECT_EQ(before->size(), 2u);
  EXPECT_EQ(before->front().string(), "a");
  EXPECT_TRUE(Value(array).isEqual(Array{"b", "c"}));
  const auto now = array.elements();
  array.assign({});
  EXPECT_EQ(now->size(), 2u);
  EXPECT_TRUE(array.empty());
  EXPECT_EQ(Array(std::make_shared<HostArray>()).elements()->size(), 2u);
}

TEST(Arrays, ShowReadersWholeElementsWhileTheyChange) {
  Array array{std::string(40, 'x')};
  std::atomic<int> torn{0};
  onThreads(4, [&](int thread) {
    for (int i = 0; i < 300; ++i) {
      if (thread == 0) {
        array.append(std::string(40, 'x'));
        continue;
      }
      const auto elements = array.elements();
      for (const Value& element : *elements) torn += *element.stringIfAny() != std::string(40, 'x');
    }
  });
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(array.count(), 301u);
}

TEST(Arrays, LoseNothingThatSeveralThreadsAppend) {
  Array array;
  onThreads(4, [&](int) {
    for (int i = 0; i < 500; ++i) array.append(i);
  });
  EXPECT_EQ(array.count(), 2000u);
}

TEST(Arrays, ShowNoReaderAStateInBetweenWhileTheyAreRefilled) {
  Array array{0, 0, 0};
  std::atomic<int> torn{0};
  onThreads(4, [&](int thread) {
    for (int i = 1; i <= 300; ++i) {
      if (thread < 2) array.assign({i, i, i});
      auto seen = array.snapshot();
      if (seen.size() != 3 || !seen[0].isEqual(seen[1]) || !seen[1].isEqual(seen[2])) ++torn;
    }
  });
  EXPECT_EQ(torn, 0);
}

TEST(Arrays, EndEmptyWhenThreadsAppendAndRemoveAsOften) {
  Array array;
  onThreads(4, [&](int thread) {
    for (int i = 0; i < 300; ++i) {
      array.append(std::string(40, static_cast<char>('a' + thread)));
      (void)array.at(0).description();
      array.removeAt(0);
    }
  });
  EXPECT_TRUE(array.empty());
}

TEST(Dictionaries, KeepWhatEachOfSeveralThreadsSets) {
  Dictionary dictionary;
  onThreads(4, [&](int thread) {
    for (int i = 0; i < 200; ++i) {
      dictionary.set(std::to_string(thread) + "/" + std::to_string(i), i);
      dictionary.set("shared", std::string(40, 'x'));
      if (i % 50 == 0) (void)dictionary.mutableCopy();
      (void)dictionary.get("shared").description();
    }
  });
  EXPECT_EQ(dictionary.count(), 801u);
  EXPECT_EQ(dictionary.get("3/199").intValue(), 199);
}

}  // namespace
}  // namespace umsservice::testing
