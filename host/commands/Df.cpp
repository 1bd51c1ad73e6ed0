#include "commands/Df.h"

#include <algorithm>
#include <cstdio>

#include "Amounts.h"
#include "Columns.h"
#include "EscapedName.h"
#include "Terminal.h"

namespace umsctl {
namespace {

std::string row(const std::string& index, const std::string& kind, const std::string& total,
                const std::string& free, const std::string& path) {
  char columns[128];
  std::snprintf(columns, sizeof columns, "%-6s  %-8s  %14s  %14s  ", index.c_str(), kind.c_str(),
                total.c_str(), free.c_str());
  return columns + path + "\n";
}

/// How full a volume is. A bar shows the last free bytes as free: only a full volume has a full bar.
Cell bar(uint64_t total, uint64_t free) {
  constexpr size_t kWidth = 20;
  const uint64_t used = total - std::min(total, free);
  const double fraction = total > 0 ? static_cast<double>(used) / static_cast<double>(total) : 0;
  std::string shape(static_cast<size_t>(fraction * kWidth), '=');
  shape.resize(kWidth, ' ');
  char percent[8];
  std::snprintf(percent, sizeof percent, "%4d%%", static_cast<int>(fraction * 100));
  const Paint paint = fraction >= 0.95 ? Paint::Bad : fraction >= 0.8 ? Paint::Warning : Paint::Good;
  return {"[" + shape + "]" + percent, paint};
}

void showBars(Device& device, bool inBytes, Events& events) {
  using Fit = Columns::Fit;
  Columns table({{"VOLUME"},
                 {"KIND"},
                 {"USED"},
                 {"FREE", Fit::Keep, true},
                 {"TOTAL", Fit::Keep, true},
                 {"FOLDER", Fit::CutFront}});
  auto text = [inBytes](uint64_t bytes) { return inBytes ? std::to_string(bytes) : byteText(bytes); };
  for (const Device::Volume& volume : device.volumes()) {
    const uint64_t total = device.service().totalSpace(0, volume.index);
    const uint64_t free = device.service().freeSpace(0, volume.index);
    table.add({std::to_string(volume.index), volume.kind, bar(total, free), text(free), text(total),
               escaped(volume.path)});
  }
  events.remarked(table.text(outputColumns(), outputHasColour()));
}

}  // namespace

ExitStatus df(const DfOptions& options, const Errand& errand) {
  Device device(options.volumes, errand);
  if (outputIsTerminal() && !errand.wishes().json) {
    showBars(device, options.inBytes, errand.events());
    return ExitStatus::AllDone;
  }
  auto text = [&](uint64_t bytes) { return options.inBytes ? std::to_string(bytes) : byteText(bytes); };
  errand.events().remarked(row("VOLUME", "KIND", "TOTAL", "FREE", "FOLDER"));
  for (const Device::Volume& volume : device.volumes()) {
    const uint64_t total = device.service().totalSpace(0, volume.index);
    const uint64_t free = device.service().freeSpace(0, volume.index);
    errand.events().shown(
        {row(std::to_string(volume.index), volume.kind, text(total), text(free), escaped(volume.path)),
         "volume",
         {{"index", uint64_t{volume.index}},
          {"kind", volume.kind},
          {"path", volume.path},
          {"total", total},
          {"free", free}}});
  }
  return ExitStatus::AllDone;
}

}  // namespace umsctl
