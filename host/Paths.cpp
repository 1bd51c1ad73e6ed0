#include "Paths.h"

#include <algorithm>
#include <filesystem>

namespace umsctl {

std::string absolutePath(const std::string& path) {
  if (path.empty() || path.front() == '/') return path;
  std::error_code failure;
  std::filesystem::path folder = std::filesystem::current_path(failure);
  return failure ? path : (folder / path).string();  // in a removed folder every path is missing anyway
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
