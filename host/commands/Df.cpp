#include "commands/Df.h"

#include <cstdio>

#include "Amounts.h"
#include "EscapedName.h"

namespace umsctl {
namespace {

std::string row(const std::string& index, const std::string& kind, const std::string& total,
                const std::string& free, const std::string& path) {
  char columns[128];
  std::snprintf(columns, sizeof columns, "%-6s  %-8s  %14s  %14s  ", index.c_str(), kind.c_str(),
                total.c_str(), free.c_str());
  return columns + path + "\n";
}

}  // namespace

ExitStatus df(const DfOptions& options, const Errand& errand) {
  Device device(options.volumes, errand);
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
