/// Tells the item observer of every episode of a request exactly once, in the order of the list.
///
/// The next episode to be told of stands fixed: an operation says how it ended, or how all that are left of a
/// channel or of the request did. An element of the list that is no channel counts as one item. Used by the
/// worker thread only; the observer is called on it.
#pragma once

#include "PodcastChannel.h"
#include "ServiceContext.h"

namespace umsservice {

class EpisodeLedger {
 public:
  EpisodeLedger(const ServiceContext& context, uint32_t serviceID,
                const std::vector<PodcastChannel>& channels);

  /// How an episode ended, without what the ledger knows by itself.
  struct Ending {
    ItemOutcome::Kind kind = ItemOutcome::Kind::Done;
    uint32_t errorNumber = 0;
    MaybeString destPath = std::nullopt;
    uint64_t bytes = 0;
    std::string reason = {};
  };

  /// The next episode.
  void count(const Ending& ending);
  /// Every episode of a channel, and of those before it, that has not been told of.
  void countRestOf(const PodcastChannel& channel, const Ending& ending);
  /// Every episode of the request; what is held back is told first.
  void countRest(const Ending& ending);

  /// A channel that may be gone through more than once: what is counted from now on is held back, and starts
  /// again with its first episode. A good ending stays, whatever comes after it.
  void attempt(const PodcastChannel& channel);
  /// Tells what was held back; `ending` stands for the episodes that no attempt reached.
  void settle(const PodcastChannel& channel, const Ending& ending);

 private:
  void tell(size_t item, const Ending& ending);
  void tellHeld(const Ending& ending);

  const std::shared_ptr<ItemObserver> observer_;
  const uint32_t serviceID_;
  std::vector<MaybeString> paths_;  ///< of all items
  std::vector<size_t> ends_;        ///< for each channel, the item behind its last one
  size_t next_ = 0;
  bool holdsBack_ = false;
  size_t heldFrom_ = 0;                      ///< first item of the channel in hand
  std::vector<std::optional<Ending>> held_;  ///< one for each of its episodes
};

}  // namespace umsservice
