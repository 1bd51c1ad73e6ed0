/// The two seams of the diagnostic log: where lines go, and how much is written.
///
/// Both are called from every thread of the library; no lock is held but, in long operations, the service's
/// synchronized section. No exception may leave either of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "umsservice/Export.h"
#include "umsservice/FileSystem.h"

namespace umsservice {

/// Takes finished lines of the form "[file:method-(line)] message"; one message, about an episode that an
/// index has already, comes bare.
class UMS_EXPORT LogSink {
 public:
  virtual ~LogSink() = default;
  virtual void write(const std::string& line) = 0;
};

/// Answers the debug level; asked afresh for every gated log statement, so that a developer may change the
/// level while the host runs.
class UMS_EXPORT DebugLevelSource {
 public:
  virtual ~DebugLevelSource() = default;
  /// 0 or less writes nothing but the always-on messages; 7 writes everything.
  virtual int32_t debugLevel() = 0;
};

/// Writes each line to standard error with one call.
UMS_EXPORT std::shared_ptr<LogSink> standardErrorLogSink();

/// The number under "DEBUG_LEVEL" of the property list (XML or binary) at `path`, read from disk each time.
/// A missing, unreadable or malformed file, a missing key and a value that is no number all give 0.
UMS_EXPORT std::shared_ptr<DebugLevelSource> plistDebugLevelSource(std::shared_ptr<FileSystem> files,
                                                                   std::string path);

/// A level that never changes.
UMS_EXPORT std::shared_ptr<DebugLevelSource> fixedDebugLevelSource(int32_t level);

}  // namespace umsservice
