/// A table in columns that line up, whatever script its texts are in, and that fits a screen.
///
/// Takes texts that are already escaped. Used by one thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Colour.h"

namespace umsctl {

/// One field of a row.
struct Cell {
  Cell(std::string shown) : text(std::move(shown)) {}
  Cell(const char* shown) : text(shown) {}
  Cell(std::string shown, Paint painted) : text(std::move(shown)), paint(painted) {}

  std::string text;
  Paint paint = Paint::None;
};

class Columns {
 public:
  /// What becomes of a column where the screen is too narrow for all of them.
  enum class Fit {
    Keep,      ///< it stays as it is
    Cut,       ///< long texts end with "..."
    CutFront,  ///< long texts begin with "...", as paths
    Wrap,      ///< long texts go on below
  };
  struct Column {
    std::string head;
    Fit fit = Fit::Keep;
    bool isRight = false;  ///< as numbers are read
  };

  explicit Columns(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// As many cells as there are columns.
  void add(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }

  /// Heads and rows, each line with its end and after `indent`. A column without a single text is left out.
  /// Without a width nothing is cut or wrapped; with one, no line takes more columns of the screen.
  std::string text(std::optional<size_t> width, bool isPainted, const std::string& indent = "") const;

 private:
  /// What all lines have in common.
  struct Style {
    std::string indent;
    size_t room;  ///< behind the indent
    bool isPainted;
  };

  std::vector<size_t> fullWidths() const;
  std::vector<size_t> widths(std::optional<size_t> width) const;

  std::string rowText(const std::vector<Cell>& cells, const std::vector<size_t>& widths,
                      const Style& style) const;

  const std::vector<Column> columns_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace umsctl
