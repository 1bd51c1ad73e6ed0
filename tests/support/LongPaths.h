/// A folder whose path is nearly as long as the system takes one, and files in it that no path reaches.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "Sandbox.h"

namespace umsservice::testing {

inline const std::string kShortName = "a.mp3";                     ///< a path of it can be said
inline const std::string kLongName = "a name of some length.mp3";  ///< a path of it is too long
inline constexpr size_t kLongFolder = PATH_MAX - 16;

/// Makes a folder below another whose path, with what is to follow it, is `kLongFolder` bytes long.
inline std::string longFolder(const Sandbox& sandbox, const std::string& below,
                              const std::string& following = "") {
  constexpr size_t kLongestName = 200;
  const size_t length = kLongFolder - following.size();
  std::string path = sandbox.folder(below);
  while (path.size() < length) {
    size_t name = std::min(length - path.size() - 1, kLongestName);
    if (length - path.size() - 1 - name == 1) --name;  // a separator alone would be left
    path += "/" + std::string(name, 'd');
  }
  sandbox.folder((path + following).substr(sandbox.path().size() + 1));
  return path;
}

/// Makes a file in a folder without ever saying its whole path.
inline void putInto(const std::string& folder, const std::string& name, const std::string& bytes) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  const int file = ::openat(descriptor, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  EXPECT_EQ(::write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(file);
  ::close(descriptor);
}

/// The bytes of such a file; "(none)" where there is none.
inline std::string bytesIn(const std::string& folder, const std::string& name) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  const int file = ::openat(descriptor, name.c_str(), O_RDONLY);
  char bytes[64];
  const ssize_t length = ::read(file, bytes, sizeof bytes);
  ::close(file);
  ::close(descriptor);
  return length < 0 ? "(none)" : std::string(bytes, static_cast<size_t>(length));
}

}  // namespace umsservice::testing
