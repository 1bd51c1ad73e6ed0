// The process that is timed against `find`: one listing of a device made of one folder.
//
//   ums_bench_list names|scan FOLDER            the listing, in the host's hands
//   ums_bench_list names|scan FOLDER written    and every path (and size) of it read and written, as `find`
//   does
#include <cstdio>
#include <string>

#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

namespace {

using namespace umsservice;

void write(const Array& listing, bool withSizes) {
  constexpr size_t kBuffer = 64 * 1024;
  std::string text;
  const size_t count = listing.count();
  for (size_t i = 0; i < count; ++i) {
    const Dictionary file = *listing.at(i).dictionary();
    text += *file.get(key::kFilePath).stringIfAny();
    if (withSizes) text += " " + std::to_string(file.get(key::kFileSize).unsignedLongLongValue());
    text += '\n';
    if (text.size() < kBuffer && i + 1 < count) continue;
    std::fwrite(text.data(), 1, text.size(), stdout);
    text.clear();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s names|scan FOLDER [written]\n", argv[0]);
    return 2;
  }
  Environment environment = Environment::forRunningSystem();
  environment.placementRules = devicePlacementRules();
  auto service = std::make_shared<UMSService>(environment, "bench");
  service->addDiskInformation(Dictionary{{key::kDiskType, 1}, {key::kVolumePath, argv[2]}});
  const bool scans = std::string(argv[1]) == "scan";
  MaybeArray found = scans ? service->subpathsAtDisk(0, 0, false) : service->fileNameList(0, kMediaMusic, 0);
  if (found && argc > 3) write(*found, scans);
  if (found && argc == 3) std::printf("%zu\n", found->count());
  std::fflush(stdout);
  // What a host keeps it would not free here; `find` keeps nothing either.
  std::quick_exit(found ? 0 : 1);
}
