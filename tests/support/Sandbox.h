/// Real folders and real small volumes for tests; everything is gone when the objects are.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace umsservice::testing {

/// A fresh folder of its own.
class Sandbox {
 public:
  Sandbox();
  ~Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;

  const std::string& path() const { return path_; }
  /// Full path of something in the sandbox.
  std::string at(const std::string& relative) const { return path_ + "/" + relative; }
  /// Makes a folder (with those above it) and gives its full path.
  std::string folder(const std::string& relative) const;
  /// Makes a file with those bytes and gives its full path.
  std::string file(const std::string& relative, const std::string& bytes) const;
  /// Makes a file of `size` bytes in which every position can be told from its neighbours.
  std::string patternFile(const std::string& relative, uint64_t size) const;

 private:
  std::string path_;
};

/// A real file system of a given size, mounted in the test's private mount namespace.
class TmpfsVolume {
 public:
  /// False where the system forbids mounting; a test that needs a volume then skips and says so.
  static bool isPossible();

  /// Mounts on a folder that exists.
  TmpfsVolume(const std::string& path, uint64_t bytes);
  ~TmpfsVolume();
  TmpfsVolume(const TmpfsVolume&) = delete;
  TmpfsVolume& operator=(const TmpfsVolume&) = delete;

  const std::string& path() const { return path_; }
  /// Writes a file that leaves exactly `bytes` (rounded up to whole pages) free.
  void fillUpTo(uint64_t bytes) const;
  uint64_t freeBytes() const;
  /// Sets room aside behind what a file holds, as a disk does when it is asked to; the file stays as long.
  void setAside(const std::string& file, uint64_t bytes) const;
  /// Takes the volume away, as a pulled cable does.
  void vanish();

 private:
  std::string path_;
  bool mounted_ = true;
};

/// Puts the process into a mount namespace of its own; called once, before any thread.
void enterPrivateMountNamespace();

/// Takes root's right to pass over file permissions from this thread and from threads it starts.
class WithoutRootPowers {
 public:
  WithoutRootPowers();
  ~WithoutRootPowers();
  WithoutRootPowers(const WithoutRootPowers&) = delete;
  WithoutRootPowers& operator=(const WithoutRootPowers&) = delete;

 private:
  uint32_t before_[6];
};

std::string bytesOf(const std::string& path);
/// The room that a file takes up on its volume.
uint64_t bytesOnDisk(const std::string& path);
bool exists(const std::string& path);
/// Every file and folder below a folder, relative and sorted; folders end with "/".
std::vector<std::string> treeOf(const std::string& folder);

}  // namespace umsservice::testing

/// Skips where no volume can be mounted.
#define REQUIRE_TMPFS_VOLUMES()                          \
  if (!::umsservice::testing::TmpfsVolume::isPossible()) \
  GTEST_SKIP() << "this system forbids mounting a small volume"
