/// The real file system with folder listings as a test wants them: in a fixed order, with entries twice, or
/// without the types that a file system need not tell.
#pragma once

#include <algorithm>
#include <functional>

#include "PassingFileSystem.h"

namespace umsservice::testing {

class ListingFileSystem final : public PassingFileSystem {
 public:
  using Entries = std::vector<DirectoryEntry>;

  using PassingFileSystem::PassingFileSystem;

  /// Changes each listing after it was sorted by name.
  std::function<void(const std::string& folder, Entries& entries)> onList;

  FileResult<Entries> list(const std::string& folder) override {
    auto listed = PassingFileSystem::list(folder);
    if (!listed) return listed;
    std::sort(listed->begin(), listed->end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    if (onList) onList(folder, *listed);
    return listed;
  }
};

}  // namespace umsservice::testing
