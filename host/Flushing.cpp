#include "Flushing.h"

#include "Events.h"
#include "Interrupt.h"

namespace umsctl {

bool flush(const Errand& errand, umsservice::FileSystem& files, const std::vector<WrittenPlace>& written,
           bool wasCancelled, const std::function<void(const std::function<void()>& speak)>& aside) {
  auto answer = [] { answerInterrupt("the device is still writing"); };
  InterruptAction waiting(errand.interrupt(), wasCancelled ? std::function<void()>() : answer);
  bool isKept = true;
  for (const WrittenPlace& place : written) {
    auto flushed = files.syncVolume(place.path);
    if (flushed) continue;
    isKept = false;
    aside([&] {
      errand.events().complained(place.path, "it may not be written yet: " + flushed.error().words());
    });
  }
  return isKept;
}

}  // namespace umsctl
