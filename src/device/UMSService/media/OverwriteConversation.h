/// What is said about existing files in one run: a question to the host's delegate, and its three kept
/// answers. One for each run (the fall-over of a media file to another volume talks afresh); used by the
/// worker thread.
#pragma once

#include "umsservice/QDDeviceConfirmDelegate.h"

namespace umsservice {

/// Hosts mark unattended syncs by their number: those replace existing files without a question.
inline bool replacesUnasked(uint32_t serviceID) {
  return (serviceID & 0xffff0000u) == 0x00100000u;
}

class OverwriteConversation {
 public:
  /// Whether the existing file is to be replaced. Once the delegate has returned NO, every later conflict is
  /// skipped; once it has said not to ask again, its answers hold for every later conflict.
  bool replaces(QDDeviceConfirmDelegate& delegate, const std::string& srcPath) {
    if (mayOverwrite_ && !isNotAsk_)
      mayOverwrite_ = delegate.confirmOverwrite(srcPath, isOverwrite_, isNotAsk_);
    return mayOverwrite_ && isOverwrite_;
  }

 private:
  bool mayOverwrite_ = true;
  bool isOverwrite_ = false;
  bool isNotAsk_ = false;
};

}  // namespace umsservice
