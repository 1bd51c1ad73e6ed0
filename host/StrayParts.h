/// Parts of files that a sync leaves on a volume when copying breaks off and the file goes to the next
/// volume: a film that outgrows what the first one's file system can hold, a cancel on the second volume.
/// They have the whole file's name, so a later run would take one for the file.
///
/// Made before the sync, asked after each of its items; see `Outcomes` for the thread.
#pragma once

#include <map>
#include <set>

#include "Contents.h"
#include "Device.h"
#include "umsservice/ItemObserver.h"

namespace umsctl {

class StrayParts {
 public:
  StrayParts(Device& device, const Contents& contents) : device_(device), contents_(contents) {}

  /// Notes what stands where the file at that place of the list may go.
  void expect(size_t index, uint32_t mediaType);
  /// Removes what the item has left, except the whole file. What was there before, and what cannot be such a
  /// part by its size, stays. Gives the reason where a part could not be removed.
  std::optional<umsservice::FileError> removeAfter(const umsservice::ItemOutcome& outcome);

 private:
  struct Place {
    std::string path;
    std::optional<umsservice::FileAttributes> before;
  };

  bool isStray(const Place& place, uint64_t wholeSize) const;

  Device& device_;
  const Contents& contents_;
  std::map<size_t, std::vector<Place>> places_;  ///< by place in the list
  std::set<std::string> placed_;                 ///< whole files of this run
};

}  // namespace umsctl
