#include "Errand.h"

#include "JsonEvents.h"
#include "Refusal.h"
#include "TextEvents.h"

namespace umsctl {
namespace {

std::unique_ptr<Events> eventsFor(const Wishes& wishes) {
  if (wishes.json) return std::make_unique<JsonEvents>(wishes);
  return std::make_unique<TextEvents>(wishes);
}

}  // namespace

Errand::Errand(const Wishes& wishes, Interrupt& interrupt)
    : wishes_(wishes),
      events_(eventsFor(wishes)),
      interrupt_(interrupt),
      rehearsal_(wishes.dryRun ? std::make_shared<RehearsedFiles>(umsservice::posixFileSystem()) : nullptr),
      files_(rehearsal_ ? std::static_pointer_cast<umsservice::FileSystem>(rehearsal_)
                        : umsservice::posixFileSystem()) {}

void Errand::stopIfCancelled() const {
  if (!interrupt_.happened()) return;
  interrupt_.settle();  // the answer comes before the end
  throw Refusal(ExitStatus::Cancelled, "", "cancelled");
}

}  // namespace umsctl
