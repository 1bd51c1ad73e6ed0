/// The episodes of a channel while it grows, and every state of them as an array of its own.
///
/// A copy of n episodes hands out the whole list n times. All arrays share the entries: taking one costs
/// nothing, however long the list is. Each array, and each dictionary that is got from it, belongs to whoever
/// holds it: a change to one is seen in no other, and no later change of the list is seen in it.
/// The list is used by one thread; the arrays are safe from any.
#pragma once

#include <map>
#include <memory>

#include "umsservice/Value.h"

namespace umsservice {

class EpisodeList {
 public:
  EpisodeList();
  /// Takes over the entries of a dictionary as they are now.
  void append(const Dictionary& episode);
  /// Costs a pass over the list.
  void removeAt(size_t index);
  size_t count() const { return count_; }
  /// The episodes as they are now.
  Array snapshot() const;

 private:
  class Entries;
  class SharedList;
  class OwnEpisode;
  class Snapshot;

  std::shared_ptr<SharedList> shared_;
  size_t count_ = 0;
};

}  // namespace umsservice
