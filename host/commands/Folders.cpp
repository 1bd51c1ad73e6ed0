#include "commands/Folders.h"

#include <functional>

#include "Amounts.h"
#include "Device.h"
#include "Paths.h"
#include "Planning.h"
#include "umsservice/ErrorNumbers.h"

namespace umsctl {
namespace {

using umsservice::FileSystem;
using umsservice::FileType;
using umsservice::ItemOutcome;

/// Why a folder must stay, or nothing.
std::string objection(FileSystem& files, const std::string& path, bool recursive) {
  std::string name = lastComponent(path);
  if (!path.empty() && (name.empty() || name == "." || name == "..")) return "it must be given by its name";
  auto found = files.linkAttributes(path);
  if (!found) return found.error().words();
  if (found->type != FileType::Directory) return "it is not a folder";
  if (recursive) return "";
  auto entries = files.list(path);
  if (!entries) return entries.error().words();
  return entries->empty() ? "" : "it is not empty; --recursive removes it with everything in it";
}

/// Files and bytes below a folder, links not followed.
void count(FileSystem& files, const std::string& folder, Plan& plan) {
  auto entries = files.list(folder);
  if (!entries) return;
  for (const auto& entry : *entries) {
    const std::string path = inFolder(folder, entry.name);
    auto found = files.linkAttributes(path);
    if (found && found->type == FileType::Directory) {
      count(files, path, plan);
    } else {
      ++plan.items;
      plan.bytes += found ? found->size : 0;
    }
  }
}

/// A command about one folder, from its plan to its one item.
class FolderErrand {
 public:
  FolderErrand(const Errand& errand, const std::string& folder, const TransferManner& manner)
      : errand_(errand), manner_(manner), name_(folder.empty() ? "''" : folder) {}

  /// `change` gives why it could not be done, or nothing.
  ExitStatus run(const std::string& path, Plan plan, const std::function<std::string()>& change) {
    if (!errand_.rehearsal()) tellPlan(path, plan);
    ItemOutcome outcome;
    outcome.path = path;
    std::string cause = change();
    if (!cause.empty()) outcome.kind = ItemOutcome::Kind::Failed;
    if (!cause.empty()) outcome.errorNumber = umsservice::kErrorOperationFailed;
    errand_.events().itemEnded({outcome, manner_, name_, cause, "", {}, {}});
    if (errand_.rehearsal()) tellPlan(path, plan);
    return cause.empty() ? ExitStatus::AllDone : ExitStatus::SomeFailed;
  }

 private:
  void tellPlan(const std::string& path, const Plan& amount) {
    Plan plan = planOf(errand_, {}, {{path, {}}});
    plan.items = amount.items;
    plan.bytes = amount.bytes;
    if (errand_.rehearsal() && amount.items > 0)
      errand_.events().remarked(std::to_string(plan.items) + (plan.items == 1 ? " file" : " files") +
                                " to remove (" + byteText(plan.bytes) + ")\n");
    errand_.events().planned(plan);
  }

  const Errand& errand_;
  const TransferManner manner_;
  const std::string name_;
};

}  // namespace

ExitStatus makeFolder(const std::string& folder, const Errand& errand) {
  Device device({}, errand);
  const std::string path = absolutePath(folder);
  const bool isThere = device.files().isFolder(path);
  FolderErrand making(errand, folder,
                      {.done = "made", .planned = isThere ? "keep" : "make", .isTold = false});
  return making.run(path, {}, [&]() -> std::string {
    if (device.service().createFolder(path)) return "";
    // The service says that it could not, not why; asking once more does.
    auto made = device.files().createFolders(path);
    return made ? "" : made.error().words();
  });
}

ExitStatus removeFolder(const RemoveFolderOptions& options, const Errand& errand) {
  Device device({}, errand);
  const std::string path = withoutTrailingSlashes(absolutePath(options.folder));
  const std::string cause = objection(device.files(), path, options.recursive);
  Plan plan;
  if (cause.empty()) count(device.files(), path, plan);
  FolderErrand removing(errand, options.folder, {.done = "removed", .planned = "remove", .isTold = false});
  return removing.run(path, plan, [&]() -> std::string {
    if (!cause.empty()) return cause;
    if (device.service().deleteFolder(path)) return "";
    auto removed = device.files().remove(path);
    return removed ? "" : removed.error().words();
  });
}

}  // namespace umsctl
