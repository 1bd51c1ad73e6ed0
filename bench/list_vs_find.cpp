// Listing a device against `find`, and the no-media rule against a filter that knows no better.
//
//   ums_bench_list_vs_find [FOLDER]    default: the system's temporary folder
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "Comparison.h"
#include "umsservice/UMSService.h"

namespace {

namespace fs = std::filesystem;
using namespace umsservice;
using namespace umsservice::bench;

constexpr int kFilesPerFolder = 100;
constexpr int kMarkers = 500;

/// Folders of 100 small files each; the first 500 folders carry a marker, so that the rule has work to do.
void makeDevice(const fs::path& device, int files, bool markers) {
  for (int i = 0; i < files / kFilesPerFolder; ++i) {
    fs::path album = device / ("artist" + std::to_string(i / 20)) / ("album" + std::to_string(i));
    fs::create_directories(album);
    for (int j = 0; j < kFilesPerFolder; ++j)
      std::ofstream(album / ("song" + std::to_string(j) + ".mp3")) << j;
    if (markers && i < kMarkers) std::ofstream(album / ".nomedia") << "";
  }
}

double secondsOf(const std::function<void()>& step) {
  auto start = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::vector<std::string> naivelyKept(const std::vector<std::string>& paths,
                                     const std::vector<std::string>& folders) {
  std::vector<std::string> kept;
  for (const std::string& path : paths) {
    bool hidden = std::any_of(folders.begin(), folders.end(),
                              [&](const auto& folder) { return path.starts_with(folder); });
    if (!hidden) kept.push_back(path);
  }
  return kept;
}

/// In one process, in turn: the library's rule and the naive filter over the same 200,000 paths.
void noMediaStep(UMSService& service) {
  std::vector<std::string> paths, folders;
  Array pathList, markerList;
  std::vector<Value> pathValues, markerValues;
  for (int i = 0; i < 2000; ++i) {
    std::string folder = "artist" + std::to_string(i / 20) + "/album" + std::to_string(i);
    for (int j = 0; j < kFilesPerFolder; ++j) paths.push_back(folder + "/song" + std::to_string(j) + ".mp3");
    if (i % 4 == 0) folders.push_back(folder);
  }
  for (const auto& path : paths) pathValues.emplace_back(path);
  for (const auto& folder : folders) markerValues.emplace_back(folder + "/.nomedia");
  pathList.assign(pathValues);
  markerList.assign(markerValues);
  std::vector<double> ratios;
  size_t ours = 0;
  size_t theirs = 0;
  for (int round = 0; round < 7; ++round) {
    double naive = secondsOf([&] { theirs = naivelyKept(paths, folders).size(); });
    double step = secondsOf([&] { ours = service.removeFileListByNoMedia(pathList, markerList)->count(); });
    ratios.push_back(step / naive);
  }
  std::sort(ratios.begin(), ratios.end());
  std::printf("no-media rule, 200,000 paths, %zu markers: ours/naive %.4f (goal 0.03), kept %zu / %zu\n",
              folders.size(), ratios[ratios.size() / 2], ours, theirs);
}

}  // namespace

int main(int argc, char** argv) {
  std::string worker = (fs::canonical(argv[0]).parent_path() / "ums_bench_list").string();
  fs::path root = (argc > 1 ? fs::path(argv[1]) : fs::temp_directory_path()) /
                  ("umsservice-bench-" + std::to_string(::getpid()));
  for (int files : {50'000, 200'000, 800'000}) {
    fs::path device = root / std::to_string(files);
    makeDevice(device, files, true);
    std::string count = std::to_string(files);
    const int rounds = files > 500'000 ? 5 : 11;
    compare({"names of " + count + " files", {worker, "names", device}, {"find", device}, {}, rounds, 1.10});
    compare(
        {"  and every path written", {worker, "names", device, "written"}, {"find", device}, {}, rounds, 0});
    if (files == 200'000) {
      compare({"scan with sizes of " + count + " files, written",
               {worker, "scan", device, "written"},
               {"find", device, "-printf", "%p %s\n"},
               {},
               rounds,
               1.00});
    }
    fs::remove_all(device);
  }
  fs::remove_all(root);
  UMSService service(Environment::forRunningSystem(), "bench");
  noMediaStep(service);
}
