#include "Errand.h"

#include "JsonEvents.h"
#include "TextEvents.h"

namespace umsctl {
namespace {

std::unique_ptr<Events> eventsFor(const Wishes& wishes) {
  if (wishes.json) return std::make_unique<JsonEvents>(wishes);
  return std::make_unique<TextEvents>(wishes);
}

}  // namespace

Errand::Errand(const Wishes& wishes)
    : wishes_(wishes),
      events_(eventsFor(wishes)),
      rehearsal_(wishes.dryRun ? std::make_shared<RehearsedFiles>(umsservice::posixFileSystem()) : nullptr),
      files_(rehearsal_ ? std::static_pointer_cast<umsservice::FileSystem>(rehearsal_)
                        : umsservice::posixFileSystem()) {}

}  // namespace umsctl
