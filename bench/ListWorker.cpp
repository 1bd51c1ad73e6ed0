// The process that is timed against `find`: one listing of a device made of one folder.
//
//   ums_bench_list names|scan FOLDER
#include <cstdio>
#include <string>

#include "umsservice/Notifications.h"
#include "umsservice/UMSService.h"

int main(int argc, char** argv) {
  using namespace umsservice;
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s names|scan FOLDER\n", argv[0]);
    return 2;
  }
  Environment environment = Environment::forRunningSystem();
  environment.placementRules = devicePlacementRules();
  auto service = std::make_shared<UMSService>(environment, "bench");
  service->addDiskInformation(Dictionary{{key::kDiskType, 1}, {key::kVolumePath, argv[2]}});
  MaybeArray found = std::string(argv[1]) == "names" ? service->fileNameList(0, kMediaMusic, 0)
                                                     : service->subpathsAtDisk(0, 0, false);
  std::printf("%zu\n", found ? found->count() : 0);
  std::fflush(stdout);
  // What a host keeps it would not free here; `find` keeps nothing either.
  std::quick_exit(found ? 0 : 1);
}
