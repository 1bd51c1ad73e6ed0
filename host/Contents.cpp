#include "Contents.h"

#include <cerrno>
#include <limits>

#include "Paths.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using namespace umsservice;

std::string objectionTo(const FileError& error) {
  if (error.systemNumber == EISDIR) return "it is a folder";
  if (error.systemNumber == EOPNOTSUPP) return "it is no ordinary file";
  return error.words();
}

}  // namespace

Contents::Contents(FileSystem& files, const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    std::string path = absolutePath(argument);
    Dictionary content{{key::kFileName, lastComponent(path)}};
    auto found = files.attributes(path);
    auto opened = files.openForReading(path);
    uint64_t size = found && opened ? found->size : 0;
    if (opened) content.set(key::kFilePath, path);
    // The service reads the size as 32 bits; where it would be cut, the service looks at the file itself.
    if (size <= std::numeric_limits<uint32_t>::max()) content.set(key::kFileSize, size);
    dictionaries.append(content);
    names.push_back(argument.empty() ? "''" : argument);
    sizes.push_back(size);
    objections.push_back(opened ? "" : objectionTo(opened.error()));
  }
}

}  // namespace umsctl
