/// The host's object in front of a service or a notifier of the library: what `@synchronized` holds, and what
/// log lines show.
///
/// The object is not retained, it owns the library's. The run-time keeps its locks by address and looks into
/// no object for them, so a section is given back soundly by a worker whose service went inside it. Safe from
/// any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <mutex>

#include "umsservice/SynchronizedObject.h"

namespace umsplugin {

class ObjectSection final : public umsservice::SynchronizedObject {
 public:
  explicit ObjectSection(id object);

  void lock() override;
  void unlock() override;
  std::string description() const override { return description_; }

  /// The object itself, for those who know that it is there.
  id object() const { return object_; }
  /// Called when the object's end begins; waits for whoever is using it.
  void forget();
  /// Runs `use` with the object, whose end waits for it; false when it has gone.
  template <typename Use>
  bool whileThere(Use use) {
    std::lock_guard lock(use_);
    if (!isThere_) return false;
    use(object_);
    return true;
  }

 private:
  const id object_;
  const std::string description_;
  std::recursive_mutex use_;
  bool isThere_ = true;
};

}  // namespace umsplugin
