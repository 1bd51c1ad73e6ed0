// What one more episode costs in channels of different sizes: 100, 1,000 and 5,000 episodes of 1 KiB into an
// empty channel, and into one that holds as many already. A handler looks at the channel that comes with each
// episode.
//
//   ums_bench_podcast_copy [FOLDER]    default: /dev/shm
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace {

namespace fs = std::filesystem;
using namespace umsservice;

constexpr int kRounds = 7;
constexpr double kGoal = 2.0;  ///< largest ratio to the smallest channel
constexpr int kSizes[] = {100, 1000, 5000};

class Bench {
 public:
  explicit Bench(fs::path root) : root_(std::move(root)) {
    fs::create_directories(root_ / "in");
    for (int i = 0; i < 2 * kSizes[2]; ++i) std::ofstream(source(i)) << std::string(1024, 'x');
    environment_.notificationCenter = makeNotificationCenter();
    environment_.placementRules = devicePlacementRules();
    environment_.notificationCenter->addObserver(
        kMediaResultNotification, [this](const Notification& posted) {
          auto podcast = posted.userInfo.get(key::kPodcastXmlInfo).dictionary();
          auto episodes = podcast ? podcast->get("children").array() : std::nullopt;
          if (episodes && episodes->at(episodes->count() - 1).dictionary()->contains("Url")) ++seen_;
        });
    service_ = std::make_unique<UMSService>(environment_, "bench");
    service_->addDiskInformation(Dictionary{{key::kDiskType, 1}, {key::kVolumePath, device().string()}});
  }
  ~Bench() { fs::remove_all(root_); }

  /// Median microseconds for one of `count` episodes, behind as many as the channel holds.
  double microsecondsPerEpisode(int count, bool filled) {
    std::vector<double> rounds;
    for (int i = 0; i < kRounds; ++i) {
      fs::remove_all(device());
      fs::create_directories(device());
      if (filled) copy(count, count);
      seen_ = 0;
      auto start = std::chrono::steady_clock::now();
      copy(0, count);
      std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
      if (seen_ != count) {
        std::fprintf(stderr, "%d of %d episodes arrived\n", seen_, count);
        std::exit(1);
      }
      rounds.push_back(time.count() / count);
    }
    std::sort(rounds.begin(), rounds.end());
    return rounds[kRounds / 2];
  }

 private:
  fs::path source(int i) const { return root_ / "in" / ("episode" + std::to_string(i) + ".mp3"); }
  fs::path device() const { return root_ / "device"; }

  void copy(int first, int count) {
    std::vector<Value> episodes;
    for (int i = first; i < first + count; ++i) {
      std::string number = std::to_string(i);
      episodes.emplace_back(Dictionary{{"Title", "Episode " + number},
                                       {"Url", "http://bench.example/feed/episode" + number + ".mp3"},
                                       {"Description", "What happened on day " + number},
                                       {"Length", 1024},
                                       {key::kFilePath, source(i).string()}});
    }
    _serviceinfo record;
    record.serviceID = 1;
    record.mediaType = kMediaPodcast;
    record.destPath = (device() / "Podcast").string();
    record.contents = Array{Dictionary{{"Title", "Bench"}, {"children", Array(std::move(episodes))}}};
    service_->doCopyPodcastContents(record);
  }

  const fs::path root_;
  Environment environment_ = Environment::forRunningSystem();
  std::unique_ptr<UMSService> service_;
  int seen_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  Bench bench(fs::path(argc > 1 ? argv[1] : "/dev/shm") / ("umsservice-bench-" + std::to_string(::getpid())));
  for (bool filled : {false, true}) {
    double smallest = 0;
    for (int count : kSizes) {
      double cost = bench.microsecondsPerEpisode(count, filled);
      if (smallest == 0) smallest = cost;
      std::printf("%5d episodes into %-29s %7.1f us each, %.2f times that of %d (goal: at most %.1f)\n",
                  count, filled ? "a channel of the same size" : "an empty channel", cost, cost / smallest,
                  kSizes[0], kGoal);
    }
  }
}
