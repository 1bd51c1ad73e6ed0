#include "Sandbox.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace umsservice::testing {
namespace {

bool haveMountNamespace = false;

void writeFile(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

void writeProcFile(const char* path, const std::string& text) {
  std::ofstream stream(path);
  stream << text;
}

}  // namespace

void enterPrivateMountNamespace() {
  const auto user = getuid();
  const auto group = getgid();
  if (unshare(CLONE_NEWNS) != 0) {
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return;
    writeProcFile("/proc/self/setgroups", "deny");
    writeProcFile("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    writeProcFile("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
  }
  haveMountNamespace = mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

Sandbox::Sandbox() {
  std::string pattern = (std::filesystem::temp_directory_path() / "umsservice-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a sandbox");
  path_ = std::filesystem::canonical(pattern).string();
}

Sandbox::~Sandbox() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string Sandbox::folder(const std::string& relative) const {
  std::filesystem::create_directories(at(relative));
  return at(relative);
}

std::string Sandbox::file(const std::string& relative, const std::string& bytes) const {
  writeFile(at(relative), bytes);
  return at(relative);
}

std::string Sandbox::patternFile(const std::string& relative, uint64_t size) const {
  // Made once and repeated with a prime period: byte by byte would be slow under a sanitizer.
  static const std::string block = [] {
    std::string bytes(65521, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 2654435761u) >> 13);
    return bytes;
  }();
  std::string bytes;
  bytes.reserve(size);
  while (bytes.size() < size) bytes.append(block, 0, std::min<uint64_t>(block.size(), size - bytes.size()));
  return file(relative, bytes);
}

bool TmpfsVolume::isPossible() {
  if (!haveMountNamespace) return false;
  static const bool possible = [] {
    Sandbox sandbox;
    if (mount("tmpfs", sandbox.path().c_str(), "tmpfs", 0, "size=64k") != 0) return false;
    return umount2(sandbox.path().c_str(), MNT_DETACH) == 0;
  }();
  return possible;
}

TmpfsVolume::TmpfsVolume(const std::string& path, uint64_t bytes) : path_(path) {
  std::string options = "size=" + std::to_string(bytes);
  if (mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) != 0)
    throw std::runtime_error("cannot mount " + path);
}

TmpfsVolume::~TmpfsVolume() {
  vanish();
}

void TmpfsVolume::vanish() {
  if (mounted_) umount2(path_.c_str(), MNT_DETACH);
  mounted_ = false;
}

uint64_t TmpfsVolume::freeBytes() const {
  struct statvfs space {};
  if (statvfs(path_.c_str(), &space) != 0) return 0;
  return uint64_t{space.f_bavail} * space.f_frsize;
}

void TmpfsVolume::fillUpTo(uint64_t bytes) const {
  uint64_t free = freeBytes();
  if (free > bytes) writeFile(path_ + "/.filler", std::string(free - bytes, 'x'));
}

void TmpfsVolume::setAside(const std::string& file, uint64_t bytes) const {
  int descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
  int result = ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes));
  ::close(descriptor);
  if (result != 0) throw std::runtime_error("cannot set room aside in " + file);
}

WithoutRootPowers::WithoutRootPowers() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[2];
  static_assert(sizeof data == sizeof before_);
  if (syscall(SYS_capget, &header, data) != 0) throw std::runtime_error("cannot read capabilities");
  std::memcpy(before_, data, sizeof data);
  data[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
  if (syscall(SYS_capset, &header, data) != 0) throw std::runtime_error("cannot give up capabilities");
}

WithoutRootPowers::~WithoutRootPowers() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  syscall(SYS_capset, &header, before_);
}

std::string bytesOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary | std::ios::ate);
  if (!stream) return std::string();
  std::string bytes(static_cast<size_t>(stream.tellg()), '\0');
  stream.seekg(0);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(stream.gcount()));
  return bytes;
}

uint64_t bytesOnDisk(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? static_cast<uint64_t>(status.st_blocks) * 512 : 0;
}

bool exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

std::vector<std::string> treeOf(const std::string& folder) {
  std::vector<std::string> entries;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    std::string relative = entry.path().lexically_relative(folder).string();
    entries.push_back(entry.is_directory() ? relative + "/" : relative);
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

}  // namespace umsservice::testing
