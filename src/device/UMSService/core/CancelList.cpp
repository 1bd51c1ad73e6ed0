#include "CancelList.h"

namespace umsservice {

void CancelList::add(Entry serviceID) {
  MutexLock lock(mutex_);
  cancelServiceId_.push_back(serviceID);
  count_.store(cancelServiceId_.size(), std::memory_order_release);
}

CancelList::Position CancelList::positionOf(uint32_t serviceID) const {
  Position position;
  for (size_t i = 0; i < cancelServiceId_.size(); ++i) {
    if (cancelServiceId_[i] == serviceID) {
      position.index = i;
      break;
    }
    if (!cancelServiceId_[i]) ++position.passedOver;
  }
  return position;
}

void CancelList::logPassedOver(size_t entries, const char* method) const {
  for (size_t i = 0; i < entries; ++i) log_.always(method, "Cancel Service ID Value is nil.");
}

bool CancelList::isCancelServiceId(uint32_t serviceID) const {
  if (count() == 0) return false;
  Position position;
  {
    MutexLock lock(mutex_);
    position = positionOf(serviceID);
  }
  logPassedOver(position.passedOver, "-[UMSService isCancelServiceId:]");
  return position.index.has_value();
}

CancelList::Position CancelList::removeFirst(uint32_t serviceID) {
  MutexLock lock(mutex_);
  Position position = positionOf(serviceID);
  if (position.index) {
    cancelServiceId_.erase(cancelServiceId_.begin() + static_cast<std::ptrdiff_t>(*position.index));
    count_.store(cancelServiceId_.size(), std::memory_order_release);
  }
  return position;
}

bool CancelList::removeCancelServiceId(uint32_t serviceID) {
  Position position = removeFirst(serviceID);
  logRemovalPassedOver(position.passedOver);
  return position.index.has_value();
}

void CancelList::removeEvery(uint32_t serviceID) {
  while (removeCancelServiceId(serviceID)) {
  }
}

size_t CancelList::takeOut(uint32_t serviceID) {
  return removeFirst(serviceID).passedOver;
}

void CancelList::logRemovalPassedOver(size_t entries) const {
  logPassedOver(entries, "-[UMSService removeCancelServiceId:]");
}

std::optional<CancelList::Entry> CancelList::entryAt(size_t index) const {
  MutexLock lock(mutex_);
  if (index >= cancelServiceId_.size()) return std::nullopt;
  return cancelServiceId_[index];
}

void CancelList::clear() {
  MutexLock lock(mutex_);
  cancelServiceId_.clear();
  count_.store(0, std::memory_order_release);
}

}  // namespace umsservice
