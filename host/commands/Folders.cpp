#include "commands/Folders.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <optional>

#include "Amounts.h"
#include "Consent.h"
#include "Device.h"
#include "EscapedName.h"
#include "Paths.h"
#include "PhaseLine.h"
#include "Planning.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::FileError;
using umsservice::FileSystem;
using umsservice::FileType;
using umsservice::ItemOutcome;

/// Why something is not done to a folder; without a cause it is.
struct Objection {
  std::string cause;
  uint32_t number = umsservice::kErrorNone;
};

/// `typed` is the path as the person wrote it: nobody who types a dot knows what would go.
Objection objectionTo(FileSystem& files, const std::string& path, const std::string& typed, bool recursive) {
  std::string name = lastComponent(typed);
  if (!typed.empty() && (name.empty() || name == "." || name == ".."))
    return {"it must be given by its name", umsservice::kErrorInvalidInput};
  auto found = files.linkAttributes(path);
  if (!found) return {found.error().words(), umsservice::kErrorAttributesUnreadable};
  if (found->type != FileType::Directory) return {"it is not a folder", umsservice::kErrorInvalidInput};
  if (recursive) return {};
  auto entries = files.list(path);
  if (!entries) return {entries.error().words(), umsservice::kErrorOpenFailed};
  if (entries->empty()) return {};
  return {"it is not empty; --recursive removes it with everything in it", umsservice::kErrorDeleteFailed};
}

/// Everything below a folder, links not followed, in the order in which it can be removed.
class FolderContents {
 public:
  /// Throws `Refusal` for an interrupt.
  FolderContents(const Errand& errand, FileSystem& files, const std::string& folder)
      : errand_(errand), files_(files), line_(errand.wishes()) {
    add(folder);
    line_.erase();
  }

  const std::vector<std::string>& paths() const { return paths_; }
  /// Files with their bytes; folders do not count.
  const Plan& amount() const { return amount_; }
  /// The first folder that cannot be read: it could not be removed either.
  const std::optional<FileError>& unreadable() const { return unreadable_; }

 private:
  void add(const std::string& folder) {
    auto entries = files_.list(folder);
    // Below the longest path that the system takes, a folder is removed as one.
    if (!entries && entries.error().systemNumber == ENAMETOOLONG) return;
    if (!entries && !unreadable_)
      unreadable_ = {entries.error().systemNumber, entries.error().action, folder};
    if (!entries) return;
    for (const auto& entry : *entries) {
      errand_.stopIfCancelled();
      line_.step("Counting", amount_.items);
      const std::string path = inFolder(folder, entry.name);
      auto found = files_.linkAttributes(path);
      const bool isFolder = found && found->type == FileType::Directory;
      if (isFolder) add(path);
      if (!isFolder) ++amount_.items;
      if (!isFolder && found) amount_.bytes += found->size;
      paths_.push_back(path);
    }
  }

  const Errand& errand_;
  FileSystem& files_;
  PhaseLine line_;
  std::vector<std::string> paths_;
  Plan amount_;
  std::optional<FileError> unreadable_;
};

/// What a folder's own path leaves of one below it.
std::string below(const std::string& folder, const std::string& path) {
  return path.substr(std::min(path.size(), folder.size() + 1));
}

/// A command about one folder, from its plan to its one item.
class FolderErrand {
 public:
  FolderErrand(const Errand& errand, const std::string& folder, const TransferManner& manner)
      : errand_(errand), manner_(manner), name_(folder.empty() ? "''" : folder) {}

  /// `change` gives why it could not be done, or nothing; a stop code for an interrupt.
  ExitStatus run(const std::string& path, const Plan& plan, const std::function<Objection()>& change) {
    if (!errand_.rehearsal()) tellPlan(path, plan);
    const Objection objection = change();
    const bool wasCancelled = umsservice::isStopCode(objection.number);
    ItemOutcome outcome;
    outcome.path = path;
    outcome.errorNumber = objection.number;
    if (wasCancelled) outcome.kind = ItemOutcome::Kind::NotReached;
    if (!objection.cause.empty()) outcome.kind = ItemOutcome::Kind::Failed;
    errand_.events().itemEnded({outcome, manner_, name_, objection.cause, "", {}, {}});
    if (errand_.rehearsal()) tellPlan(path, plan);
    if (wasCancelled) return ExitStatus::Cancelled;
    return objection.cause.empty() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
  }

 private:
  void tellPlan(const std::string& path, const Plan& amount) {
    Plan plan = planOf(errand_, {}, {{path, {}}});
    plan.volumes.front().kind = "folder";  // nobody has said of which device
    plan.items = amount.items;
    plan.bytes = amount.bytes;
    if (errand_.rehearsal() && amount.items > 0)
      errand_.events().remarked(countText(plan.items, "file") + " to remove (" + byteText(plan.bytes) +
                                ")\n");
    errand_.events().planned(plan);
  }

  const Errand& errand_;
  const TransferManner manner_;
  const std::string name_;
};

Objection objectionOf(const umsservice::FileStatus& status, const std::string& what, uint32_t number) {
  if (status) return {};
  if (status.error().systemNumber == ENOSPC) number = umsservice::kErrorVolumeFull;
  return {what + status.error().words(), number};
}

/// Item by item, so that an interrupt is heard and the one that stays can be named.
Objection emptied(const Errand& errand, FileSystem& files, const std::string& folder,
                  const std::vector<std::string>& paths) {
  PhaseLine line(errand.wishes());
  for (size_t i = 0; i < paths.size(); ++i) {
    line.step("Removing", i, paths.size());
    if (errand.interrupt().happened()) {
      errand.interrupt().settle();
      line.erase();
      errand.events().noticed(folder, "cancelled: " + std::to_string(i) + " of " +
                                          std::to_string(paths.size()) + " things in it removed");
      return {"", umsservice::kErrorStopped};
    }
    auto removed = files.remove(paths[i]);
    // What somebody else has removed in the meantime is gone as well.
    if (!removed && removed.error().systemNumber != ENOENT)
      return objectionOf(
          removed, escaped(below(folder, paths[i])) + " cannot be removed: ", umsservice::kErrorDeleteFailed);
  }
  return {};
}

}  // namespace

ExitStatus makeFolder(const std::string& folder, const Errand& errand) {
  Device device({}, errand);
  const std::string path = absolutePath(folder);
  const bool isThere = device.files().isFolder(path);
  FolderErrand making(errand, folder,
                      {.done = "made", .planned = isThere ? "keep" : "make", .isTold = false});
  return making.run(path, {}, [&]() -> Objection {
    if (device.service().createFolder(path)) return {};
    // The service says that it could not, not why; asking once more does.
    return objectionOf(device.files().createFolders(path), "", umsservice::kErrorCreateFolderFailed);
  });
}

ExitStatus removeFolder(const RemoveFolderOptions& options, const Errand& errand) {
  Device device({}, errand);
  const std::string path = withoutTrailingSlashes(absolutePath(options.folder));
  Objection objection = objectionTo(device.files(), path, options.folder, options.recursive);
  std::optional<FolderContents> contents;
  if (objection.cause.empty()) contents.emplace(errand, device.files(), path);
  if (contents && contents->unreadable()) {
    const FileError& error = *contents->unreadable();
    const std::string name = error.path == path ? "it" : escaped(below(path, error.path));
    objection = {name + " cannot be read: " + error.words(), umsservice::kErrorOpenFailed};
  }
  const Plan amount = contents ? contents->amount() : Plan();
  if (objection.cause.empty() && !contents->paths().empty() &&
      !agreesTo(errand, "Delete the folder " + escaped(lastComponent(path)) + " with " +
                            countText(amount.items, "file") + " (" + byteText(amount.bytes) +
                            ") from the device?"))
    return ExitStatus::AllDone;
  FolderErrand removing(errand, options.folder, {.done = "removed", .planned = "remove", .isTold = false});
  return removing.run(path, amount, [&]() -> Objection {
    if (!objection.cause.empty()) return objection;
    const Objection within = emptied(errand, device.files(), path, contents->paths());
    if (within.number != umsservice::kErrorNone) return within;
    if (device.service().deleteFolder(path)) return {};
    return objectionOf(device.files().remove(path), "", umsservice::kErrorDeleteFailed);
  });
}

}  // namespace umsctl
