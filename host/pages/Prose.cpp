#include "pages/Prose.h"

#include <sstream>

namespace umsctl {

std::vector<Block> blocksOf(const std::string& text) {
  std::vector<Block> blocks;
  bool isNew = true;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    size_t start = line.find_first_not_of(' ');
    if (start == std::string::npos) {
      isNew = true;
      continue;
    }
    bool isExample = start >= 2;
    if (isNew || blocks.back().isExample != isExample) blocks.push_back({isExample, {}});
    isNew = false;
    blocks.back().lines.push_back(line.substr(isExample ? 2 : 0));
  }
  return blocks;
}

}  // namespace umsctl
