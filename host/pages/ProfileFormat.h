/// The format of the file behind --profile, in words; DefaultFoldersFile reads it.
///
/// Becomes the man page umsctl-profile(5) and a chapter of the reference of the commands. Constant.
#pragma once

#include <string>
#include <vector>

namespace umsctl {

struct ProfileChapter {
  std::string title;
  std::string text;  ///< as the endings of commands: indented lines stand as they are
};

const std::vector<ProfileChapter>& profileFormat();

}  // namespace umsctl
