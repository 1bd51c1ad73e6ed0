#include "StringPaths.h"

#include <algorithm>

namespace umsservice {
namespace {

std::string_view withoutTrailingSeparators(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

std::string_view lastComponentOf(std::string_view path) {
  path = withoutTrailingSeparators(path);
  if (path == "/") return path;
  size_t separator = path.rfind('/');
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// Every run of separators as one, and none at the end.
std::string withSingleSeparators(std::string_view path) {
  path = withoutTrailingSeparators(path);
  if (path.find("//") == std::string_view::npos) return std::string(path);
  std::string tidy;
  for (char c : path) {
    if (c != '/' || !tidy.ends_with('/')) tidy += c;
  }
  return tidy;
}

/// Where the extension's dot stands within a component; npos when there is none. A leading dot hides a name
/// and does not begin an extension, and the folder above has none.
size_t extensionDot(std::string_view component) {
  size_t dot = component.rfind('.');
  return dot == 0 || component == ".." ? std::string_view::npos : dot;
}

}  // namespace

std::vector<std::string> pathComponents(std::string_view path) {
  std::vector<std::string> components;
  if (path.empty()) return components;
  if (path.front() == '/') components.emplace_back("/");
  size_t start = 0;
  while (start < path.size()) {
    size_t end = std::min(path.find('/', start), path.size());
    if (end > start) components.emplace_back(path.substr(start, end - start));
    start = end + 1;
  }
  bool onlySeparators = path.find_first_not_of('/') == std::string_view::npos;
  if (path.back() == '/' && !onlySeparators) components.emplace_back("/");
  return components;
}

std::string lastPathComponent(std::string_view path) {
  return std::string(lastComponentOf(path));
}

std::string pathExtension(std::string_view path) {
  return std::string(pathExtensionIn(path));
}

std::string_view pathExtensionIn(std::string_view path) {
  std::string_view component = lastComponentOf(path);
  size_t dot = extensionDot(component);
  return dot == std::string_view::npos ? std::string_view() : component.substr(dot + 1);
}

std::string stringByDeletingLastPathComponent(std::string_view path) {
  path = withoutTrailingSeparators(path);
  size_t separator = path.rfind('/');
  if (separator == std::string_view::npos) return std::string();
  return withSingleSeparators(path.substr(0, separator + 1));
}

std::string stringByDeletingPathExtension(std::string_view path) {
  path = withoutTrailingSeparators(path);
  std::string_view component = lastComponentOf(path);
  size_t dot = extensionDot(component);
  size_t deleted = dot == std::string_view::npos ? 0 : component.size() - dot;
  return withSingleSeparators(path.substr(0, path.size() - deleted));
}

std::string joinedPath(std::string_view folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  return path.append(folder).append("/").append(name);
}

bool isHiddenName(std::string_view name) {
  return !name.empty() && name.front() == '.';
}

}  // namespace umsservice
