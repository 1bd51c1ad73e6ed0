#include "Subtitles.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;

bool isLost(umsservice::FileSystem& files, const std::string& source, const std::string& copy) {
  auto there = files.attributes(source);
  if (!there || there->type != umsservice::FileType::Regular) return false;
  auto arrived = files.attributes(copy);
  return !arrived || arrived->size != there->size;
}

}  // namespace

std::string companionOf(const std::string& path) {
  size_t name = path.rfind('/') + 1;
  size_t dot = path.rfind('.');
  bool hasExtension = dot != std::string::npos && dot > name;
  return (hasExtension ? path.substr(0, dot) : path) + ".smi";
}

size_t reportLostSubtitles(Events& events, Device& device, const ItemOutcome& outcome) {
  if (!outcome.path || !outcome.destPath) return 0;
  std::string source = companionOf(*outcome.path);
  if (!isLost(device.files(), source, companionOf(*outcome.destPath))) return 0;
  events.complained(source, "these subtitles could not be copied");
  return 1;
}

size_t reportKeptSubtitles(Events& events, Device& device, const ItemOutcome& outcome) {
  std::string companion = companionOf(outcome.path.value_or(""));
  auto found = device.files().linkAttributes(companion);
  if (!found || found->type == umsservice::FileType::Directory) return 0;
  events.complained(companion, "these subtitles could not be deleted");
  return 1;
}

}  // namespace umsctl
