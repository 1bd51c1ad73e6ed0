/// A door for hosts that want to know how each single item of a request ended.
///
/// Notifications report good and skipped items one by one but failed ones only as a count; the observer hears
/// of every item exactly once, at the moment it is counted.
#pragma once

#include <cstdint>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/Value.h"

namespace umsservice {

/// How one item ended.
struct ItemOutcome {
  enum class Kind {
    Done,        ///< on the volume, complete
    Skipped,     ///< the destination existed and stays
    Failed,      ///< see `errorNumber` and `reason`
    NotReached,  ///< never tried, or given up, because of a cancel, a shutdown or a full volume
  };

  uint32_t serviceID = 0;
  /// 0-based position in the request's list. For podcasts the number of the episode, counted through all
  /// channels; an element of the list that is no channel counts as one.
  size_t index = 0;
  Kind kind = Kind::Done;
  MaybeString path;          ///< the item's "FilePath"
  MaybeString destPath;      ///< where it was to go, when that was known
  uint32_t errorNumber = 0;  ///< see `ErrorNumbers.h`; 0 for a good item
  uint64_t bytes = 0;        ///< bytes of this item that were moved or, for a delete, freed
  std::string reason;        ///< the system's own words for a failure, where there are any
};

/// Threading: called on the thread that runs the request (the service's worker). Locking: no lock is held but
/// the service's synchronized section.
/// Exceptions: none may leave the observer.
class UMS_EXPORT ItemObserver {
 public:
  virtual ~ItemObserver() = default;
  virtual void itemCounted(const ItemOutcome& outcome) = 0;
};

}  // namespace umsservice
