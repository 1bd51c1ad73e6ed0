#include "TargetPath.h"

#include "StringPaths.h"

namespace umsservice {

MaybeString targetPath(const MaybeString& folder, const std::string& name) {
  if (!folder || name.find('\0') != std::string::npos) return std::nullopt;
  size_t separator = name.rfind('/');
  std::string last = separator == std::string::npos ? name : name.substr(separator + 1);
  if (last.empty() || last == "." || last == "..") return std::nullopt;
  return joinedPath(*folder, name);
}

}  // namespace umsservice
