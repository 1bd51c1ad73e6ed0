#include "RequestQueue.h"

#include <thread>

#include "OnException.h"
#include "RequestGuard.h"
#include "umsservice/Notifications.h"

namespace umsservice {
namespace {

constexpr auto kWorkerMethod = "-[UMSService umsFileServiceQueueThread:]";

}  // namespace

bool RequestQueue::enqueue(Record request) {
  {
    MutexLock lock(queueLock_);
    if (context_.isReleased()) return false;
    serviceItem_.push_back(std::move(request));
  }
  signal();
  return true;
}

void RequestQueue::signal() {
  MutexLock lock(syncConditionLock_);
  ++signals_;
  syncCondition_.broadcast();  // a host may have lent further threads, and an exit is for all of them
}

uint64_t RequestQueue::signalsSoFar() {
  MutexLock lock(syncConditionLock_);
  return signals_;
}

void RequestQueue::waitForSignalAfter(uint64_t seen) {
  MutexLock lock(syncConditionLock_);
  while (signals_ == seen) syncCondition_.wait(syncConditionLock_);
}

bool RequestQueue::isEmpty() {
  MutexLock lock(queueLock_);
  return serviceItem_.empty();
}

RequestQueue::Record RequestQueue::takeFront() {
  if (!queueLock_.tryLock()) return nullptr;
  Record front;
  if (!serviceItem_.empty()) {
    front = std::move(serviceItem_.front());
    serviceItem_.pop_front();
  }
  queueLock_.unlock();
  return front;
}

void RequestQueue::umsFileServiceQueueThread(const std::function<void(_serviceinfo&)>& run) {
  for (;;) {
    // Counted before the look at the queue: a request that arrives in between ends the wait at once.
    uint64_t seen = signalsSoFar();
    if (isEmpty() && !context_.isReleased()) {
      context_.log.write(6, kWorkerMethod, "Try Wait");
      waitForSignalAfter(seen);
    }
    if (context_.isReleased()) break;
    Record request = takeFront();
    if (!request) {
      std::this_thread::yield();  // another thread held the queue for a moment
      continue;
    }
    runsToItsEnd(context_, [&] { run(*request); });
  }
  context_.log.write(6, kWorkerMethod, "umsFileServiceQueueThread Exit!");
}

bool RequestQueue::takeMatching(uint32_t serviceID, Records& removed) {
  if (!queueLock_.tryLock()) return false;
  const size_t before = removed.size();
  // Moved from list to list, which needs no memory: nothing can go wrong while the lock is held.
  for (auto next = serviceItem_.begin(); next != serviceItem_.end();) {
    auto record = next++;
    if ((*record)->serviceID == serviceID) removed.splice(removed.end(), serviceItem_, record);
  }
  queueLock_.unlock();
  return removed.size() > before;
}

void RequestQueue::announceCancelled(const Records& removed) {
  forEachInAnyCase(context_, removed, [this](const Record& record) {
    reports_.sendCancelProgressEvent(record->serviceID, context_.identity.currentLocationID(),
                                     record->mediaType, 0, 0, kTransferCancelled);
  });
}

bool RequestQueue::emptyQueue(uint32_t serviceID) {
  Records removed;
  bool found = takeMatching(serviceID, removed);
  announceCancelled(removed);
  return found;
}

std::vector<RequestQueue::Cancelled> RequestQueue::takeCancelled() {
  std::vector<Cancelled> cancelled;
  auto oneWalkAtATime = context_.workerEnd.enter(context_.classSection());
  size_t count = context_.cancelList.count();
  // The index advances after a removal too, so an entry that moved up waits for the next walk.
  for (size_t i = 0; i < count; ++i) {
    auto entry = context_.cancelList.entryAt(i);
    if (!entry) break;
    Cancelled found{*entry, {}};
    if (found.serviceID) {
      if (!takeMatching(*found.serviceID, found.records)) continue;
      found.passedOver = context_.cancelList.takeOut(*found.serviceID);
    }
    cancelled.push_back(std::move(found));
  }
  return cancelled;
}

void RequestQueue::tellOfCancelled(const Cancelled& request) {
  constexpr auto kMethod = "-[UMSService emptyQueue]";
  if (!request.serviceID) return context_.log.always(kMethod, "Cancel Service ID Value is nil.");
  inAnyCase(
      context_, [&] { announceCancelled(request.records); },
      [&] {
        context_.cancelList.logRemovalPassedOver(request.passedOver);
        context_.log.write(7, kMethod, "Cancel Service ID : 0x%08x", *request.serviceID);
      });
}

void RequestQueue::emptyQueue() {
  forEachInAnyCase(context_, takeCancelled(), [this](const Cancelled& request) { tellOfCancelled(request); });
}

void RequestQueue::cancelFileAction(uint32_t serviceID) {
  context_.cancelList.add(serviceID);
  emptyQueue();
}

bool RequestQueue::exitServiceThread() {
  {
    MutexLock lock(queueLock_);  // nobody holds it for longer than a walk over the queue
    context_.releaseState = 1;
  }
  signal();
  return true;
}

void RequestQueue::releaseAndDropAll() {
  Records dropped;  // freed after the lock is given back: contents may belong to the host
  MutexLock lock(queueLock_);
  context_.releaseState = 1;
  dropped.swap(serviceItem_);
}

}  // namespace umsservice
