/// The object that a host knows a service or a notifier by: the one that code synchronizes on, and the one
/// that log lines show.
///
/// The library makes a plain one for each. A host whose own objects stand in front of the library's hands in
/// those instead, so that a section of the host and one of the library keep each other out. Held by what it
/// stands for, and used from any thread; see `UMSService` and `OVUmsDeviceNotifier`.
#pragma once

#include <memory>
#include <string>

#include "umsservice/Export.h"

namespace umsservice {

class UMS_EXPORT SynchronizedObject {
 public:
  virtual ~SynchronizedObject() = default;
  /// Waits for the section. The thread that holds it may take it again, and gives it back as often.
  virtual void lock() = 0;
  virtual void unlock() = 0;
  /// The object in words, as log lines show it. Empty leaves the words to the library.
  virtual std::string description() const = 0;
};

/// One that nobody else knows.
UMS_EXPORT std::shared_ptr<SynchronizedObject> makeSynchronizedObject();

}  // namespace umsservice
