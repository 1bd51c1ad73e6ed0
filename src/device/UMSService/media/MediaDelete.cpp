#include "MediaDelete.h"

#include "umsservice/ErrorNumbers.h"

namespace umsservice {
namespace {

constexpr auto kDeleteContentsMethod = "-[UMSService doDeleteMediaContents:]";

}  // namespace

bool MediaDelete::run() {
  const ServiceContext& context = tools_.context;
  if (request_.mediaType == kMediaPodcast) {
    context.log.write(3, kDeleteContentsMethod, "Media Type is not podcast. Media Type = %d",
                      request_.mediaType);
    return false;
  }
  const MaybeString location = context.identity.currentLocationID();
  MediaRun run(tools_, request_, kDeleteContentsMethod, location, location, context.identity.modelName());
  run.setLastResult(true);
  return run.carryOut({}, [&](const MediaItem& item) { return deleteItem(run, item); });
}

MediaRun::Next MediaDelete::deleteItem(MediaRun& run, const MediaItem& item) {
  if (run.endsForCancel()) return MediaRun::Next::EndRun;
  if (auto next = run.refuseIncomplete(item, kErrorBadDeleteItem)) return *next;
  run.notifier().setFilePath(item.filePath);
  if (run.endsForRelease(item)) return MediaRun::Next::EndRun;
  const uint64_t size = run.observedSize(*item.filePath);
  FileOutcome outcome = tools_.files.remove(item.filePath);
  run.setLastResult(outcome.result);
  run.notifier().setTransferResult(outcome.errorNumber.value_or(kErrorNone));
  if (!outcome.result) {
    tools_.context.log.write(1, kDeleteContentsMethod, "Delete %@ file is failed", item.filePath);
    return run.failed(item, outcome);
  }
  tools_.companions.deleteSmiFile(item.filePath, request_.mediaType);
  run.notifier().deleteFileTransfer();
  outcome.bytes = size;
  return run.done(item, outcome);
}

}  // namespace umsservice
