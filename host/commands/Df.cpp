#include "commands/Df.h"

#include <cstdio>

#include "Amounts.h"
#include "EscapedName.h"
#include "Output.h"

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

ExitStatus df(const DfOptions& options) {
  Device device(options.volumes);
  auto text = [&](uint64_t bytes) { return options.inBytes ? std::to_string(bytes) : byteText(bytes); };
  print(row("VOLUME", "KIND", "TOTAL", "FREE", "FOLDER"));
  for (const Device::Volume& volume : device.volumes()) {
    print(row(std::to_string(volume.index), volume.kind, text(device.service().totalSpace(0, volume.index)),
              text(device.service().freeSpace(0, volume.index)), escaped(volume.path)));
  }
  return ExitStatus::AllDone;
}

}  // namespace umsctl
