/// How the items of one request ended. The exit status and the closing report come from here.
///
/// Heard on the worker thread, read by the main thread once the request has ended; safe from any thread.
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "ExitStatus.h"
#include "umsservice/FileSystem.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

class Outcomes final : public umsservice::ItemObserver {
 public:
  using Listener = std::function<void(const umsservice::ItemOutcome&)>;

  /// The listener hears each outcome too, on the thread that counts it.
  Outcomes(std::shared_ptr<umsservice::FileSystem> files, Listener listener)
      : files_(std::move(files)), listener_(std::move(listener)) {}

  void itemCounted(const umsservice::ItemOutcome& outcome) override;

  std::vector<umsservice::ItemOutcome> all() const;
  /// Unfinished copies that could not be removed, with the reason.
  std::vector<umsservice::FileError> leftovers() const;
  size_t count(umsservice::ItemOutcome::Kind kind) const;
  /// Bytes of the items that are done.
  uint64_t doneBytes() const;

 private:
  const std::shared_ptr<umsservice::FileSystem> files_;
  const Listener listener_;
  mutable std::mutex mutex_;
  std::vector<umsservice::ItemOutcome> outcomes_;
  std::vector<umsservice::FileError> leftovers_;
};

}  // namespace umsctl
