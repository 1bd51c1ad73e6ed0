#include "UnfinishedCopy.h"

#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::ItemOutcome;

/// The ends that come after the destination was created, and before it was complete. Where a file could not
/// be opened the destination may be an older one; it is an empty one then, or of another size and stays.
bool leavesPart(const ItemOutcome& outcome) {
  if (!outcome.destPath) return false;
  if (outcome.kind == ItemOutcome::Kind::NotReached) return umsservice::isStopCode(outcome.errorNumber);
  if (outcome.kind != ItemOutcome::Kind::Failed) return false;
  return outcome.errorNumber == umsservice::kErrorCopyFailed ||
         outcome.errorNumber == umsservice::kErrorOpenFailed;
}

}  // namespace

std::optional<umsservice::FileError> removeUnfinishedCopy(umsservice::FileSystem& files,
                                                          const ItemOutcome& outcome) {
  if (!leavesPart(outcome)) return std::nullopt;
  auto found = files.linkAttributes(*outcome.destPath);
  if (!found || found->type != umsservice::FileType::Regular || found->size != outcome.bytes)
    return std::nullopt;
  auto removed = files.remove(*outcome.destPath);
  return removed ? std::nullopt : std::optional(removed.error());
}

}  // namespace umsctl
