#include "commands/Df.h"

#include <algorithm>
#include <cstdio>

#include "Amounts.h"
#include "Columns.h"
#include "EscapedName.h"
#include "Output.h"
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

void showBars(Device& device, bool inBytes) {
  using Fit = Columns::Fit;
  Columns table({{"VOLUME"},
                 {"KIND"},
                 {"USED"},
                 {"FREE", Fit::Keep, true},
                 {"TOTAL", Fit::Keep, true},
                 {"FOLDER", Fit::Cut}});
  auto text = [inBytes](uint64_t bytes) { return inBytes ? std::to_string(bytes) : byteText(bytes); };
  for (const Device::Volume& volume : device.volumes()) {
    const uint64_t total = device.service().totalSpace(0, volume.index);
    const uint64_t free = device.service().freeSpace(0, volume.index);
    table.add({std::to_string(volume.index), volume.kind, bar(total, free), text(free), text(total),
               escaped(volume.path)});
  }
  print(table.text(outputColumns(), outputHasColour()));
}

}  // namespace

ExitStatus df(const DfOptions& options) {
  Device device(options.volumes);
  if (outputIsTerminal()) {
    showBars(device, options.inBytes);
    return ExitStatus::AllDone;
  }
  auto text = [&](uint64_t bytes) { return options.inBytes ? std::to_string(bytes) : byteText(bytes); };
  print(row("VOLUME", "KIND", "TOTAL", "FREE", "FOLDER"));
  for (const Device::Volume& volume : device.volumes()) {
    print(row(std::to_string(volume.index), volume.kind, text(device.service().totalSpace(0, volume.index)),
              text(device.service().freeSpace(0, volume.index)), escaped(volume.path)));
  }
  return ExitStatus::AllDone;
}

}  // namespace umsctl
