#include <cerrno>

#include "MediaRunTest.h"

namespace umsservice::testing {
namespace {

/// Every kind of call on files. `FileCall::Close` is the last.
std::vector<FileCall> everyCall() {
  std::vector<FileCall> calls;
  for (int call = 0; call <= static_cast<int>(FileCall::Close); ++call)
    calls.push_back(static_cast<FileCall>(call));
  return calls;
}

/// One run with one failing call, on a device that holds files of every kind of conflict.
class FaultedRun {
 public:
  FaultedRun(bool toMac, FileCall call, int n) : toMac_(toMac) {
    service_->addDiskInformation(disk(1, internal_));
    service_->setConfirmDelegate(surroundings_.delegate);
    surroundings_.level->level = 0;
    surroundings_.delegate->onAsk = [](const std::string& path) {
      return ScriptedDelegate::Answer{true, !path.ends_with("keep.mp3"), false};
    };
    Array contents = makeContents();
    before_ = filesOfVolume();
    callsBefore_ = surroundings_.files->count(call);
    surroundings_.files->failNth(call, n, EIO);
    run(contents);
    wasReached_ = surroundings_.files->count(call) - callsBefore_ >= static_cast<size_t>(n);
  }

  /// Whether the run made enough calls of the kind for one of them to fail.
  bool wasReached() const { return wasReached_; }

  void expectEveryItemCountedOnce() const {
    auto outcomes = surroundings_.items->outcomes();
    ASSERT_EQ(outcomes.size(), count_);
    for (size_t i = 0; i < count_; ++i) EXPECT_EQ(outcomes[i].index, i);
  }

  void expectNothingLost() const {
    for (const auto& [path, bytes] : before_) EXPECT_EQ(bytesOf(path), bytes) << path;
  }

  /// What the observer called done is on the volume.
  void expectDoneIsThere() const {
    for (const ItemOutcome& outcome : surroundings_.items->outcomes()) {
      if (outcome.kind != ItemOutcome::Kind::Done) continue;
      EXPECT_EQ(bytesOf(*outcome.destPath), bytesOf(*outcome.path)) << *outcome.path;
    }
  }

  /// The last notification about the run closes it: finished, cancelled or the result of a full volume.
  void expectClosed() const {
    auto posted = surroundings_.notifications.named(kTransferProgressNotification);
    ASSERT_FALSE(posted.empty());
    EXPECT_EQ(posted.back().userInfo.get(key::kTransferStatus).unsignedIntValue(), kTransferFinished);
  }

 private:
  const Sandbox& box() const { return surroundings_.sandbox; }
  std::string destination(const std::string& name) const {
    return (toMac_ ? "mac/" : "internal/Music/") + name;
  }

  Array makeContents() {
    box().file(destination("keep.mp3"), "existing, to be kept");
    box().file(destination("folder.mp3/inside"), "inside a folder");
    const std::string itself = box().file(destination("itself.mp3"), "source and destination at once");
    box().file("internal/unrelated.txt", "unrelated");
    box().file("in/video.smi", "subtitles");
    Array contents{plainItem("first.mp3"),        plainItem("keep.mp3"),  plainItem("folder.mp3"),
                   content(itself, "itself.mp3"), plainItem("video.mp4"), Value(),
                   plainItem("last.mp3")};
    count_ = contents.count();
    return contents;
  }
  Dictionary plainItem(const std::string& name) {
    return content(box().file("in/" + name, std::string(10'000, name.front())), name);
  }

  std::map<std::string, std::string> filesOfVolume() const {
    std::map<std::string, std::string> found;
    for (const std::string& root : {std::string("internal"), std::string("mac"), std::string("in")}) {
      if (!exists(box().at(root))) continue;
      for (const std::string& path : treeOf(box().at(root))) {
        if (!path.ends_with("/")) found[box().at(root) + "/" + path] = bytesOf(box().at(root) + "/" + path);
      }
    }
    return found;
  }

  void run(const Array& contents) {
    _serviceinfo request;
    request.serviceID = 7;
    request.command = toMac_ ? kCommandCopyFile : kCommandCopyToDevice;
    request.contents = contents;
    request.mediaType = kMediaVideo;
    if (toMac_) request.destPath = box().at("mac");
    service_->doUmsFileService(&request);
  }

  const bool toMac_;
  TestSurroundings surroundings_;
  const std::string internal_ = surroundings_.sandbox.folder("internal");
  const std::shared_ptr<UMSService> service_ = surroundings_.makeService();
  std::map<std::string, std::string> before_;
  size_t count_ = 0;
  size_t callsBefore_ = 0;
  bool wasReached_ = false;
};

void failEveryCallOnce(bool toMac) {
  int runs = 0;
  for (FileCall call : everyCall()) {
    for (int n = 1;; ++n) {
      SCOPED_TRACE("call " + std::to_string(static_cast<int>(call)) + ", time " + std::to_string(n));
      FaultedRun run(toMac, call, n);
      run.expectEveryItemCountedOnce();
      run.expectNothingLost();
      run.expectDoneIsThere();
      run.expectClosed();
      ++runs;
      if (!run.wasReached()) break;
      ASSERT_LT(n, 500) << "a run of seven files makes fewer calls of one kind";
    }
  }
  EXPECT_GT(runs, 60);
}

TEST(MediaCopyFaults, NeverLoseAFileOrCountAnItemTwiceOnTheWayToADevice) {
  failEveryCallOnce(false);
}

TEST(MediaCopyFaults, NeverLoseAFileOrCountAnItemTwiceOnTheWayToTheComputer) {
  failEveryCallOnce(true);
}

}  // namespace
}  // namespace umsservice::testing
