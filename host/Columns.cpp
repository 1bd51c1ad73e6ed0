#include "Columns.h"

#include <algorithm>
#include <limits>

#include "EscapedName.h"

namespace umsctl {
namespace {

constexpr size_t kBetween = 2;
/// A column that gives way keeps this much.
constexpr size_t kLeast = 8;

std::string blanks(size_t count) {
  return std::string(count, ' ');
}

/// The text in lines of at most so many columns, parted at blanks; a word longer than a line is cut.
std::vector<std::string> wrapped(const std::string& text, size_t columns) {
  std::vector<std::string> lines(1);
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(' ', at), text.size());
    const std::string word = shortened(text.substr(at, end - at), columns);
    at = end + 1;
    const bool fits = columnsOf(lines.back()) + 1 + columnsOf(word) <= columns;
    if (lines.back().empty()) {
      lines.back() = word;
    } else if (fits) {
      lines.back() += " " + word;
    } else {
      lines.push_back(word);
    }
  }
  return lines;
}

/// The lines that a cell takes in a column.
std::vector<std::string> fitted(const std::string& text, Columns::Fit fit, size_t columns) {
  if (fit == Columns::Fit::Wrap) return wrapped(text, columns);
  return {fit == Columns::Fit::CutFront ? shortenedAtFront(text, columns) : shortened(text, columns)};
}

/// One line under construction. Blanks are written only once something follows them.
class Line {
 public:
  Line(std::string indent, size_t room, bool isPainted)
      : text_(std::move(indent)), room_(room), isPainted_(isPainted) {}

  void add(const std::string& text, Paint paint, size_t before, size_t after) {
    pending_ += before;
    if (!text.empty() && pending_ < room_) {
      const std::string shown = shortened(text, room_ - pending_);
      text_ += blanks(pending_) + (isPainted_ ? painted(paint, shown) : shown);
      room_ -= pending_ + columnsOf(shown);
      pending_ = 0;
    }
    pending_ += after;
  }

  std::string finished() const { return text_ + "\n"; }

 private:
  std::string text_;
  size_t room_;
  const bool isPainted_;
  size_t pending_ = 0;
};

}  // namespace

std::vector<size_t> Columns::fullWidths() const {
  std::vector<size_t> full(columns_.size(), 0);
  for (const auto& row : rows_) {
    for (size_t i = 0; i < columns_.size(); ++i) full[i] = std::max(full[i], columnsOf(row.at(i).text));
  }
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (full[i] > 0) full[i] = std::max(full[i], columnsOf(columns_[i].head));
  }
  return full;
}

/// The widest of the columns that may give way does, until the line fits or none can any more.
std::vector<size_t> Columns::widths(std::optional<size_t> width) const {
  std::vector<size_t> widths = fullWidths();
  size_t total = 0;
  for (size_t column : widths) total += column > 0 ? column + kBetween : 0;
  while (width && total > *width + kBetween) {
    size_t widest = columns_.size();
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i].fit == Fit::Keep || widths[i] <= kLeast) continue;
      if (widest == columns_.size() || widths[i] > widths[widest]) widest = i;
    }
    if (widest == columns_.size()) break;
    --widths[widest];
    --total;
  }
  return widths;
}

/// One row, in as many lines as its highest cell takes.
std::string Columns::rowText(const std::vector<Cell>& cells, const std::vector<size_t>& widths,
                             const Style& style) const {
  std::vector<std::vector<std::string>> parts;
  size_t height = 1;
  for (size_t i = 0; i < columns_.size(); ++i) {
    parts.push_back(fitted(cells[i].text, columns_[i].fit, widths[i]));
    height = std::max(height, parts.back().size());
  }
  std::string text;
  for (size_t number = 0; number < height; ++number) {
    Line line(style.indent, style.room, style.isPainted);
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (widths[i] == 0) continue;
      const std::string part = number < parts[i].size() ? parts[i][number] : "";
      const size_t missing = widths[i] - std::min(widths[i], columnsOf(part));
      const size_t before = columns_[i].isRight ? missing : 0;
      line.add(part, cells[i].paint, before, missing - before + kBetween);
    }
    text += line.finished();
  }
  return text;
}

std::string Columns::text(std::optional<size_t> width, bool isPainted, const std::string& indent) const {
  if (width) *width -= std::min(*width, indent.size());
  const std::vector<size_t> fitting = widths(width);
  const Style style{indent, width.value_or(std::numeric_limits<size_t>::max()), isPainted};
  std::vector<Cell> heads;
  for (const Column& column : columns_) heads.emplace_back(column.head, Paint::Strong);
  std::string text = rowText(heads, fitting, style);
  for (const auto& row : rows_) text += rowText(row, fitting, style);
  return text;
}

}  // namespace umsctl
