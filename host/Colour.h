/// Colour, sparingly: it repeats what the words say already, for the eye that looks for it.
///
/// Only on a screen that can show it, and not where the person wants none: `--no-color`, or NO_COLOR with any
/// value in the environment.
#pragma once

#include <string>

namespace umsctl {

enum class Paint {
  None,
  Strong,   ///< heads of tables, folders in a tree
  Good,     ///< green
  Warning,  ///< yellow
  Bad,      ///< red
};

/// No colour from here on. Before any other thread runs.
void forbidColour();

bool outputHasColour();
bool errorHasColour();

/// The text between the sequences that paint it; empty text stays empty.
std::string painted(Paint paint, const std::string& text);

}  // namespace umsctl
