// Copying onto a device against `cp`: one large file, and many small ones.
//
//   ums_bench_copy_vs_cp [DISK_FOLDER] [MEMORY_FOLDER]    default: the system's temporary folder and /dev/shm
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "Comparison.h"

namespace {

namespace fs = std::filesystem;
using namespace umsservice::bench;

constexpr uint64_t kLargeFile = 512ull << 20;
constexpr int kSmallFolders = 200;
constexpr int kSmallFilesPerFolder = 100;
constexpr size_t kSmallFile = 8192;

void writeFile(const fs::path& path, uint64_t size) {
  std::ofstream stream(path, std::ios::binary);
  std::string block(1 << 20, '\0');
  for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 2654435761u >> 11);
  for (uint64_t written = 0; written < size; written += block.size()) {
    stream.write(block.data(),
                 static_cast<std::streamsize>(std::min<uint64_t>(block.size(), size - written)));
  }
}

void writeSmallFiles(const fs::path& folder) {
  for (int i = 0; i < kSmallFolders; ++i) {
    fs::path album = folder / ("album" + std::to_string(i));
    fs::create_directories(album);
    for (int j = 0; j < kSmallFilesPerFolder; ++j)
      writeFile(album / ("song" + std::to_string(j) + ".mp3"), kSmallFile);
  }
}

/// A device for each process: an empty folder with a Music folder in it.
class Devices {
 public:
  enum class Worn { Kept, Removed };

  Devices(fs::path root, Worn worn) : root_(std::move(root)), worn_(worn) {}

  std::string current() const { return root_ / "device"; }
  void next() {
    if (worn_ == Worn::Removed) fs::remove_all(current());
    if (fs::exists(current())) fs::rename(current(), root_ / ("worn" + std::to_string(++count_)));
    fs::create_directories(fs::path(current()) / "Music");
    ::sync();
  }

 private:
  const fs::path root_;
  const Worn worn_;
  int count_ = 0;
};

/// Where is copied, and by which programs of ours.
struct Scene {
  std::string name;
  fs::path root;
  fs::path programs;
};

void compareLargeFile(const Scene& scene) {
  const std::string file = scene.root / "large.mp3";
  writeFile(file, kLargeFile);
  Devices devices(scene.root, Devices::Worn::Removed);
  const std::string device = devices.current();
  compare({.name = "512 MiB file, " + scene.name,
           .ours = {scene.programs / "ums_bench_copy", file, device},
           .theirs = {"cp", file, device + "/Music"},
           .before = [&] { devices.next(); },
           .goal = 1.05});
}

void compareSmallFiles(const Scene& scene, Devices::Worn worn) {
  const std::string folder = scene.root / "small";
  writeSmallFiles(folder);
  Devices devices(scene.root, worn);
  const std::string device = devices.current();
  compare({.name = "20,000 files of 8 KiB, " + scene.name,
           .ours = {scene.programs / "ums_bench_copy", folder, device},
           .theirs = {"cp", "-r", folder, device + "/Music"},
           .before = [&] { devices.next(); },
           .goal = 1.00,
           .callsAlone = {scene.programs / "ums_bench_calls", folder, device}});
}

void contestsIn(const fs::path& place, const std::string& name, const fs::path& programs,
                Devices::Worn smallOnes) {
  const Scene scene{name, place / ("umsservice-bench-" + std::to_string(::getpid())), programs};
  fs::create_directories(scene.root);
  compareLargeFile(scene);
  compareSmallFiles(scene, smallOnes);
  fs::remove_all(scene.root);
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path programs = fs::canonical(argv[0]).parent_path();
  fs::path disk = argc > 1 ? argv[1] : fs::temp_directory_path();
  fs::path memory = argc > 2 ? argv[2] : "/dev/shm";
  contestsIn(memory, "memory", programs, Devices::Worn::Removed);
  // A disk's file system looks long for a number that no file had a moment ago: after a removal of many small
  // files, that search would be nearly all that is timed.
  contestsIn(disk, "disk", programs, Devices::Worn::Kept);
}
