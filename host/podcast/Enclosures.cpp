#include "podcast/Enclosures.h"

#include <algorithm>

namespace umsctl {
namespace {

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string decoded(const std::string& text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    int high = text[i] == '%' && i + 2 < text.size() ? digitOf(text[i + 1]) : -1;
    int low = high >= 0 ? digitOf(text[i + 2]) : -1;
    plain += low >= 0 ? static_cast<char>(high * 16 + low) : text[i];
    if (low >= 0) i += 2;
  }
  return plain;
}

bool isFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

}  // namespace

std::vector<std::string> downloadNames(const std::string& url) {
  std::string path = url.substr(0, url.find_first_of("?#"));
  if (size_t scheme = path.find("://"); scheme != std::string::npos) {
    size_t slash = path.find('/', scheme + 3);
    path = slash == std::string::npos ? "" : path.substr(slash);
  }
  std::string written = path.substr(path.rfind('/') + 1);
  std::vector<std::string> names;
  for (const std::string& name : {decoded(written), written}) {
    if (isFileName(name) && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

std::optional<std::string> downloadOf(umsservice::FileSystem& files, const std::string& folder,
                                      const std::string& url) {
  for (const std::string& name : downloadNames(url)) {
    std::string path = folder + "/" + name;
    if (files.linkAttributes(path)) return path;
  }
  return std::nullopt;
}

}  // namespace umsctl
