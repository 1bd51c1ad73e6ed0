#include "Contents.h"

#include <cerrno>
#include <limits>

#include "Paths.h"
#include "PhaseLine.h"
#include "umsservice/Notifications.h"

namespace umsctl {

using namespace umsservice;

std::string whyUnreadable(FileSystem& files, const std::string& path) {
  auto opened = files.openForReading(path);
  if (opened) return "";
  if (opened.error().systemNumber == EISDIR) return "it is a folder";
  if (opened.error().systemNumber == EOPNOTSUPP) return "it is no ordinary file";
  return opened.error().words();
}

Contents::Contents(const Errand& errand, FileSystem& files, const std::vector<std::string>& arguments,
                   const Objection& objection) {
  PhaseLine line(errand.wishes());
  for (const std::string& argument : arguments) {
    errand.stopIfCancelled();
    line.step("Looking at files", names.size(), arguments.size());
    std::string path = absolutePath(argument);
    std::string cause = objection(files, path);
    Dictionary content{{key::kFileName, lastComponent(path)}};
    auto found = files.attributes(path);
    uint64_t size = found && cause.empty() ? found->size : 0;
    if (cause.empty()) content.set(key::kFilePath, path);
    // The service reads the size as 32 bits; where it would be cut, the service looks at the file itself.
    if (size <= std::numeric_limits<uint32_t>::max()) content.set(key::kFileSize, size);
    dictionaries.append(content);
    names.push_back(argument.empty() ? "''" : argument);
    paths.push_back(path);
    known.insert(path);
    sizes.push_back(size);
    objections.push_back(cause);
  }
}

}  // namespace umsctl
