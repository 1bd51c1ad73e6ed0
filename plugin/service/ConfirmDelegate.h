/// The host's confirm delegate as the library sees it. One for each service, which it does not outlive in
/// spirit: from the service's end on, nobody is asked any more.
///
/// The host's object is not retained. Safe from any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <atomic>

#include "service/ObjectSection.h"
#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsplugin {

class ConfirmDelegate final : public umsservice::QDDeviceConfirmDelegate {
 public:
  /// `asking` is the service that asks.
  explicit ConfirmDelegate(std::shared_ptr<ObjectSection> asking) : asking_(std::move(asking)) {}

  /// Nil when the service ends.
  void setDelegate(id delegate) { delegate_ = delegate; }

  bool confirmOverwrite(const std::string& path, bool& isOverwrite, bool& isNotAsk) override;
  std::shared_ptr<umsservice::OVFileService> getFileServiceObject(
      const umsservice::MaybeString& locationID) override;

 private:
  const std::shared_ptr<ObjectSection> asking_;
  std::atomic<id> delegate_ = nil;
};

}  // namespace umsplugin
