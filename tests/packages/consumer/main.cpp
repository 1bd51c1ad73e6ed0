#include <umsservice/UMSService.h>

#include <cstdio>

int main(int, char** argv) {
  umsservice::Environment environment = umsservice::Environment::forRunningSystem();
  environment.placementRules = umsservice::devicePlacementRules();
  umsservice::UMSService service(environment, "usb-1");
  service.addDiskInformation(umsservice::Dictionary{{"diskType", 1}, {"volumePath", argv[1]}});
  std::printf("%zu songs\n", service.fileNameList(0, umsservice::kMediaMusic, 0)->count());
}
