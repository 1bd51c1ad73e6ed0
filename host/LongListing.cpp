#include "LongListing.h"

#include <algorithm>

#include "Amounts.h"
#include "Columns.h"
#include "EscapedName.h"
#include "ShownTags.h"
#include "umsservice/ServiceInfo.h"

namespace umsctl {
namespace {

using namespace umsservice;
using Fit = Columns::Fit;

/// A column with a tag in it.
struct TagColumn {
  const char* head;
  ShownTag tag;
  Fit fit;
  bool isRight;
};

/// Left out where no file has the tag.
constexpr TagColumn kTitle{"TITLE", ShownTag::Title, Fit::Cut, false};
constexpr TagColumn kArtist{"ARTIST", ShownTag::Artist, Fit::Cut, false};
constexpr TagColumn kChannel{"CHANNEL", ShownTag::Album, Fit::Cut, false};
constexpr TagColumn kTime{"TIME", ShownTag::Duration, Fit::Keep, true};
constexpr TagColumn kPixels{"PIXELS", ShownTag::Pixels, Fit::Keep, true};
constexpr TagColumn kTaken{"TAKEN", ShownTag::DateTaken, Fit::Keep, false};
constexpr TagColumn kCamera{"CAMERA", ShownTag::Camera, Fit::Cut, false};
constexpr TagColumn kCodecs{"CODECS", ShownTag::Codecs, Fit::Cut, false};

std::vector<TagColumn> columnsOfType(uint32_t mediaType) {
  switch (mediaType) {
    case kMediaImage:
      return {kPixels, kTaken, kCamera};
    case kMediaVideo:
      return {kTitle, kArtist, kTime, kPixels, kCodecs};
    case kMediaPodcast:
      return {kTitle, kChannel};
    default:
      return {kTitle, kArtist, kTime};
  }
}

/// A broken file is one line like every other, and says so where its first tag would stand.
std::vector<Cell> rowOf(const Listed& file, const std::string& name, const std::vector<TagColumn>& tags) {
  std::vector<Cell> row{Cell(byteText(file.size)), Cell(escaped(name))};
  for (const TagColumn& column : tags) row.emplace_back(shownTag(file.tags, column.tag));
  if (!file.tags) row[2] = Cell("unreadable", Paint::Bad);
  return row;
}

}  // namespace

std::string longListing(uint32_t mediaType, const std::vector<Listed>& files, const std::string& volumePath,
                        std::optional<size_t> width, bool hasColour) {
  constexpr const char* kHeads[] = {"", "MUSIC", "IMAGE", "VIDEO", "EPISODE"};
  if (files.empty()) return "";
  const std::vector<TagColumn> tags = columnsOfType(mediaType);
  std::vector<Columns::Column> columns{{"SIZE", Fit::Keep, true}, {kHeads[mediaType], Fit::CutFront, false}};
  for (const TagColumn& tag : tags) columns.push_back({tag.head, tag.fit, tag.isRight});
  Columns table(columns);
  for (const Listed& file : files) {
    std::string below = file.path.substr(std::min(file.path.size(), volumePath.size() + 1));
    table.add(rowOf(file, below, tags));
  }
  return table.text(width, hasColour, "  ") + "\n";
}

}  // namespace umsctl
