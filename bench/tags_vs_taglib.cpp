// Listing a device with tags against a bare TagLib loop over the same 5,000 small tagged files, in turn, in
// one process.
//
//   ums_bench_tags_vs_taglib SOURCE.mp3 [FOLDER]    SOURCE is copied; default: the system's temporary folder
#include <audioproperties.h>
#include <fileref.h>
#include <tag.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TagReader.h"
#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace {

namespace fs = std::filesystem;
using namespace umsservice;

constexpr int kFiles = 5000;
constexpr int kFilesPerFolder = 50;
constexpr int kRounds = 9;

void makeDevice(const fs::path& device, const fs::path& source) {
  for (int i = 0; i < kFiles; ++i) {
    fs::path album = device / "Music" / ("album" + std::to_string(i / kFilesPerFolder));
    if (i % kFilesPerFolder == 0) fs::create_directories(album);
    fs::copy_file(source, album / ("song" + std::to_string(i) + ".mp3"));
  }
}

/// What anybody who wants the tags has to do at least.
size_t bareLoop(const fs::path& device) {
  size_t read = 0;
  for (const auto& entry : fs::recursive_directory_iterator(device)) {
    if (!entry.is_regular_file()) continue;
    TagLib::FileRef file(entry.path().c_str());
    if (file.isNull()) continue;
    const TagLib::Tag* tag = file.tag();
    std::string all = tag->title().to8Bit(true) + tag->artist().to8Bit(true) + tag->album().to8Bit(true) +
                      tag->genre().to8Bit(true);
    auto length = static_cast<size_t>(file.audioProperties()->lengthInMilliseconds());
    if (all.size() + tag->track() + tag->year() + length > 0) ++read;
  }
  return read;
}

double secondsOf(const std::function<void()>& step) {
  auto start = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void contest(UMSService& service, const fs::path& device) {
  std::vector<double> ratios, noise, ours, theirs;
  size_t listed = 0;
  size_t looped = 0;
  for (int round = 0; round < kRounds; ++round) {
    double first = secondsOf([&] {
      MaybeArray list = service.fileInformationList(0, kMediaMusic, 0);
      listed = list ? list->count() : 0;
    });
    double second = secondsOf([&] { looped = bareLoop(device); });
    double third = secondsOf([&] { looped = bareLoop(device); });
    ratios.push_back(first / second);
    noise.push_back(third / second);
    ours.push_back(first);
    theirs.push_back(second);
  }
  std::printf(
      "tags of %zu / %zu files: ours %.1f ms  theirs %.1f ms  ours/theirs %.3f (goal 1.10)  theirs/theirs "
      "%.3f\n",
      listed, looped, median(ours) * 1000, median(theirs) * 1000, median(ratios), median(noise));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s SOURCE.mp3 [FOLDER]\n", argv[0]);
    return 2;
  }
  fs::path device = (argc > 2 ? fs::path(argv[2]) : fs::temp_directory_path()) /
                    ("umsservice-bench-" + std::to_string(::getpid()));
  makeDevice(device, argv[1]);
  Environment environment = Environment::forRunningSystem();
  environment.placementRules = devicePlacementRules();
  environment.mediaInfoFactory = std::make_shared<umsctl::TagReader>(environment.fileSystem);
  UMSService service(environment, "bench");
  service.addDiskInformation(Dictionary{{key::kDiskType, 1}, {key::kVolumePath, device.string()}});
  contest(service, device);
  fs::remove_all(device);
}
