/// How the items of one request ended. The exit status and the closing report come from here.
///
/// Heard on the worker thread, read by the main thread once the request has ended; safe from any thread.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "ExitStatus.h"
#include "umsservice/FileSystem.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

class Outcomes final : public umsservice::ItemObserver {
 public:
  using Listener = std::function<void(const umsservice::ItemOutcome&)>;
  /// Removes what an item has left behind; gives the reason where it could not.
  using Cleaner = std::function<std::optional<umsservice::FileError>(const umsservice::ItemOutcome&)>;

  /// The listener hears each outcome too, on the thread that counts it.
  Outcomes(std::shared_ptr<umsservice::FileSystem> files, Listener listener)
      : files_(std::move(files)), listener_(std::move(listener)) {}

  /// Cleans up behind each item, besides the part at the item's destination. Before any item is counted.
  void setCleaner(Cleaner cleaner) { cleaner_ = std::move(cleaner); }
  /// The next request holds only some of the items: `positions` are their places in the command's list, and
  /// `allCounted` is called once each of them has been counted. Before the first call a place is what the
  /// service says.
  void beginRequest(std::vector<size_t> positions, std::function<void()> allCounted);
  void itemCounted(const umsservice::ItemOutcome& outcome) override;

  /// An item that was counted has turned out to have ended in another way.
  void amend(const umsservice::ItemOutcome& outcome);

  /// In the order of the command's list.
  std::vector<umsservice::ItemOutcome> all() const;
  /// Unfinished copies that could not be removed, with the reason.
  std::vector<umsservice::FileError> leftovers() const;
  size_t count(umsservice::ItemOutcome::Kind kind) const;
  /// Bytes of the items that are done.
  uint64_t doneBytes() const;

 private:
  const std::shared_ptr<umsservice::FileSystem> files_;
  const Listener listener_;
  Cleaner cleaner_;
  mutable std::mutex mutex_;
  std::vector<size_t> positions_;
  size_t countedOfRequest_ = 0;
  std::function<void()> allCounted_;
  std::vector<umsservice::ItemOutcome> outcomes_;
  std::vector<umsservice::FileError> leftovers_;
};

}  // namespace umsctl
