/// The queue of requests and the body of the worker thread that runs them one by one, in order of arrival.
///
/// Owned by the service. Producers are the host's threads; the consumer is the service's one worker. The
/// queue lock is never held while the condition is locked, nor while a notification or a log line goes out,
/// so a handler may queue, cancel and release. A request queued while the worker decides to sleep is seen.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "Mutex.h"
#include "RequestReports.h"
#include "ServiceContext.h"

namespace umsservice {

class RequestQueue {
 public:
  RequestQueue(ServiceContext& context, RequestReports& reports) : context_(context), reports_(reports) {}

  /// Queues a request and wakes the worker. After release the request is refused and freed.
  bool enqueue(std::unique_ptr<_serviceinfo> request);

  /// The worker's body: hands each request to `run` until the service is released.
  void umsFileServiceQueueThread(const std::function<void(_serviceinfo&)>& run);

  /// Enters the ID into the cancel list and removes its queued requests.
  void cancelFileAction(uint32_t serviceID);
  /// Removes the queued requests of every ID in the cancel list. An ID whose request was queued leaves the
  /// list; one whose request is running stays for the operation to find.
  void emptyQueue();
  /// Removes the queued requests of one ID and announces each; true when there was one. When another thread
  /// holds the queue, nothing is removed: the operation will find the ID in the cancel list.
  bool emptyQueue(uint32_t serviceID);

  /// Sets the release flag and wakes the worker, which then ends. Queued requests stay where they are.
  bool exitServiceThread();
  /// The first half of a release: the flag is set, and what is queued is dropped without notice.
  void releaseAndDropAll();
  /// Wakes the worker, and every thread that a host lent to the queue.
  void signal();

 private:
  using Record = std::unique_ptr<_serviceinfo>;
  using Records = std::list<Record>;

  /// What one walk over the cancel list took out of the queue; no ID for an entry that is no number.
  struct Cancelled {
    CancelList::Entry serviceID;
    Records records;
    size_t passedOver = 0;  ///< entries that are no numbers, met while the ID was taken out of the list
  };

  std::vector<Cancelled> takeCancelled();
  bool takeMatching(uint32_t serviceID, Records& removed);
  // Both tell of everything; an exception of a handler's goes on when all have been told.
  void announceCancelled(const Records& removed);
  void tellOfCancelled(const Cancelled& request);
  bool isEmpty();
  Record takeFront();
  uint64_t signalsSoFar();
  void waitForSignalAfter(uint64_t seen);

  ServiceContext& context_;
  RequestReports& reports_;

  Mutex queueLock_;
  Records serviceItem_ GUARDED_BY(queueLock_);

  Mutex syncConditionLock_;
  Condition syncCondition_;
  uint64_t signals_ GUARDED_BY(syncConditionLock_) = 0;
};

}  // namespace umsservice
