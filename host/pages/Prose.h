/// The text below a command's options, taken apart: paragraphs that may be broken anywhere, and lines that
/// stand as they are.
#pragma once

#include <string>
#include <vector>

namespace umsctl {

struct Block {
  bool isExample = false;  ///< its lines are commands to type; they were indented
  std::vector<std::string> lines;
};

/// Blank lines and changes of the indentation separate blocks.
std::vector<Block> blocksOf(const std::string& text);

}  // namespace umsctl
