#include "Subtitles.h"

#include "Output.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;

/// "/films/trip.mp4" has its subtitles in "/films/trip.smi".
std::string companionOf(const std::string& path) {
  size_t name = path.rfind('/') + 1;
  size_t dot = path.rfind('.');
  bool hasExtension = dot != std::string::npos && dot > name;
  return (hasExtension ? path.substr(0, dot) : path) + ".smi";
}

bool isLost(umsservice::FileSystem& files, const std::string& source, const std::string& copy) {
  auto there = files.attributes(source);
  if (!there || there->type != umsservice::FileType::Regular) return false;
  auto arrived = files.attributes(copy);
  return !arrived || arrived->size != there->size;
}

}  // namespace

size_t reportLostSubtitles(Device& device, const Outcomes& outcomes) {
  size_t lost = 0;
  for (const ItemOutcome& outcome : outcomes.all()) {
    if (outcome.kind != ItemOutcome::Kind::Done || !outcome.path || !outcome.destPath) continue;
    std::string source = companionOf(*outcome.path);
    if (!isLost(device.files(), source, companionOf(*outcome.destPath))) continue;
    complain(source, "these subtitles could not be copied");
    ++lost;
  }
  return lost;
}

}  // namespace umsctl
