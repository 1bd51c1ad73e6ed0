#include "Paths.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>

namespace umsctl {
namespace {

/// The folder above a full path as the system goes there: above what a link leads to. Nothing where the path
/// is no folder, and ".." goes nowhere.
std::optional<std::string> folderAbove(const std::string& path) {
  std::error_code failure;
  if (path.empty()) return path;  // the root is above itself
  if (!std::filesystem::is_directory(path, failure)) return std::nullopt;
  const bool isLink = std::filesystem::is_symlink(std::filesystem::symlink_status(path, failure));
  const std::string folder = isLink ? std::filesystem::canonical(path, failure).string() : path;
  if (failure) return std::nullopt;
  return folder.substr(0, folder.rfind('/'));
}

std::string withoutDots(const std::string& path) {
  std::string plain, component;
  bool isFolder = path.ends_with('/');
  std::istringstream components(path);
  while (std::getline(components, component, '/')) {
    if (component.empty()) continue;
    const auto above = component == ".." ? folderAbove(plain) : std::nullopt;
    if (component != ".") plain = above ? *above : plain + "/" + component;
    // What ends with dots is a folder, as what ends with a slash.
    isFolder = path.ends_with('/') || component == "." || above;
  }
  return isFolder || plain.empty() ? plain + "/" : plain;
}

}  // namespace

std::string absolutePath(const std::string& path) {
  if (path.empty()) return path;
  if (path.front() == '/') return withoutDots(path);
  std::error_code failure;
  std::filesystem::path folder = std::filesystem::current_path(failure);
  // In a removed folder every path is missing anyway.
  return failure ? path : withoutDots((folder / path).string());
}

std::string withoutTrailingSlashes(const std::string& path) {
  size_t last = path.find_last_not_of('/');
  if (last == std::string::npos) return path.substr(0, 1);
  return path.substr(0, last + 1);
}

std::string lastComponent(const std::string& path) {
  std::string trimmed = withoutTrailingSlashes(path);
  return trimmed.substr(trimmed.rfind('/') + 1);
}

std::string extensionOf(const std::string& path) {
  std::string name = lastComponent(path);
  size_t dot = name.rfind('.');
  if (dot == std::string::npos) return "";
  std::string extension = name.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return extension;
}

std::string inFolder(const std::string& folder, const std::string& name) {
  return folder + (folder.ends_with('/') ? "" : "/") + name;
}

bool comesBefore(const std::string& one, const std::string& other) {
  auto smaller = [](char left, char right) {
    if (left == right || right == '/') return false;
    return left == '/' || static_cast<unsigned char>(left) < static_cast<unsigned char>(right);
  };
  return std::lexicographical_compare(one.begin(), one.end(), other.begin(), other.end(), smaller);
}

}  // namespace umsctl
