#include "EpisodeLedger.h"

#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

MaybeString filePathOf(const Value& element) {
  auto episode = element.dictionary();
  return episode ? episode->string(key::kFilePath) : std::nullopt;
}

}  // namespace

EpisodeLedger::EpisodeLedger(const ServiceContext& context, uint32_t serviceID,
                             const std::vector<PodcastChannel>& channels)
    : observer_(context.environment.itemObserver), serviceID_(serviceID) {
  for (const PodcastChannel& channel : channels) {
    if (!channel.dictionary) paths_.emplace_back();
    if (channel.episodes) {
      for (const Value& element : *channel.episodes) paths_.push_back(filePathOf(element));
    }
    ends_.push_back(paths_.size());
  }
}

void EpisodeLedger::count(const Ending& ending) {
  if (next_ >= paths_.size()) return;
  if (!holdsBack_) return tell(next_++, ending);
  auto& slot = held_[next_++ - heldFrom_];
  if (!slot || slot->kind != ItemOutcome::Kind::Done) slot = ending;
}

void EpisodeLedger::countRestOf(const PodcastChannel& channel, const Ending& ending) {
  while (next_ < ends_[channel.index]) count(ending);
}

void EpisodeLedger::countRest(const Ending& ending) {
  if (holdsBack_) tellHeld(ending);
  while (next_ < paths_.size()) count(ending);
}

void EpisodeLedger::attempt(const PodcastChannel& channel) {
  heldFrom_ = channel.index == 0 ? 0 : ends_[channel.index - 1];
  if (!holdsBack_) held_.assign(ends_[channel.index] - heldFrom_, std::nullopt);
  holdsBack_ = true;
  next_ = heldFrom_;
}

void EpisodeLedger::settle(const PodcastChannel& channel, const Ending& ending) {
  attempt(channel);  // also for a channel that was never attempted
  tellHeld(ending);
}

void EpisodeLedger::tellHeld(const Ending& ending) {
  holdsBack_ = false;
  next_ = heldFrom_;
  for (const auto& slot : held_) count(slot.value_or(ending));
}

void EpisodeLedger::tell(size_t item, const Ending& ending) {
  if (!observer_) return;
  observer_->itemCounted({serviceID_, item, ending.kind, paths_[item], ending.destPath, ending.errorNumber,
                          ending.bytes, ending.reason});
}

}  // namespace umsservice
